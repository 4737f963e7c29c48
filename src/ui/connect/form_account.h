#pragma once

#include <QDialog>
#include <filesystem>
#include <memory>

#include "engine/connect/accounts.h"

namespace Ui {
class TformAccount;
}

namespace lomarin::ui {

// The account editor. With an empty name it adds a new account; otherwise it edits that one. Its SSH
// page lists the client keys of the key store in keyStoreFolder.
class TformAccount : public QDialog {
  Q_OBJECT
 public:
  TformAccount(TAccountStore& store, const QString& accountName, const std::filesystem::path& keyStoreFolder,
               QWidget* parent = nullptr);
  ~TformAccount() override;

  QString accountName() const;

 private:
  void btnOkClick();
  void btnTestClick();

  TAccountStore& store_;
  bool adding_;
  std::filesystem::path keyStoreFolder_;
  std::unique_ptr<Ui::TformAccount> ui_;
};

}  // namespace lomarin::ui
