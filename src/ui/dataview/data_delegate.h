#pragma once

#include <QStyledItemDelegate>

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

 private:
  TDataModel* model_;
};

}  // namespace lomarin::ui
