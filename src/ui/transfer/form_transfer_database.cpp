#include "ui/transfer/form_transfer_database.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSaveFile>
#include <QTabWidget>
#include <QVBoxLayout>

#include "engine/app/data_folder.h"
#include "engine/connect/accounts_session.h"
#include "engine/connect/ssh_account.h"
#include "engine/connect/ssh_key_store.h"
#include "ui/focus_return.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

QLineEdit* field(QWidget* parent, const char* name, const QString& text = {}) {
  auto* edit = new QLineEdit(text, parent);
  edit->setObjectName(name);
  return edit;
}

QCheckBox* option(QWidget* parent, const char* name, const QString& text, bool checked) {
  auto* box = new QCheckBox(text, parent);
  box->setObjectName(name);
  box->setChecked(checked);
  return box;
}

QString qs(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

TfrmTransferdatabase::TfrmTransferdatabase(TMyConnection& session, SettingsStore& settings, QWidget* parent,
                                           SecretVault* keychain)
    : QDialog(parent),
      session_(session),
      settings_(settings),
      keychain_(keychain),
      transfer_(std::make_unique<TTransferDatabase>(session, MyTransConnect)),
      activity_(std::make_unique<TSessionActivity>(session)) {
  setObjectName("TfrmTransferdatabase");
  MyTransConnect.Events.AfterDisconnect = [this] { tunnel_.Close(); };
  setWindowTitle(tr("Transfer database"));
  transfer_->OnLog = [this](const std::string& line) {
    QMetaObject::invokeMethod(
        this, [this, text = qs(line)] { addLog(text); }, Qt::QueuedConnection);
  };
  transfer_->OnProgress = [this](const std::string& object, int percent) {
    QMetaObject::invokeMethod(
        this, [this, name = qs(object), percent] { setProgress(name, percent); }, Qt::QueuedConnection);
  };
  buildUi();
  resize(760, 560);
}

TfrmTransferdatabase::~TfrmTransferdatabase() = default;

QWidget* TfrmTransferdatabase::buildTarget() {
  auto* box = new QGroupBox(tr("Target"), this);
  cboAccount_ = new QComboBox(box);
  cboAccount_->setObjectName("cboAccount");
  cboAccount_->addItem(tr("(as typed below)"));
  for (const std::string& name : TAccountStore(settings_).names()) cboAccount_->addItem(qs(name));
  edtLogin_ = field(box, "edtLogin");
  edtPassword_ = field(box, "edtPassword");
  edtPassword_->setEchoMode(QLineEdit::Password);
  edtServer_ = field(box, "edtServer", "localhost");
  edtDatabase_ = field(box, "edtDatabase");
  edtPort_ = field(box, "edtPort", "3306");
  auto* form = new QFormLayout(box);
  form->addRow(tr("Account"), cboAccount_);
  form->addRow(tr("Login"), edtLogin_);
  form->addRow(tr("Password"), edtPassword_);
  form->addRow(tr("Server"), edtServer_);
  form->addRow(tr("Database"), edtDatabase_);
  form->addRow(tr("Port"), edtPort_);
  connect(cboAccount_, &QComboBox::currentIndexChanged, this, &TfrmTransferdatabase::cboAccountChange);
  return box;
}

QWidget* TfrmTransferdatabase::buildObjectList(QListWidget*& list, QCheckBox*& checkAll,
                                               const std::vector<std::string>& names) {
  auto* page = new QWidget(this);
  list = new QListWidget(page);
  for (const std::string& name : names) {
    auto* item = new QListWidgetItem(qs(name), list);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Checked);
  }
  checkAll = new QCheckBox(tr("Check all"), page);
  checkAll->setChecked(true);
  connect(checkAll, &QCheckBox::toggled, list, [list](bool on) {
    for (int i = 0; i < list->count(); ++i) list->item(i)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
  });
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(list, 1);
  layout->addWidget(checkAll);
  return page;
}

