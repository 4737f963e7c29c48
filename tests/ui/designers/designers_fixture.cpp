#include "designers_fixture.h"

#include <QDir>

#include "engine/connect/my_query.h"
#include "test_server.h"

namespace lomarin::test {

DesignersFixture::DesignersFixture(const std::vector<std::string>& setup) {
  settings = std::make_unique<SettingsStore>(QDir(folder.path()).filePath("settings.sqlite").toStdString());
  sideExec(std::string("DROP DATABASE IF EXISTS ") + kDatabase);
  session = connect(kDatabase);
  for (const std::string& sql : setup) {
    TMyQuery query(*session);
    query.SQL = sql;
    query.Execute();
  }
  session->setMonitor(&monitor);
  monitor.addListener(
      [this](const std::string& line) { statements.push_back(line.substr(line.find(" ] ") + 3)); });
  session->Events.OnError = [this](const ServerError& error) { serverErrors.push_back(error.message()); };
}

DesignersFixture::~DesignersFixture() {
  session.reset();
  sideExec(std::string("DROP DATABASE IF EXISTS ") + kDatabase);
}

std::vector<std::string> DesignersFixture::takeStatements() { return std::exchange(statements, {}); }

std::string DesignersFixture::createText(const std::string& table) {
  TMyQuery query(*session);
  query.SQL = "show create table " + table;
  query.Open();
  query.Next();
  return std::string(query.Value(1));
}

}  // namespace lomarin::test
