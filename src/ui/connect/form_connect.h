#pragma once

#include <QDialog>
#include <QString>
#include <memory>

#include "engine/connect/accounts.h"

namespace Ui {
class TformConnect;
}

namespace lomarin {
class SecretVault;
class SettingsStore;
class TMyConnection;
class TSshTunnel;
}  // namespace lomarin

class QTreeWidgetItem;

namespace lomarin::ui {

// The connection manager: the stored accounts and the fields of one connection. "&Ok" copies the
// fields onto the session and connects it, through the SSH tunnel when the SSH page asks for it;
// the dialog closes only when the session is connected, otherwise the error is shown (by the
// session's OnError handler when there is one) and every field keeps what the user typed.
class TformConnect : public QDialog {
  Q_OBJECT
 public:
  TformConnect(SettingsStore& settings, TMyConnection& session, TSshTunnel& tunnel,
               QWidget* parent = nullptr, SecretVault* keychain = nullptr);
  ~TformConnect() override;

  // The account chosen in the list when the connect was made; empty when none was.
  QString accountName() const;
  // The filter the object tree lists databases with (TframeExplorer::setDatabaseFilter):
  // the database in single quotes, or empty when all databases are shown.
  QString databaseFilter() const;
  // The values the session was connected with (editor charset, line-end format and encoding).
  const TAccount& connectedAccount() const { return connected_; }

 signals:
  // Right before the session connects, so the after-connect steps can read the filter.
  void aboutToConnect(const QString& databaseFilter);

 private:
  void readDefaults();
  void fillAccountList();
  void offerKnownTexts();
  void lvAccountsClick(QTreeWidgetItem* item);
  void btnAddClick();
  void btnEditClick();
  void btnDeleteClick();
  void btnOkClick();
  void rememberInputs();

  SettingsStore& settings_;
  TMyConnection& session_;
  TSshTunnel& tunnel_;
  TAccountStore accounts_;
  TAccount connected_;
  QString databaseFilter_;
  QString accountName_;
  std::unique_ptr<Ui::TformConnect> ui_;
};

}  // namespace lomarin::ui
