#include "users_fixture.h"

#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "engine/connect/my_query.h"
#include "test_server.h"

namespace lomarin::test {

UsersFixture::UsersFixture() : folder(std::make_unique<QTemporaryDir>()) {
  settings = std::make_unique<SettingsStore>(QDir(folder->path()).filePath("settings.sqlite").toStdString());
  for (const char* db : {kDatabaseA, kDatabaseB})
    sideExec(std::string("CREATE DATABASE IF NOT EXISTS ") + db);
  session = connect(kDatabaseA);
  session->setMonitor(&monitor);
  monitor.addListener(
      [this](const std::string& line) { statements.push_back(line.substr(line.find(" ] ") + 3)); });
  session->Events.OnError = [this](const ServerError& error) {
    shown << QString::fromStdString(error.message());
  };
}

UsersFixture::~UsersFixture() {
  session.reset();
  for (const std::string& user : users)
    for (const char* host : {"%", "127.0.0.1"}) sideExec("DROP USER IF EXISTS `" + user + "`@`" + host + "`");
  for (const char* db : {kDatabaseA, kDatabaseB}) sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
}

std::string UsersFixture::userName(const std::string& suffix) {
  users.push_back("lmu_" + std::to_string(getpid()) + "_" + suffix);
  for (const char* host : {"%", "127.0.0.1"})
    sideExec("DROP USER IF EXISTS `" + users.back() + "`@`" + host + "`");
  return users.back();
}

std::vector<std::string> UsersFixture::takeStatements() { return std::exchange(statements, {}); }

std::vector<std::string> UsersFixture::grants(const std::string& user, const std::string& host) {
  TMyConnection side;
  side.Settings = serverSettings();
  side.Connect();
  TMyQuery query(side);
  query.SQL = "SHOW GRANTS FOR `" + user + "`@`" + host + "`";
  query.Open();
  std::vector<std::string> rows;
  while (query.Next()) rows.emplace_back(query.Value(0));
  return rows;
}

bool UsersFixture::logsIn(const std::string& user, const std::string& password) {
  TMyConnection login;
  login.Settings = serverSettings();
  login.Settings.Username = user;
  login.Settings.Password = password;
  try {
    login.Connect();
    return true;
  } catch (const ServerError&) {
    return false;
  }
}

ui::ErrorReporter UsersFixture::reporter() {
  return [this](const QString& message) { shown << message; };
}

void acceptNextMessageBox(QString* text) {
  QTimer::singleShot(0, [text] {
    QMessageBox* box = nullptr;
    QTRY_VERIFY((box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) != nullptr);
    *text = box->text();
    box->accept();
  });
}

}  // namespace lomarin::test
