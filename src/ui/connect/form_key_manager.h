#pragma once

#include <QDialog>

#include "engine/connect/ssh_key_store.h"

class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace lomarin::ui {

// The SSH key manager: the client keys of the key store with their type and fingerprint; keys are
// made, imported and deleted here, and a key's public line is shown and copied for a server's
// authorized_keys.
class TformKeyManager : public QDialog {
  Q_OBJECT
 public:
  explicit TformKeyManager(const TSshKeyStore& store, QWidget* parent = nullptr);

 private:
  void fillKeyList(const QString& chosen);
  void showChosenKey();
  QString chosenKey() const;

  const TSshKeyStore store_;
  QTreeWidget* keys_;
  QLineEdit* publicLine_;
  QPushButton* delete_;
  QPushButton* copy_;
};

}  // namespace lomarin::ui
