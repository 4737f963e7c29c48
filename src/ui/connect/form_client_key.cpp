#include "ui/connect/form_client_key.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>

#include "engine/connect/ssh_error.h"
#include "ui/connect/connect_message.h"

namespace lomarin::ui {

namespace {

std::optional<std::string> askPassphrase(QWidget* parent, const QString& file) {
  QInputDialog dialog(parent);
  dialog.setObjectName("KeyPassphrase");
  dialog.setWindowTitle(QObject::tr("Import client key"));
  dialog.setLabelText(QObject::tr("The key in %1 is protected.\nPassphrase:").arg(file));
  dialog.setTextEchoMode(QLineEdit::Password);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue().toStdString();
}

QString runDialog(TformClientKey::Mode mode, QWidget* parent, const TSshKeyStore& store) {
  TformClientKey dialog(mode, store, parent);
  return dialog.exec() == QDialog::Accepted ? dialog.keyName() : QString();
}

}  // namespace

TformClientKey::TformClientKey(Mode mode, const TSshKeyStore& store, QWidget* parent)
    : QDialog(parent), mode_(mode), store_(store), name_(new QLineEdit(this)) {
  setObjectName("TformClientKey");
  setWindowTitle(mode == Mode::New ? tr("New client key") : tr("Import client key"));
  name_->setObjectName("edtKeyName");
  auto* form = new QFormLayout(this);
  form->addRow(tr("Name"), name_);
  if (mode == Mode::New) {
    type_ = new QComboBox(this);
    type_->setObjectName("cboKeyType");
    type_->addItem(tr("ed25519"), static_cast<int>(TSshKeyType::Ed25519));
    type_->addItem(tr("RSA 3072 bits"), static_cast<int>(TSshKeyType::Rsa3072));
    form->addRow(tr("Type"), type_);
  } else {
    file_ = new QLineEdit(this);
    file_->setObjectName("edtKeyFile");
    auto* browse = new QToolButton(this);
    browse->setObjectName("btnKeyFile");
    browse->setText("...");
    connect(browse, &QToolButton::clicked, this, [this] {
      const QString file = QFileDialog::getOpenFileName(this, tr("OpenSSH private key"), file_->text());
      if (file.isEmpty()) return;
      file_->setText(file);
      if (name_->text().isEmpty()) name_->setText(QFileInfo(file).fileName());
    });
    auto* row = new QHBoxLayout;
    row->addWidget(file_);
    row->addWidget(browse);
    form->addRow(tr("Private key file"), row);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("btnOk");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("btnCancel");
  connect(buttons, &QDialogButtonBox::accepted, this, &TformClientKey::btnOkClick);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  form->addRow(buttons);
  setMinimumWidth(420);
}

QString TformClientKey::keyName() const { return name_->text(); }

void TformClientKey::btnOkClick() {
  try {
    if (store()) accept();
  } catch (const TSshError& error) {
    showConnectMessage(this, QString::fromUtf8(error.what()));
  }
}

// False when the user gave up the passphrase.
bool TformClientKey::store() {
  const std::string name = name_->text().toStdString();
  if (mode_ == Mode::New) {
    store_.newClientKey(name, static_cast<TSshKeyType>(type_->currentData().toInt()));
    return true;
  }
  const QString file = file_->text();
  return store_.importClientKey(name, file.toStdString(), [&] { return askPassphrase(this, file); });
}

QString askNewClientKey(QWidget* parent, const TSshKeyStore& store) {
  return runDialog(TformClientKey::Mode::New, parent, store);
}

QString askImportClientKey(QWidget* parent, const TSshKeyStore& store) {
  return runDialog(TformClientKey::Mode::Import, parent, store);
}

bool askDeleteClientKey(QWidget* parent, const TSshKeyStore& store, const QString& name) {
  QMessageBox box(QMessageBox::Question, QObject::tr("Delete client key"),
                  QObject::tr("Delete the client key \"%1\"?\nServers that know only this key will not "
                              "let this program in any more.")
                      .arg(name),
                  QMessageBox::Yes | QMessageBox::No, parent);
  box.setObjectName("ConfirmDeleteKey");
  box.setDefaultButton(QMessageBox::No);
  if (box.exec() != QMessageBox::Yes) return false;
  try {
    store.deleteClientKey(name.toStdString());
  } catch (const TSshError& error) {
    showConnectMessage(parent, QString::fromUtf8(error.what()));
    return false;
  }
  return true;
}

}  // namespace lomarin::ui
