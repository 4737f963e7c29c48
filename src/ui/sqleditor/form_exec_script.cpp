#include "ui/sqleditor/form_exec_script.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/connect/my_connection.h"
#include "ui/sqleditor/frame_ec_sql.h"

namespace lomarin::ui {

TformExecScript::TformExecScript(TMyConnection& session, SettingsStore& settings, const QString& sql,
                                 ErrorReporter reportError, QWidget* parent)
    : QDialog(parent), session_(session), sql_(sql), reportError_(std::move(reportError)) {
  setObjectName("TformExecScript");
  setWindowTitle("Exec SQL");
  frameSQL_ = TframeecSQL::createReadOnly(settings, this);
  frameSQL_->setObjectName("frameSQL");
  frameSQL_->memo()->setText(sql);
  // A long statement reads better wrapped than scrolled sideways.
  frameSQL_->action("actWordWrap")->setChecked(true);
  btnExecute_ = new QPushButton("&Execute", this);
  btnExecute_->setObjectName("btnExecute");
  btnExecute_->setDefault(true);
  btnClose_ = new QPushButton("&Close", this);
  btnClose_->setObjectName("btnClose");
  // Enter runs the statement, as the default button promises, rather than landing in the memo.
  btnExecute_->setFocus();

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(btnExecute_);
  buttons->addWidget(btnClose_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(frameSQL_);
  layout->addLayout(buttons);
  resize(560, 360);

  connect(btnExecute_, &QPushButton::clicked, this, &TformExecScript::btnExecuteClick);
  connect(btnClose_, &QPushButton::clicked, this, &QDialog::reject);
}

void TformExecScript::btnExecuteClick() {
  const bool ran = ExecSQLText(session_, sql_.toStdString(), [this](const ServerError& error) {
    if (reportError_) reportError_(QString::fromStdString(error.message()));
  });
  if (!ran) return;
  success_ = true;
  accept();
}

}  // namespace lomarin::ui
