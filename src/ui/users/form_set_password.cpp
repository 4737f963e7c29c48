#include "ui/users/form_set_password.h"

#include "engine/connect/escape.h"
#include "engine/connect/my_connection.h"
#include "engine/users/user_script.h"
#include "ui_form_set_password.h"

namespace lomarin::ui {

TformSetPassword::TformSetPassword(TMyConnection& session, ErrorReporter showServerError, const QString& user,
                                   const QString& host, QWidget* parent)
    : QDialog(parent),
      session_(session),
      showServerError_(std::move(showServerError)),
      user_(user),
      host_(host),
      ui_(std::make_unique<Ui::TformSetPassword>()) {
  ui_->setupUi(this);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformSetPassword::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformSetPassword::~TformSetPassword() = default;

void TformSetPassword::btnOkClick() {
  const std::string password = ui_->edPassword->text().toStdString();
  if (password != ui_->edRePassword->text().toStdString()) {
    showServerError_(users::kPasswordsDiffer);
    return;
  }
  const users::TAccountDialect dialect = users::AccountDialectFor(session_.ServerVersion());
  const auto sql = [&](const users::LiteralEscaper& escape) {
    return users::BuildSetPasswordSql(user_.toStdString(), host_.toStdString(), password, dialect, escape);
  };
  if (ExecSQLText(session_, sql([this](std::string_view v) { return EscapeString(session_, v); }),
                  sql(users::MaskPassword)))
    accept();
}

}  // namespace lomarin::ui