void TfrmTransferdatabase::buildUi() {
  const std::string database = session_.CurrentDatabase();
  std::vector<std::string> tables, routines;
  try {
    tables = TransferTableNames(session_, database);
    routines = TransferRoutineNames(session_, database);
  } catch (const ServerError&) {
    // Shown by the session's handler; the lists stay empty.
  }
  auto* objects = new QTabWidget(this);
  objects->setObjectName("pgcObjects");
  objects->addTab(buildObjectList(lstTables_, chkCheckAllTables_, tables), tr("&Tables"));
  objects->addTab(buildObjectList(lstProcedures_, chkCheckAllProcs_, routines), tr("&Stored procedures"));
  lstTables_->setObjectName("lstTables");
  lstProcedures_->setObjectName("lstProcedures");
  chkCheckAllTables_->setObjectName("chkCheckAllTables");
  chkCheckAllProcs_->setObjectName("chkCheckAllProcs");

  auto* options = new QGroupBox(tr("Options"), this);
  chkTransferTables_ = option(options, "chkTransferTables", tr("Transfer tables"), true);
  chkTransferData_ = option(options, "chkTransferData", tr("Transfer data"), true);
  chkTransferViews_ = option(options, "chkTransferViews", tr("Transfer Views"), true);
  chkDropTable_ = option(options, "chkDropTable", tr("Drop table  if exist"), true);
  chkStoredProcs_ = option(options, "chkStoredProcs", tr("Stored procedures"), false);
  chkCreateLog_ = option(options, "chkCreateLog", tr("Create log"), true);
  auto* optionLayout = new QVBoxLayout(options);
  const std::pair<QCheckBox*, TTransferOption> rules[] = {
      {chkTransferTables_, TTransferOption::TransferTables},
      {chkTransferData_, TTransferOption::TransferData},
      {chkTransferViews_, TTransferOption::TransferViews},
      {chkDropTable_, TTransferOption::DropTable}};
  for (const auto& [box, rule] : rules) {
    optionLayout->addWidget(box);
    connect(box, &QCheckBox::clicked, this,
            [this, rule](bool checked) { ApplyTransferOption(transfer_->Dump, rule, checked); });
  }
  optionLayout->addWidget(chkStoredProcs_);
  optionLayout->addWidget(chkCreateLog_);
  optionLayout->addStretch();

  auto* top = new QHBoxLayout;
  top->addWidget(buildTarget(), 3);
  top->addWidget(objects, 3);
  top->addWidget(options, 2);

  memInfo_ = new QPlainTextEdit(this);
  memInfo_->setObjectName("memInfo");
  memInfo_->setReadOnly(true);
  memInfo_->setLineWrapMode(QPlainTextEdit::NoWrap);
  pbTransfer_ = new QProgressBar(this);
  pbTransfer_->setObjectName("pbTransfer");
  pbTransfer_->setRange(0, 100);
  pbTransfer_->setValue(0);
  pbTransfer_->setFormat("%p%");

  btnOk_ = new QPushButton(tr("&Ok"), this);
  btnOk_->setObjectName("btnOk");
  btnOk_->setDefault(true);
  btnStop_ = new QPushButton(tr("&Stop"), this);
  btnStop_->setObjectName("btnStop");
  btnStop_->setEnabled(false);
  auto* btnClose = new QPushButton(tr("&Close"), this);
  btnClose->setObjectName("btnClose");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(pbTransfer_, 1);
  buttons->addWidget(btnOk_);
  buttons->addWidget(btnStop_);
  buttons->addWidget(btnClose);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(new QLabel(tr("Info"), this));
  layout->addWidget(memInfo_, 1);
  layout->addLayout(buttons);

  connect(btnOk_, &QPushButton::clicked, this, &TfrmTransferdatabase::btnOkClick);
  connect(btnStop_, &QPushButton::clicked, this, &TfrmTransferdatabase::btnStopClick);
  connect(btnClose, &QPushButton::clicked, this, &QDialog::reject);
}

void TfrmTransferdatabase::cboAccountChange() {
  account_.reset();
  if (cboAccount_->currentIndex() <= 0) return;
  account_ = TAccountStore(settings_, keychain_).load(cboAccount_->currentText().toStdString());
  if (!account_) return;
  edtLogin_->setText(qs(account_->Login));
  edtPassword_->setText(qs(account_->Password));
  edtServer_->setText(qs(account_->Server));
  edtDatabase_->setText(qs(account_->Database));
  edtPort_->setText(QString::number(account_->Port));
}

TTransferPlan TfrmTransferdatabase::plan() const {
  TTransferPlan p;
  p.sourceDatabase = session_.CurrentDatabase();
  p.targetDatabase = edtDatabase_->text().toStdString();
  for (int i = 0; i < lstTables_->count(); ++i)
    if (lstTables_->item(i)->checkState() == Qt::Checked)
      p.tables.push_back(lstTables_->item(i)->text().toStdString());
  p.storedProcedures = chkStoredProcs_->isChecked();
  for (int i = 0; i < lstProcedures_->count(); ++i)
    if (lstProcedures_->item(i)->checkState() == Qt::Checked)
      p.procedures.push_back(lstProcedures_->item(i)->text().toStdString());
  return p;
}

void TfrmTransferdatabase::prepareTarget() {
  // The fields as typed win over the stored account's, for the target of its tunnel too.
  TAccount account = account_.value_or(TAccount{});
  account.Login = edtLogin_->text().toStdString();
  account.Password = edtPassword_->text().toStdString();
  account.Server = edtServer_->text().toStdString();
  account.Database = edtDatabase_->text().toStdString();
  account.Port = edtPort_->text().toInt();
  applyAccountToSession(account, MyTransConnect.Settings);
  transfer_->ConnectTarget = [this, account, keys = SshKeyStoreFolder(settings_)] {
    ConnectThroughAccountTunnel(MyTransConnect, tunnel_, account, keys);
  };
}

void TfrmTransferdatabase::btnOkClick() {
  prepareTarget();
  const TTransferPlan transferPlan = plan();
  memInfo_->clear();
  btnOk_->setEnabled(false);
  btnStop_->setEnabled(true);
  try {
    activity_->run(
        tr("Transfer database"), [this, &transferPlan] { transfer_->Run(transferPlan); },
        [this] { transfer_->Stop(); }, nullptr);
  } catch (const std::exception& error) {
    addLog(QString::fromUtf8(error.what()));
  }
  btnOk_->setEnabled(true);
  btnStop_->setEnabled(false);
  if (chkCreateLog_->isChecked()) saveLog();
}

void TfrmTransferdatabase::btnStopClick() {
  btnStop_->setEnabled(false);
  activity_->stop();
}

void TfrmTransferdatabase::addLog(const QString& line) { memInfo_->appendPlainText(line); }

void TfrmTransferdatabase::setProgress(const QString& object, int percent) {
  pbTransfer_->setFormat(object + " %p%");
  pbTransfer_->setValue(percent);
}

void TfrmTransferdatabase::saveLog() {
  std::error_code ignored;
  std::filesystem::create_directories(dataFolder(), ignored);
  const QString file = qs((dataFolder() / "log.txt").string());
  QSaveFile out(file);
  if (out.open(QIODevice::WriteOnly) && out.write(memInfo_->toPlainText().toUtf8() + '\n') >= 0 &&
      out.commit())
    return;
  TFocusReturn focus;
  QMessageBox::critical(this, windowTitle(), tr("Cannot write %1: %2").arg(file, out.errorString()));
}

}  // namespace lomarin::ui
