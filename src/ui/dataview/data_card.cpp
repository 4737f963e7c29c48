#include "ui/dataview/data_card.h"

#include <QFormLayout>
#include <QLineEdit>

#include "ui/dataview/data_model.h"

namespace lomarin::ui {

TDataCard::TDataCard(TDataModel* model, QWidget* parent) : QScrollArea(parent), model_(model) {
  setObjectName("cxdbvgForm");
  setWidgetResizable(true);
  connect(model_, &QAbstractItemModel::dataChanged, this, [this] { showRow(row_); });
}

void TDataCard::rebuild() {
  auto* page = new QWidget;
  auto* layout = new QFormLayout(page);
  edits_.clear();
  for (int c = 0; c < model_->columnCount(); ++c) {
    auto* edit = new QLineEdit(page);
    edit->setObjectName(QString("edtField%1").arg(c));
    connect(edit, &QLineEdit::editingFinished, this, [this, c, edit] {
      if (edit->isModified() && row_ >= 0)
        model_->setData(model_->index(row_, c), edit->text(), Qt::EditRole);
      edit->setModified(false);
    });
    layout->addRow(model_->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString(), edit);
    edits_.push_back(edit);
  }
  setWidget(page);
  row_ = -1;
  showRow(model_->rowCount() > 0 ? 0 : -1);
}

void TDataCard::showRow(int row) {
  row_ = row;
  for (int c = 0; c < static_cast<int>(edits_.size()); ++c) {
    QLineEdit* edit = edits_[static_cast<size_t>(c)];
    const QModelIndex index = model_->index(row, c);
    edit->setText(index.isValid() ? index.data(Qt::EditRole).toString() : QString());
    edit->setPlaceholderText(index.isValid() && index.data(Qt::EditRole).isNull() ? "(NULL)" : QString());
    edit->setReadOnly(!index.isValid() || !(model_->flags(index) & Qt::ItemIsEditable));
    edit->setModified(false);
  }
}

}  // namespace lomarin::ui
