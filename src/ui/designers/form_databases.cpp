#include "ui/designers/form_databases.h"

#include "engine/connect/my_connection.h"
#include "engine/designers/database_dialogs.h"
#include "ui/designers/designer_widgets.h"
#include "ui/sqleditor/form_exec_script.h"
#include "ui_form_drop_database.h"
#include "ui_form_new_database.h"

namespace lomarin::ui {

TformNewDataBase::TformNewDataBase(TMyConnection& session, ErrorReporter showServerError, QWidget* parent)
    : QDialog(parent),
      session_(session),
      showServerError_(std::move(showServerError)),
      ui_(std::make_unique<Ui::TformNewDataBase>()) {
  ui_->setupUi(this);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformNewDataBase::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformNewDataBase::~TformNewDataBase() = default;

void TformNewDataBase::btnOkClick() {
  const std::string name = text(ui_->edtName);
  if (name.empty()) {
    showServerError_(designers::kMissingNewDatabase);
    return;
  }
  if (ExecSQLText(session_, designers::BuildCreateDatabaseSql(name))) accept();
}

TformDropDatabase::TformDropDatabase(TMyConnection& session, SettingsStore& settings,
                                     ErrorReporter showServerError, QWidget* parent)
    : QDialog(parent),
      session_(session),
      settings_(settings),
      showServerError_(std::move(showServerError)),
      ui_(std::make_unique<Ui::TformDropDatabase>()) {
  ui_->setupUi(this);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformDropDatabase::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformDropDatabase::~TformDropDatabase() = default;

void TformDropDatabase::showEvent(QShowEvent* event) {
  if (!listed_) {
    listed_ = true;
    ui_->coboDataBase->addItems(readColumn(session_, designers::ShowDatabasesSql(), "DATABASE"));
    ui_->coboDataBase->setCurrentIndex(-1);
  }
  QDialog::showEvent(event);
}

void TformDropDatabase::btnOkClick() {
  if (ui_->coboDataBase->currentIndex() < 0) {
    showServerError_(designers::kMissingDropDatabase);
    return;
  }
  const std::string sql = designers::BuildDropDatabaseSql(text(ui_->coboDataBase));
  TformExecScript confirm(session_, settings_, QString::fromStdString(sql), showServerError_, this);
  if (confirm.exec() != QDialog::Rejected) accept();
}

}  // namespace lomarin::ui
