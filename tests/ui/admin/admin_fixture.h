#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"
#include "ui/sqleditor/error_reporter.h"

class QWidget;

namespace lomarin::test {

// A session on the demo database whose statements and shown errors are recorded, and a scratch
// database of the administration tests.
struct AdminFixture {
  static constexpr const char* kScratch = "admin_ui";

  AdminFixture();
  ~AdminFixture();

  std::vector<std::string> takeStatements();
  ui::ErrorReporter reporter();

  TMySQLMonitor monitor;
  std::unique_ptr<TMyConnection> session;
  std::vector<std::string> statements;
  QStringList shown;
};

// Every row of a statement, read on a connection of its own.
std::vector<std::vector<std::string>> sideRows(const std::string& sql);

// Saves a picture of the widget among the test renders.
void renderPng(QWidget& widget, const QString& name);

}  // namespace lomarin::test
