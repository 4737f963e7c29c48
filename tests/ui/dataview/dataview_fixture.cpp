#include "dataview_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include "test_server.h"
#include "ui/dataview/form_data.h"

namespace lomarin::test {

DataviewFixture::DataviewFixture(const std::string& database)
    : database(database),
      settings(std::make_unique<SettingsStore>(folder.filePath("settings.sqlite").toStdString())) {
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

ui::TformData* DataviewFixture::open(const std::string& table, bool view) {
  return ui::openTableWindow(&area, *session, *settings, database, table, view);
}

void copyDemoTable(const std::string& table) {
  sideExec("DROP TABLE IF EXISTS lomarin_test." + table);
  sideExec("CREATE TABLE lomarin_test." + table + " LIKE lomarin_demo." + table);
  sideExec("INSERT INTO lomarin_test." + table + " SELECT * FROM lomarin_demo." + table);
}

void answerNextBox(QMessageBox::StandardButton button, QString* text) {
  QTimer::singleShot(0, [button, text] {
    QMessageBox* box = nullptr;
    QTRY_VERIFY((box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) != nullptr);
    *text = box->text();
    box->button(button)->click();
  });
}

}  // namespace lomarin::test
