#pragma once

#include <QWidget>
#include <filesystem>
#include <memory>

#include "engine/connect/accounts.h"
#include "engine/connect/ssh_key_store.h"

class QComboBox;
class QLineEdit;

namespace Ui {
class TframeAccount;
}

namespace lomarin::ui {

// Picks the entry when the list has it; an editable box takes any text.
void chooseText(QComboBox* box, const QString& text);

// The pages of an account's fields (connection, SSH tunnel, PHP tunnel, SSL, advanced), shared
// by the connect dialog and the account editor.
class TframeAccount : public QWidget {
  Q_OBJECT
 public:
  explicit TframeAccount(QWidget* parent = nullptr);
  ~TframeAccount() override;

  TAccount account() const;
  void setAccount(const TAccount& account);

  Ui::TframeAccount& fields() { return *ui_; }

  // Lists the client keys of the SSH key store in this folder, whose keys the SSH page's buttons
  // make, import and delete; nothing is chosen.
  void setKeyStoreFolder(const std::filesystem::path& folder);

 private:
  void browseFor(QLineEdit* edit);
  // Asks where, and writes the tunnel script there with the page's secret set.
  void saveTunnelScript();

  // Lists the keys and chooses `chosen` when the store holds it.
  void fillKeyList(const QString& chosen);

  TSshKeyStore keyStore_{std::filesystem::path()};
  std::unique_ptr<Ui::TframeAccount> ui_;
};

}  // namespace lomarin::ui
