#pragma once

#include <QMdiArea>
#include <QMessageBox>
#include <QTemporaryDir>
#include <memory>
#include <string>
#include <vector>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"

namespace lomarin::ui {
class TformData;
}

namespace lomarin::test {

// A session on the demo database with every statement it sends recorded, settings in a
// temporary folder, and an MDI area to open table windows in.
struct DataviewFixture {
  explicit DataviewFixture(const std::string& database = "lomarin_demo");
  ~DataviewFixture();

  // Statements sent since the last call, without the monitor's time prefix.
  std::vector<std::string> takeStatements();
  std::string lastStatement();
  // The table (or view) window of a table of the session's database.
  ui::TformData* open(const std::string& table, bool view = false);

  std::string database;
  QTemporaryDir folder;
  std::unique_ptr<SettingsStore> settings;
  TMySQLMonitor monitor;
  std::unique_ptr<TMyConnection> session;
  std::vector<std::string> statements;
  std::vector<std::string> serverErrors;
  QMdiArea area;
};

// A fresh copy of a demo table, rows included, in lomarin_test.
void copyDemoTable(const std::string& table);

// Answers the next message box with `button`, keeping its text.
void answerNextBox(QMessageBox::StandardButton button, QString* text);

}  // namespace lomarin::test
