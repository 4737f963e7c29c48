#include "ui/connect/form_connect.h"

#include <QApplication>
#include <QMessageBox>
#include <QSignalBlocker>
#include <QStyle>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts_session.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_account.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_key_store.h"
#include "ui/connect/account_frame.h"
#include "ui/connect/connect_memory.h"
#include "ui/connect/connect_message.h"
#include "ui/connect/connect_wait.h"
#include "ui/connect/form_account.h"
#include "ui_account_frame.h"
#include "ui_form_connect.h"

namespace lomarin::ui {

namespace {

constexpr int kUsesSshRole = Qt::UserRole;

QString q(const std::string& text) { return QString::fromStdString(text); }

QIcon accountIcon(bool usesSsh) {
  return QApplication::style()->standardIcon(usesSsh ? QStyle::SP_DriveNetIcon : QStyle::SP_ComputerIcon);
}

}  // namespace

TformConnect::TformConnect(SettingsStore& settings, TMyConnection& session, TSshTunnel& tunnel,
                           QWidget* parent, SecretVault* keychain)
    : QDialog(parent),
      settings_(settings),
      session_(session),
      tunnel_(tunnel),
      accounts_(settings, keychain),
      ui_(std::make_unique<Ui::TformConnect>()) {
  ui_->setupUi(this);
  ui_->lblTitle->setText(QStringLiteral("Lomarin for MySQL 6.0"));
  ui_->lvAccounts->setIconSize(QSize(16, 16));
  readDefaults();
  fillAccountList();

  connect(ui_->lvAccounts, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* item) { lvAccountsClick(item); });
  connect(ui_->lvAccounts, &QTreeWidget::currentItemChanged, this,
          [this](QTreeWidgetItem* item) { lvAccountsClick(item); });
  // A double-click on an account connects with it; Enter in the list reaches the default button.
  connect(ui_->lvAccounts, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
    lvAccountsClick(item);
    btnOkClick();
  });
  connect(ui_->btnAdd, &QPushButton::clicked, this, &TformConnect::btnAddClick);
  connect(ui_->btnEdit, &QPushButton::clicked, this, &TformConnect::btnEditClick);
  connect(ui_->btnDelete, &QPushButton::clicked, this, &TformConnect::btnDeleteClick);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformConnect::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformConnect::~TformConnect() = default;

QString TformConnect::accountName() const { return accountName_; }
QString TformConnect::databaseFilter() const { return databaseFilter_; }

void TformConnect::readDefaults() {
  auto& f = ui_->frmAccount->fields();
  if (const auto memory = readConnectMemory(layoutFile())) {
    bool ok = false;
    const int port = memory->port.toInt(&ok);
    if (ok) f.spnPort->setValue(port);
    chooseText(f.cboClientCharset, memory->clientCharset);
    chooseText(f.cboFontCharset, memory->fontCharset);
    chooseText(f.cboDatabase, memory->database);
    chooseText(f.cboServer, memory->host);
    f.edtLogin->setText(memory->login);
    f.edtPHPUrl->setText(memory->phpUrl);
  }
  if (settings_.read(opt::SavePassWord)) f.edtPassword->setText(q(settings_.read(opt::DefaultPassword)));
  if (settings_.read(opt::DefaultHostOption))
    chooseText(f.cboServer, q(settings_.read(opt::DefaultDatabaseHost)));
  bool ok = false;
  const int port = q(settings_.read(opt::DefaultDatabasePort, std::to_string(f.spnPort->value()))).toInt(&ok);
  if (ok) f.spnPort->setValue(port);
  f.chkShowAllDatabases->setChecked(settings_.read(opt::ShowAllDatabase));
  ui_->frmAccount->setKeyStoreFolder(SshKeyStoreFolder(settings_));
}

