#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/transfer/export_plan.h"
#include "engine/transfer/my_dump.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QTreeWidget;

namespace lomarin::ui {

// "Database export manager": writes one database of the session as an SQL script, to a file, one
// file per object or the clipboard, or the rows of one table that match the User SQL conditions.
class TfrmExportDb : public QDialog {
  Q_OBJECT
 public:
  using ErrorReporter = std::function<void(const QString& message)>;

  // showError: how failures reach the user (the main window passes its ShowServerError);
  // a message box when empty.
  TfrmExportDb(TMyConnection& session, SettingsStore& settings, QWidget* parent = nullptr,
               ErrorReporter showError = {});
  ~TfrmExportDb() override;

 signals:
  // "Open file after export": the script file to open in the SQL editor.
  void openFileRequested(const QString& file);

 private:
  void buildObjectsTab(QWidget* page);
  void buildStoredProcsTab(QWidget* page);
  void buildUserSqlTab(QWidget* page);
  QWidget* buildFileBox();

  void fillDatabases();
  void cobodbChange();
  void fillUserSqlFields();
  void updateUserSqlRows();
  void chkFullExportClick();
  void kindBoxClick();
  void btnOkClick();

  TExportDbState state() const;
  // "Backup Directory " when set, else the data folder's Backups.
  std::filesystem::path defaultFolder() const;
  bool confirmOverwrite(const std::vector<TExportRun>& runs);
  void reportFinished(const std::vector<TExportRun>& runs);
  void runExport(const std::vector<TExportRun>& runs);
  void runOne(const TExportRun& run);
  void uncheckItem(const TExportRun& run);
  void setProgress(const std::string& object, int percent);
  void report(const QString& message);

  struct Widgets;
  std::unique_ptr<Widgets> w_;
  TMyConnection& session_;
  SettingsStore& settings_;
  ErrorReporter showError_;
  TMyDump dump_;
  bool stopRequested_ = false;
};

}  // namespace lomarin::ui
