#pragma once

#include <QStyledItemDelegate>
#include <functional>

namespace lomarin::ui {

class TDataModel;

// Editors by column type: date and time pickers for temporal columns, a plain line for the
// rest (numbers stay text so no digit is lost; binary columns take hex digits).
class TDataDelegate : public QStyledItemDelegate {
  Q_OBJECT
 public:
  TDataDelegate(TDataModel* model, QObject* parent);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

  // The editor of a column that references another table, or null for the editors by type.
  std::function<QWidget*(QWidget* parent, int column)> ForeignEditor;

 private:
  TDataModel* model_;
};

}  // namespace lomarin::ui
