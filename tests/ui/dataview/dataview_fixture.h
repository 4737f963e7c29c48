#pragma once

#include <QMdiArea>
#include <QTemporaryDir>
#include <memory>
#include <string>
#include <vector>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"

namespace lomarin::test {

// A session on the demo database with every statement it sends recorded, settings in a
// temporary folder, and an MDI area to open table windows in.
struct DataviewFixture {
  explicit DataviewFixture(const std::string& database = "lomarin_demo");
  ~DataviewFixture();

  // Statements sent since the last call, without the monitor's time prefix.
  std::vector<std::string> takeStatements();
  std::string lastStatement();

  QTemporaryDir folder;
  std::unique_ptr<SettingsStore> settings;
  TMySQLMonitor monitor;
  std::unique_ptr<TMyConnection> session;
  std::vector<std::string> statements;
  std::vector<std::string> serverErrors;
  QMdiArea area;
};

}  // namespace lomarin::test
