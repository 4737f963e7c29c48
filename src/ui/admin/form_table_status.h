#pragma once

#include <QWidget>

#include "engine/connect/my_connection.h"
#include "ui/sqleditor/error_reporter.h"

class QLabel;
class QStatusBar;
class QTreeWidget;

namespace lomarin::ui {

class TSessionActivity;
class TSizeChart;

// "Table status from <db>": the tables of one database with their sizes over a bar chart, and
// the totals in the status bar.
class TformTableStatus : public QWidget {
  Q_OBJECT
 public:
  TformTableStatus(TMyConnection& session, ErrorReporter report, const QString& database,
                   QWidget* parent = nullptr);

  bool Refresh();
  QString database() const { return database_; }

 private:
  TMyConnection& session_;
  ErrorReporter report_;
  QString database_;
  TSessionActivity* activity_;
  TSizeChart* chart_;
  QTreeWidget* lvTables_;
  QStatusBar* StatusBar_;
  QLabel* lblTotals_;
};

}  // namespace lomarin::ui
