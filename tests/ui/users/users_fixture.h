#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <string>
#include <vector>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"
#include "ui/sqleditor/error_reporter.h"

class QTemporaryDir;

namespace lomarin::test {

// A session whose statements are recorded, two scratch databases, and account names of this run
// that are dropped at the end.
struct UsersFixture {
  static constexpr const char* kDatabaseA = "users_ui_a";
  static constexpr const char* kDatabaseB = "users_ui_b";

  UsersFixture();
  ~UsersFixture();

  // A user name no other run uses; its accounts on "%" and "127.0.0.1" are dropped at the end.
  std::string userName(const std::string& suffix);
  std::vector<std::string> takeStatements();
  std::vector<std::string> grants(const std::string& user, const std::string& host);
  bool logsIn(const std::string& user, const std::string& password);
  // What a validation or the session's error handling showed.
  ui::ErrorReporter reporter();

  std::unique_ptr<QTemporaryDir> folder;
  std::unique_ptr<SettingsStore> settings;
  TMySQLMonitor monitor;
  std::unique_ptr<TMyConnection> session;
  std::vector<std::string> statements;
  QStringList shown;
  std::vector<std::string> users;
};

// Queues a click on the OK button of the next message box and keeps its text.
void acceptNextMessageBox(QString* text);

}  // namespace lomarin::test
