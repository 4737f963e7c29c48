#include "dataview_fixture.h"

#include "test_server.h"

namespace lomarin::test {

DataviewFixture::DataviewFixture(const std::string& database)
    : settings(std::make_unique<SettingsStore>(folder.filePath("settings.sqlite").toStdString())) {
  settings->write(opt::UseLimit, true);
  settings->write(opt::LimitSize, "100");
  session = connect(database);
  session->setMonitor(&monitor);
  session->Events.OnError = [this](const ServerError& error) { serverErrors.push_back(error.message()); };
  monitor.addListener(
      [this](const std::string& line) { statements.push_back(line.substr(line.find("] ") + 2)); });
  area.resize(1000, 700);
  // Table windows load their data when shown.
  area.show();
}

DataviewFixture::~DataviewFixture() { session->setMonitor(nullptr); }

std::vector<std::string> DataviewFixture::takeStatements() { return std::exchange(statements, {}); }

std::string DataviewFixture::lastStatement() {
  return statements.empty() ? std::string() : statements.back();
}

}  // namespace lomarin::test
