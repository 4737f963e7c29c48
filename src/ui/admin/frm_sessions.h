#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <vector>

#include "engine/connect/my_connection.h"
#include "ui/sqleditor/error_reporter.h"

class QCheckBox;
class QPushButton;
class QSpinBox;
class QTabWidget;
class QTimer;
class QTreeWidget;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

class TframeData;
class TframeecSQL;
class TSessionActivity;
class TStatusChartView;

// "Session Monitor": the server's connections with the statement of the chosen one, Kill, the
// status charts and the variables, status and plugins lists. Refreshes run off the UI thread.
class TfrmSessions : public QWidget {
  Q_OBJECT
  Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
 public:
  TfrmSessions(TMyConnection& session, SettingsStore& settings, ErrorReporter report,
               QWidget* parent = nullptr);
  ~TfrmSessions() override;

  // Fills the lists and runs the first refresh.
  void Open();
  // Re-reads the process list (keeping the current connection) and, with "Refresh graphic"
  // checked, adds a point per series to every chart.
  void Refresh();
  // Kills the current row's connection, without asking, then refreshes.
  void Kill();

  bool busy() const { return refreshing_; }
  TframeData* processList() const { return fraData_; }
  TframeecSQL* statementPane() const { return fraSQL_; }
  const std::vector<TStatusChartView*>& charts() const { return charts_; }

 signals:
  void busyChanged(bool busy);
  // After every refresh that read the process list.
  void refreshed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildUi();
  QWidget* buildLegend();
  QTreeWidget* addList(const char* name, const QString& tab, const QStringList& headers);
  void fillLists();
  void setRefreshing(bool refreshing);
  void onIntervalChanged(int seconds);
  void showStatement();
  int columnOf(const char* name) const;
  QString currentValue(int column) const;
  void selectId(const QString& id);

  TMyConnection& session_;
  SettingsStore& settings_;
  ErrorReporter report_;
  TSessionActivity* activity_;
  QElapsedTimer clock_;
  bool refreshing_ = false;
  bool closeWhenIdle_ = false;

  QPushButton* btnRefresh_ = nullptr;
  QSpinBox* edtInterval_ = nullptr;
  QPushButton* btnKill_ = nullptr;
  QCheckBox* chkRefreshGraphic_ = nullptr;
  QTimer* tmrRefresh_ = nullptr;
  TframeData* fraData_ = nullptr;
  TframeecSQL* fraSQL_ = nullptr;
  QTabWidget* pgcStatus_ = nullptr;
  QTreeWidget* lvVariables_ = nullptr;
  QTreeWidget* lvServer_ = nullptr;
  QTreeWidget* lvPlugins_ = nullptr;
  std::vector<TStatusChartView*> charts_;
};

}  // namespace lomarin::ui
