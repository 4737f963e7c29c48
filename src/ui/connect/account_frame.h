#pragma once

#include <QWidget>
#include <memory>

#include "engine/connect/accounts.h"

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

 private:
  void browseFor(QLineEdit* edit);

  std::unique_ptr<Ui::TframeAccount> ui_;
};

}  // namespace lomarin::ui
