#include "ui/designers/form_rename_table.h"

#include "engine/connect/my_connection.h"
#include "engine/designers/database_dialogs.h"
#include "ui/designers/designer_widgets.h"
#include "ui_form_rename_table.h"

namespace lomarin::ui {

TfrmRenameTable::TfrmRenameTable(TMyConnection& session, const QString& database, const QString& oldName,
                                 QWidget* parent)
    : QDialog(parent),
      session_(session),
      database_(database.toStdString()),
      oldName_(oldName.toStdString()),
      ui_(std::make_unique<Ui::TfrmRenameTable>()) {
  ui_->setupUi(this);
  ui_->edOldName->setText(oldName);
  ui_->edNewName->setText(oldName);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TfrmRenameTable::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TfrmRenameTable::~TfrmRenameTable() = default;

void TfrmRenameTable::btnOkClick() {
  const std::string newName = text(ui_->edNewName);
  if (newName.empty()) return;
  if (ExecSQLText(session_, designers::BuildRenameTableSql(database_, oldName_, newName))) accept();
}

}  // namespace lomarin::ui