void TformConnect::fillAccountList() {
  ui_->lvAccounts->clear();
  for (const auto& row : accounts_.list()) {
    auto* item =
        new QTreeWidgetItem(ui_->lvAccounts, {q(row.Name), q(row.Login), q(row.Server), q(row.Database)});
    item->setIcon(0, accountIcon(row.UsesSSH));
    item->setData(0, kUsesSshRole, row.UsesSSH);
  }
  for (int column = 0; column < ui_->lvAccounts->columnCount(); ++column)
    ui_->lvAccounts->resizeColumnToContents(column);
  offerKnownTexts();
}

// The server and database boxes offer the texts the stored accounts use; what is typed stays.
void TformConnect::offerKnownTexts() {
  auto& f = ui_->frmAccount->fields();
  for (auto [box, column] : {std::pair{f.cboServer, 2}, std::pair{f.cboDatabase, 3}}) {
    const QString typed = box->currentText();
    QStringList known;
    for (int i = 0; i < ui_->lvAccounts->topLevelItemCount(); ++i) {
      const QString text = ui_->lvAccounts->topLevelItem(i)->text(column);
      if (!text.isEmpty() && !known.contains(text)) known << text;
    }
    const QSignalBlocker blocker(box);
    box->clear();
    box->addItems(known);
    box->setEditText(typed);
  }
}

void TformConnect::lvAccountsClick(QTreeWidgetItem* item) {
  if (!item) return;
  if (const auto account = accounts_.load(item->text(0).toStdString())) ui_->frmAccount->setAccount(*account);
}

void TformConnect::btnAddClick() {
  TformAccount editor(accounts_, QString(), SshKeyStoreFolder(settings_), this);
  if (editor.exec() == QDialog::Accepted) fillAccountList();
}

void TformConnect::btnEditClick() {
  auto* item = ui_->lvAccounts->currentItem();
  if (!item) return;
  const QString name = item->text(0);
  TformAccount editor(accounts_, name, SshKeyStoreFolder(settings_), this);
  if (editor.exec() != QDialog::Accepted) return;
  fillAccountList();
  const auto found = ui_->lvAccounts->findItems(name, Qt::MatchFixedString);
  if (!found.isEmpty()) ui_->lvAccounts->setCurrentItem(found.first());
}

void TformConnect::btnDeleteClick() {
  auto* item = ui_->lvAccounts->currentItem();
  if (!item) return;
  const QString name = item->text(0);
  QMessageBox question(QMessageBox::Question, windowTitle(), tr("Delete the account \"%1\"?").arg(name),
                       QMessageBox::Yes | QMessageBox::No, this);
  question.setObjectName("DeleteAccountQuestion");
  if (question.exec() != QMessageBox::Yes) return;
  accounts_.remove(name.toStdString());
  fillAccountList();
}

void TformConnect::btnOkClick() {
  const TAccount account = ui_->frmAccount->account();
  const QString filter = q(applyAccountToSession(account, session_.Settings));
  session_.Settings.AutoCommit = settings_.read(opt::AutoCommit);
  emit aboutToConnect(filter);
  try {
    // A cancelled connect leaves every field as the user left it.
    if (!ConnectAccountWithWait(session_, tunnel_, account, SshKeyStoreFolder(settings_), this)) return;
  } catch (const ServerError& error) {
    if (!session_.Events.OnError) showConnectError(this, error);
    return;
  } catch (const TSshError& error) {
    showConnectMessage(this, QString::fromUtf8(error.what()));
    return;
  }

  connected_ = account;
  databaseFilter_ = filter;
  auto* item = ui_->lvAccounts->currentItem();
  accountName_ = item ? item->text(0) : QString();
  settings_.write(opt::DefaultDatabasePort, std::to_string(account.Port));
  rememberInputs();
  accept();
}

void TformConnect::rememberInputs() {
  const auto& f = ui_->frmAccount->fields();
  writeConnectMemory(layoutFile(), {QString::number(f.spnPort->value()), f.cboClientCharset->currentText(),
                                    f.cboFontCharset->currentText(), f.cboDatabase->currentText(),
                                    f.cboServer->currentText(), f.edtLogin->text(), f.edtPHPUrl->text()});
}

}  // namespace lomarin::ui
