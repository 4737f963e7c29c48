#include "ui/connect/form_account.h"

#include "engine/connect/accounts_session.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_tunnel.h"
#include "ui/connect/connect_message.h"
#include "ui/connect/connect_wait.h"
#include "ui_form_account.h"

namespace lomarin::ui {

TformAccount::TformAccount(TAccountStore& store, const QString& accountName,
                           const std::filesystem::path& keyStoreFolder, QWidget* parent)
    : QDialog(parent),
      store_(store),
      adding_(accountName.isEmpty()),
      keyStoreFolder_(keyStoreFolder),
      ui_(std::make_unique<Ui::TformAccount>()) {
  ui_->setupUi(this);
  ui_->edtName->setText(accountName);
  ui_->edtName->setReadOnly(!adding_);
  ui_->frmAccount->setKeyStoreFolder(keyStoreFolder);
  ui_->frmAccount->setAccount(store.load(accountName.toStdString()).value_or(TAccount{}));
  setWindowTitle(adding_ ? tr("New account") : tr("Edit account"));
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformAccount::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(ui_->btnTest, &QPushButton::clicked, this, &TformAccount::btnTestClick);
  ui_->btnOk->setDefault(true);
}

TformAccount::~TformAccount() = default;

QString TformAccount::accountName() const { return ui_->edtName->text().trimmed(); }

void TformAccount::btnOkClick() {
  const std::string name = accountName().toStdString();
  if (name.empty()) {
    showConnectMessage(this, tr("Enter a name for the account."));
    return;
  }
  if (name.find('\\') != std::string::npos) {
    showConnectMessage(this, tr("An account name cannot contain a backslash."));
    return;
  }
  if (adding_ && store_.exists(name)) {
    showConnectMessage(this, QString::fromUtf8(kNameAlreadyExists.data(), kNameAlreadyExists.size()));
    return;
  }
  const TAccount account = ui_->frmAccount->account();
  if (!(adding_ ? store_.add(name, account) : store_.save(name, account))) {
    showConnectMessage(this, tr("The account could not be saved: the settings file cannot be written."));
    return;
  }
  if (store_.keptOutOfKeychain())
    showConnectMessage(this, tr("The keychain did not take the account's passwords; the settings file keeps "
                                "them enciphered."));
  accept();
}

// Connects a session of its own with the fields as they stand and closes it again.
void TformAccount::btnTestClick() {
  const TAccount account = ui_->frmAccount->account();
  TMyConnection probe;
  TSshTunnel tunnel;
  applyAccountToSession(account, probe.Settings);
  try {
    if (!ConnectAccountWithWait(probe, tunnel, account, keyStoreFolder_, this)) return;
  } catch (const ServerError& error) {
    showConnectError(this, error);
    return;
  } catch (const TSshError& error) {
    showConnectMessage(this, QString::fromUtf8(error.what()));
    return;
  }
  const QString version = QString::fromStdString(probe.ServerVersion());
  probe.Disconnect();
  showConnectInformation(this, tr("Connection successful.\nServer version %1").arg(version));
}

}  // namespace lomarin::ui
