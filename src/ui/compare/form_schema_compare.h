#pragma once

#include <QDialog>
#include <QStringList>
#include <memory>
#include <optional>

#include "engine/compare/schema_compare_job.h"
#include "engine/connect/accounts.h"
#include "engine/connect/my_connection.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QTabWidget;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

class TBackgroundJob;

// "Structure synchronization wizard": compares the structure of a source database with a target
// (each live or a script file) on connections of its own, shows the synchronisation script, and
// applies, saves or copies it. Extraction, comparison and applying run off the UI thread.
class TformSchemaCompare : public QDialog {
  Q_OBJECT
 public:
  enum Page { pgMode, pgServer, pgDatabases, pgOptions, pgResult };

  // session: the main window's, whose settings the live source (and "Copy existing connection")
  // take; it is never used for the comparison itself. settings: where the stored accounts the
  // second server can be chosen from are (none offered without it).
  explicit TformSchemaCompare(TMyConnection& session, SettingsStore* settings = nullptr,
                              QWidget* parent = nullptr);
  ~TformSchemaCompare() override;

  int currentPage() const;
  const QStringList& log() const { return log_; }
  bool running() const;
  // While a run lasts, Cancel and closing stop it instead.
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* buildModePage();
  QWidget* buildServerPage();
  QWidget* buildDatabasesPage();
  QWidget* buildOptionsPage();
  QWidget* buildResultPage();

  bool sourceLive() const;
  bool targetLive() const;
  TCompareSide secondServer() const;
  void accountChosen(int index);
  void goTo(int page);
  void btnNextClick();
  void btnBackClick();
  void btnCopyConnectionClick();
  void fillDatabases();
  // fillDatabases, reporting a failure; false then.
  bool listDatabases();
  bool sidesChosen();
  TSchemaCompareSettings settings() const;
  void startCompare();
  void compareFinished(const QString& error);
  void btnFinishClick();
  void finishSteps();
  void appendLog(const QString& line);
  void showError(const QString& message);

  struct Widgets;
  std::unique_ptr<Widgets> w_;
  TMyConnection& session_;
  SettingsStore* settings_;
  std::optional<TAccount> account_;
  TSchemaCompareJob job_;
  TBackgroundJob* worker_;
  QStringList log_;
  bool stopRequested_ = false;
};

// The character sets the options page offers, "default" first.
const QStringList& CompareCharsets();

}  // namespace lomarin::ui
