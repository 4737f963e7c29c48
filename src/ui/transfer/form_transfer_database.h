#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "engine/connect/accounts.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_tunnel.h"
#include "engine/transfer/transfer_database.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

namespace lomarin {
class SecretVault;
class SettingsStore;
}

namespace lomarin::ui {

class TSessionActivity;

// "Transfer database": copies the current database's tables, data, views and stored procedures
// to a database on another connection of the dialog's own, logging every step in "Info".
class TfrmTransferdatabase : public QDialog {
  Q_OBJECT
 public:
  TfrmTransferdatabase(TMyConnection& session, SettingsStore& settings, QWidget* parent = nullptr,
                       SecretVault* keychain = nullptr);
  ~TfrmTransferdatabase() override;

  const TMyDump& dump() const { return transfer_->Dump; }
  // Runs the transfer; returns when it has ended.
  void btnOkClick();
  void btnStopClick();

 private:
  void buildUi();
  QWidget* buildTarget();
  QWidget* buildObjectList(QListWidget*& list, QCheckBox*& checkAll, const std::vector<std::string>& names);
  void cboAccountChange();
  void addLog(const QString& line);
  void setProgress(const QString& object, int percent);
  void saveLog();
  TTransferPlan plan() const;
  // The target's settings from the fields (over the chosen stored account's) and its connect, through
  // the account's tunnel when it asks for one.
  void prepareTarget();

  TMyConnection& session_;
  SettingsStore& settings_;
  SecretVault* keychain_;
  // Outlives the connection, whose disconnect closes it.
  TSshTunnel tunnel_;
  TMyConnection MyTransConnect;
  std::unique_ptr<TTransferDatabase> transfer_;
  std::unique_ptr<TSessionActivity> activity_;
  // The stored account chosen, if any.
  std::optional<TAccount> account_;

  QComboBox* cboAccount_ = nullptr;
  QLineEdit* edtLogin_ = nullptr;
  QLineEdit* edtPassword_ = nullptr;
  QLineEdit* edtServer_ = nullptr;
  QLineEdit* edtDatabase_ = nullptr;
  QLineEdit* edtPort_ = nullptr;
  QListWidget* lstTables_ = nullptr;
  QListWidget* lstProcedures_ = nullptr;
  QCheckBox* chkCheckAllTables_ = nullptr;
  QCheckBox* chkCheckAllProcs_ = nullptr;
  QCheckBox* chkTransferTables_ = nullptr;
  QCheckBox* chkTransferData_ = nullptr;
  QCheckBox* chkTransferViews_ = nullptr;
  QCheckBox* chkDropTable_ = nullptr;
  QCheckBox* chkStoredProcs_ = nullptr;
  QCheckBox* chkCreateLog_ = nullptr;
  QPlainTextEdit* memInfo_ = nullptr;
  QProgressBar* pbTransfer_ = nullptr;
  QPushButton* btnOk_ = nullptr;
  QPushButton* btnStop_ = nullptr;
};

}  // namespace lomarin::ui
