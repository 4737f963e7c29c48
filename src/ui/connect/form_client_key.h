#pragma once

#include <QDialog>

#include "engine/connect/ssh_key_store.h"

class QComboBox;
class QLineEdit;

namespace lomarin::ui {

// Makes one client key in the key store: a new one ("New client key") or a copy of an OpenSSH
// private key file ("Import client key", which asks for the file's passphrase when it has one).
// "&Ok" closes the dialog only once the key is stored; a failure is shown and the fields stay.
class TformClientKey : public QDialog {
  Q_OBJECT
 public:
  enum class Mode { New, Import };
  TformClientKey(Mode mode, const TSshKeyStore& store, QWidget* parent = nullptr);

  // The name the key was stored under, once the dialog is accepted.
  QString keyName() const;

 private:
  void btnOkClick();
  bool store();

  const Mode mode_;
  const TSshKeyStore store_;
  QLineEdit* name_;
  QComboBox* type_ = nullptr;
  QLineEdit* file_ = nullptr;
};

// The name and key commands of the SSH page and the key manager. Each returns the key's name
// once it is stored, or an empty text when the user gave up.
QString askNewClientKey(QWidget* parent, const TSshKeyStore& store);
QString askImportClientKey(QWidget* parent, const TSshKeyStore& store);
// Asks for a confirmation first; true once the key is gone.
bool askDeleteClientKey(QWidget* parent, const TSshKeyStore& store, const QString& name);

}  // namespace lomarin::ui
