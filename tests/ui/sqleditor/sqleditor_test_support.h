#pragma once

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QElapsedTimer>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStringList>
#include <QTimer>
#include <string>

#include "engine/connect/sql_monitor.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::test {

inline constexpr const char* kSleep = "SELECT SLEEP(30)";

// Collects the statements the monitor traces, without their time prefix.
inline void recordStatements(TMySQLMonitor& monitor, QStringList& sent) {
  monitor.addListener(
      [&sent](const std::string& line) { sent << QString::fromStdString(line.substr(line.find("] ") + 2)); });
}

// How many kSleep statements the server is running, seen from a connection of its own.
inline int sleepsOnServer() {
  return std::stoi(scalar(*connect(), "select count(*) from information_schema.processlist where info = '" +
                                          std::string(kSleep) + "'"));
}

// Runs kSleep in the editor and presses its Stop once the editor shows its wait; polled, as the
// run keeps its own event loop. Gives the milliseconds from the Stop to the run's end, or -1.
inline qint64 runSleepAndStop(ui::TformSQLEditor* editor) {
  QElapsedTimer sinceStop;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    if (!editor->waitPanel()->isVisible() || sinceStop.isValid()) return;
    sinceStop.start();
    editor->action("actStop")->trigger();
  });
  poll.start(20);
  editor->frame()->memo()->setText(kSleep);
  editor->action("actRun")->trigger();
  editor->frame()->memo()->setModified(false);
  return sinceStop.isValid() ? sinceStop.elapsed() : -1;
}

// Connects the main window straight to the test server.
inline void connectWindow(ui::Tformppal& window, const std::string& database = {}) {
  window.MySqlSession.Settings = serverSettings();
  if (!database.empty()) window.MySqlSession.Settings.Database = database;
  window.MySqlSession.Connect();
}

// Opens an SQL editor through the main window's command.
inline ui::TformSQLEditor* openEditor(ui::Tformppal& window) {
  window.actions().action("actSqlEditor")->trigger();
  return qobject_cast<ui::TformSQLEditor*>(window.mdiArea()->activeSubWindow()->widget());
}

}  // namespace lomarin::test
