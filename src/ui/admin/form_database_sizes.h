#pragma once

#include <QWidget>

#include "engine/connect/my_connection.h"
#include "ui/sqleditor/error_reporter.h"

class QTreeWidget;

namespace lomarin::ui {

class TSessionActivity;
class TSizeChart;

// "Database status": every database with its tables, records and size, over a bar chart of the
// sizes.
class TformDataBaseSizes : public QWidget {
  Q_OBJECT
 public:
  TformDataBaseSizes(TMyConnection& session, ErrorReporter report, QWidget* parent = nullptr);

  // Reads the figures from the server (the window stays painted meanwhile).
  bool Refresh();

 private:
  TMyConnection& session_;
  ErrorReporter report_;
  TSessionActivity* activity_;
  TSizeChart* chart_;
  QTreeWidget* lvDatabases_;
};

}  // namespace lomarin::ui
