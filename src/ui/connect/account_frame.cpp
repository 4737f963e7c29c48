#include "ui/connect/account_frame.h"

#include <QFileDialog>
#include <QSaveFile>
#include <QSignalBlocker>

#include "engine/connect/accounts_choices.h"
#include "engine/connect/ssh_key_store.h"
#include "engine/connect/tunnel_script.h"
#include "ui/connect/connect_message.h"
#include "ui/connect/form_client_key.h"
#include "ui_account_frame.h"

namespace lomarin::ui {

namespace {

template <size_t N>
void fill(QComboBox* box, const std::array<std::string_view, N>& items) {
  for (auto item : items) box->addItem(QString::fromUtf8(item.data(), static_cast<int>(item.size())));
}

QString q(const std::string& text) { return QString::fromStdString(text); }
std::string s(const QString& text) { return text.toStdString(); }

void choose(QComboBox* box, const std::string& text) { chooseText(box, q(text)); }

}  // namespace

void chooseText(QComboBox* box, const QString& text) {
  const int index = box->findText(text);
  if (index >= 0)
    box->setCurrentIndex(index);
  else if (box->isEditable())
    box->setEditText(text);
}

TframeAccount::TframeAccount(QWidget* parent) : QWidget(parent), ui_(std::make_unique<Ui::TframeAccount>()) {
  ui_->setupUi(this);
  fill(ui_->cboClientCharset, kClientCharsets);
  fill(ui_->cboFontCharset, kFontCharsets);
  fill(ui_->cboFontFormat, kFontFormats);
  fill(ui_->cboFontEncoding, kFontEncodings);
  const std::pair<QToolButton*, QLineEdit*> browsers[] = {{ui_->btnCACert, ui_->edtCACert},
                                                          {ui_->btnCert, ui_->edtCert},
                                                          {ui_->btnCipherList, ui_->edtCipherList},
                                                          {ui_->btnClientKey, ui_->edtClientKey}};
  for (auto [button, edit] : browsers)
    connect(button, &QToolButton::clicked, this, [this, edit = edit] { browseFor(edit); });

  connect(ui_->btnNewKey, &QPushButton::clicked, this,
          [this] { fillKeyList(askNewClientKey(this, keyStore_)); });
  connect(ui_->btnImportKey, &QPushButton::clicked, this,
          [this] { fillKeyList(askImportClientKey(this, keyStore_)); });
  connect(ui_->btnDeleteKey, &QPushButton::clicked, this, [this] {
    if (askDeleteClientKey(this, keyStore_, ui_->cboSSHKey->currentText())) fillKeyList({});
  });
  connect(ui_->cboSSHKey, &QComboBox::currentIndexChanged, this,
          [this](int index) { ui_->btnDeleteKey->setEnabled(index >= 0); });
  connect(ui_->btnSaveTunnelScript, &QPushButton::clicked, this, &TframeAccount::saveTunnelScript);
}

void TframeAccount::saveTunnelScript() {
  const QString file = QFileDialog::getSaveFileName(this, tr("Save tunnel script"),
                                                    QStringLiteral("tunnel.php"), tr("PHP files (*.php)"));
  if (file.isEmpty()) return;
  QSaveFile out(file);
  const std::string script = TunnelScript(s(ui_->edtPHPSecret->text()));
  if (!out.open(QIODevice::WriteOnly) || out.write(script.data(), static_cast<qint64>(script.size())) < 0 ||
      !out.commit())
    showConnectMessage(this,
                       tr("The tunnel script could not be saved as %1: %2").arg(file, out.errorString()));
}

TframeAccount::~TframeAccount() = default;

void TframeAccount::setKeyStoreFolder(const std::filesystem::path& folder) {
  keyStore_ = TSshKeyStore(folder);
  fillKeyList({});
}

void TframeAccount::fillKeyList(const QString& chosen) {
  {
    const QSignalBlocker blocker(ui_->cboSSHKey);
    ui_->cboSSHKey->clear();
    for (const std::string& name : keyStore_.clientKeyNames()) ui_->cboSSHKey->addItem(q(name));
    ui_->cboSSHKey->setCurrentIndex(-1);
  }
  ui_->cboSSHKey->setCurrentIndex(ui_->cboSSHKey->findText(chosen));
  ui_->btnDeleteKey->setEnabled(ui_->cboSSHKey->currentIndex() >= 0);
}

void TframeAccount::browseFor(QLineEdit* edit) {
  const QString file = QFileDialog::getOpenFileName(this, tr("Choose a file"), edit->text());
  if (!file.isEmpty()) edit->setText(file);
}

TAccount TframeAccount::account() const {
  TAccount a;
  a.Login = s(ui_->edtLogin->text());
  a.Password = s(ui_->edtPassword->text());
  a.Server = s(ui_->cboServer->currentText());
  a.Port = ui_->spnPort->value();
  a.Database = s(ui_->cboDatabase->currentText());
  a.ShowAllDatabases = ui_->chkShowAllDatabases->isChecked();
  a.UseSSH = ui_->chkSSH->isChecked();
  a.SSHServer = s(ui_->edtSSHServer->text());
  a.SSHLogin = s(ui_->edtSSHLogin->text());
  a.SSHPassword = s(ui_->edtSSHPassword->text());
  a.SSHPort = ui_->spnSSHPort->value();
  a.SSHToPort = s(ui_->edtSSHToPort->text());
  a.SSHForward = s(ui_->edtSSHForward->text());
  a.SSHClientKey = s(ui_->cboSSHKey->currentText());
  a.ClientCharset = s(ui_->cboClientCharset->currentText());
  a.FontCharset = s(ui_->cboFontCharset->currentText());
  a.Direct = ui_->chkDirect->isChecked();
  a.UseSSL = ui_->chkSSL->isChecked();
  a.SSLKey = s(ui_->edtClientKey->text());
  a.SSLCACert = s(ui_->edtCACert->text());
  a.SSLCert = s(ui_->edtCert->text());
  a.SSLCipherList = s(ui_->edtCipherList->text());
  a.Unicode = ui_->chkUnicode->isChecked();
  a.Compression = ui_->chkCompression->isChecked();
  a.Timeout = ui_->spnTimeout->value();
  a.FontFormat = s(ui_->cboFontFormat->currentText());
  a.FontEncoding = s(ui_->cboFontEncoding->currentText());
  a.UsePHP = ui_->chkPHP->isChecked();
  a.PHPUrl = s(ui_->edtPHPUrl->text());
  a.ProxyHost = s(ui_->edtProxyHost->text());
  a.ProxyLogin = s(ui_->edtProxyLogin->text());
  a.ProxyPassword = s(ui_->edtProxyPassword->text());
  a.ProxyPort = ui_->spnProxyPort->value();
  a.PHPSecret = s(ui_->edtPHPSecret->text());
  return a;
}

void TframeAccount::setAccount(const TAccount& a) {
  ui_->edtLogin->setText(q(a.Login));
  ui_->edtPassword->setText(q(a.Password));
  choose(ui_->cboServer, a.Server);
  ui_->spnPort->setValue(a.Port);
  choose(ui_->cboDatabase, a.Database);
  ui_->chkShowAllDatabases->setChecked(a.ShowAllDatabases);
  ui_->chkSSH->setChecked(a.UseSSH);
  ui_->edtSSHServer->setText(q(a.SSHServer));
  ui_->edtSSHLogin->setText(q(a.SSHLogin));
  ui_->edtSSHPassword->setText(q(a.SSHPassword));
  ui_->spnSSHPort->setValue(a.SSHPort);
  ui_->edtSSHToPort->setText(q(a.SSHToPort));
  ui_->edtSSHForward->setText(q(a.SSHForward));
  ui_->cboSSHKey->setCurrentIndex(-1);
  ui_->chkDirect->setChecked(a.Direct);
  ui_->chkSSL->setChecked(a.UseSSL);
  ui_->edtClientKey->setText(q(a.SSLKey));
  ui_->edtCACert->setText(q(a.SSLCACert));
  ui_->edtCert->setText(q(a.SSLCert));
  ui_->edtCipherList->setText(q(a.SSLCipherList));
  ui_->chkUnicode->setChecked(a.Unicode);
  ui_->chkCompression->setChecked(a.Compression);
  ui_->spnTimeout->setValue(a.Timeout);
  ui_->chkPHP->setChecked(a.UsePHP);
  ui_->edtPHPUrl->setText(q(a.PHPUrl));
  ui_->edtProxyHost->setText(q(a.ProxyHost));
  ui_->edtProxyLogin->setText(q(a.ProxyLogin));
  ui_->edtProxyPassword->setText(q(a.ProxyPassword));
  ui_->spnProxyPort->setValue(a.ProxyPort);
  ui_->edtPHPSecret->setText(q(a.PHPSecret));
  choose(ui_->cboClientCharset, a.ClientCharset);
  choose(ui_->cboFontCharset, a.FontCharset);
  choose(ui_->cboFontFormat, a.FontFormat);
  choose(ui_->cboFontEncoding, a.FontEncoding);
}

}  // namespace lomarin::ui
