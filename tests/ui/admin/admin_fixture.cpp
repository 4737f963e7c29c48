#include "admin_fixture.h"

#include <QWidget>
#include <mutex>

#include "engine/connect/read_result_table.h"
#include "render_path.h"
#include "test_server.h"

namespace lomarin::test {

namespace {
// The monitor also traces statements of the session's worker threads.
std::mutex statementsMutex;
}  // namespace

AdminFixture::AdminFixture() {
  sideExec(std::string("DROP DATABASE IF EXISTS ") + kScratch);
  sideExec(std::string("CREATE DATABASE ") + kScratch);
  sideExec(std::string("CREATE TABLE ") + kScratch + ".t1 (id INT PRIMARY KEY) ENGINE=MyISAM");
  session = connect("lomarin_demo");
  session->setMonitor(&monitor);
  monitor.addListener([this](const std::string& line) {
    const std::lock_guard lock(statementsMutex);
    statements.push_back(line.substr(line.find(" ] ") + 3));
  });
  session->Events.OnError = [this](const ServerError& error) {
    shown << QString::fromStdString(error.message());
  };
}

AdminFixture::~AdminFixture() {
  session.reset();
  sideExec(std::string("DROP DATABASE IF EXISTS ") + kScratch);
}

std::vector<std::string> AdminFixture::takeStatements() {
  const std::lock_guard lock(statementsMutex);
  return std::exchange(statements, {});
}

ui::ErrorReporter AdminFixture::reporter() {
  return [this](const QString& message) { shown << message; };
}

std::vector<std::vector<std::string>> sideRows(const std::string& sql) {
  TMyConnection side;
  side.Settings = serverSettings();
  side.Connect();
  return ReadResultTable(side, sql).rows;
}

void renderPng(QWidget& widget, const QString& name) { widget.grab().save(renderPath(name + ".png")); }

}  // namespace lomarin::test
