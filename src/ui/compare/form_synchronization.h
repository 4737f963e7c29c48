#pragma once

#include <QDialog>
#include <QStringList>
#include <functional>
#include <memory>

#include "engine/compare/data_sync_job.h"
#include "engine/connect/session_settings.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QTableWidget;

namespace lomarin::ui {

class TBackgroundJob;

// "Database synchronization wizard": compares the rows of table pairs of a source and a target
// database (each on the current server or a second one) and applies, saves or copies the
// statements that make the target rows equal. The comparison runs off the UI thread with Stop.
class TformSynchronization : public QDialog {
  Q_OBJECT
 public:
  using ErrorReporter = std::function<void(const QString& message)>;

  // first: the main window's server; folder: where relative result and log file names go.
  TformSynchronization(const TMySessionSettings& first, const QString& folder, QWidget* parent = nullptr,
                       ErrorReporter showError = {});
  ~TformSynchronization() override;

  int pageIndex() const;
  bool running() const;
  // The log of the last run, line by line.
  const QStringList& log() const { return log_; }

 signals:
  void runFinished();

 private:
  QWidget* buildServerPage();
  QWidget* buildDatabasesPage();
  QWidget* buildTablesPage();
  QWidget* buildResultPage();
  QWidget* buildSidePanel(const QString& title, const QString& prefix, QComboBox*& server,
                          QComboBox*& database, QLabel*& version);

  void btnNextClick();
  void btnBackClick();
  void btnFinishClick();
  void btnStopClick();
  void chkCopyConnectionClick();
  void showPage(int index);
  bool leaveServerPage();
  void fillDatabases(QComboBox* server, QComboBox* database, QLabel* version);
  void fillPairs();
  TMySessionSettings sideSettings(const QComboBox* server, const QComboBox* database) const;
  TDataSyncSettings runSettings() const;
  void appendLog(const QString& line);
  void finishRun(const QString& error);
  void report(const QString& message);
  QString resolved(const QString& fileName) const;

  TMySessionSettings first_;
  TMySessionSettings second_;
  QString folder_;
  ErrorReporter showError_;
  QStringList log_;
  std::shared_ptr<TDataSyncResult> result_;
  std::unique_ptr<TDataSyncJob> job_;
  TBackgroundJob* background_ = nullptr;

  QStackedWidget* pages_ = nullptr;
  QLineEdit* edtUserName_ = nullptr;
  QLineEdit* edtPassword_ = nullptr;
  QLineEdit* edtServer_ = nullptr;
  QLineEdit* edtPort_ = nullptr;
  QCheckBox* chkCopyConnection_ = nullptr;
  QComboBox* cboSourceServer_ = nullptr;
  QComboBox* cboSourceDatabase_ = nullptr;
  QLabel* lblSourceVersion_ = nullptr;
  QComboBox* cboTargetServer_ = nullptr;
  QComboBox* cboTargetDatabase_ = nullptr;
  QLabel* lblTargetVersion_ = nullptr;
  QCheckBox* chkAutoSelect_ = nullptr;
  QCheckBox* chkCaseSensitive_ = nullptr;
  QComboBox* cboCharSet_ = nullptr;
  QTableWidget* gridTables_ = nullptr;
  QCheckBox* chkApply_ = nullptr;
  QCheckBox* chkSave_ = nullptr;
  QLineEdit* edtResultFile_ = nullptr;
  QCheckBox* chkCopyClipboard_ = nullptr;
  QCheckBox* chkLogFile_ = nullptr;
  QLineEdit* edtLogFile_ = nullptr;
  QProgressBar* pbSource_ = nullptr;
  QProgressBar* pbTarget_ = nullptr;
  QPlainTextEdit* memoLog_ = nullptr;
  QPushButton* btnBack_ = nullptr;
  QPushButton* btnNext_ = nullptr;
  QPushButton* btnFinish_ = nullptr;
  QPushButton* btnStop_ = nullptr;
  QPushButton* btnCancel_ = nullptr;
};

}  // namespace lomarin::ui
