#include "ui/designers/form_foreign.h"

#include "engine/designers/key_lists.h"
#include "ui/designers/designer_widgets.h"
#include "ui_form_foreign.h"

namespace lomarin::ui {

TformForeign::TformForeign(TMyConnection& session, const QString& database, const QString& column,
                           QWidget* parent)
    : QDialog(parent),
      session_(session),
      database_(database.toStdString()),
      column_(column.toStdString()),
      ui_(std::make_unique<Ui::TformForeign>()) {
  ui_->setupUi(this);
  // The rule is written only when both halves are chosen, so neither starts chosen.
  ui_->coboEvent->setCurrentIndex(-1);
  ui_->coboRule->setCurrentIndex(-1);
  connect(ui_->coboTables, &QComboBox::currentIndexChanged, this, &TformForeign::coboTablesChange);
  ui_->coboTables->addItems(readColumn(session_, designers::ShowTableStatusSql(database_), "Name"));
  connect(ui_->btnOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformForeign::~TformForeign() = default;

designers::TForeignKeyChoice TformForeign::choice() const {
  return {column_, text(ui_->coboTables), text(ui_->coboFields), text(ui_->coboEvent), text(ui_->coboRule)};
}

void TformForeign::coboTablesChange() {
  ui_->coboFields->clear();
  if (ui_->coboTables->currentIndex() < 0) return;
  ui_->coboFields->addItems(
      readColumn(session_, designers::ShowTableFieldsSql(database_, text(ui_->coboTables)), "Field"));
}

}  // namespace lomarin::ui
