// The session monitor against the sandbox server, with a second connection to watch and kill.
#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineSeries>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <atomic>
#include <thread>

#include "../app/shell_test_support.h"
#include "admin_fixture.h"
#include "engine/connect/my_query.h"
#include "find_child.h"
#include "test_server.h"
#include "ui/admin/admin_commands.h"
#include "ui/admin/form_database_sizes.h"
#include "ui/admin/form_optimizing_tables.h"
#include "ui/admin/form_table_status.h"
#include "ui/admin/frm_sessions.h"
#include "ui/admin/status_chart_view.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace lomarin::test {

using ui::TfrmSessions;

namespace {

// A connection of its own that sleeps in "SELECT SLEEP(60)" until it is killed.
struct SleepingConnection {
  SleepingConnection() {
    connection.Settings = serverSettings();
    connection.Connect();
    id = std::to_string(connection.ThreadId());
    sleeper = std::thread([this] {
      try {
        TMyQuery query(connection);
        query.SQL = "SELECT SLEEP(60)";
        query.Open();
      } catch (const ServerError&) {
        // Killed: the test's point.
      }
      done = true;
    });
  }
  ~SleepingConnection() {
    if (!done && alive()) sideExec("KILL " + id);
    sleeper.join();
  }
  bool alive() const {
    return sideRows("SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE ID = " + id)[0][0] == "1";
  }

  TMyConnection connection;
  std::string id;
  std::atomic<bool> done = false;
  std::thread sleeper;
};

int column(TfrmSessions& form, const QString& name) {
  const auto& fields = form.processList()->model()->fields();
  for (size_t i = 0; i < fields.size(); ++i)
    if (QString::fromStdString(fields[i].Name) == name) return int(i);
  return -1;
}

QString cell(TfrmSessions& form, int row, const QString& name) {
  return QString::fromStdString(form.processList()->model()->cell(row, column(form, name)).bytes);
}

int rowOf(TfrmSessions& form, const std::string& id) {
  for (int row = 0; row < form.processList()->model()->rowCount(); ++row)
    if (cell(form, row, "Id") == QString::fromStdString(id)) return row;
  return -1;
}

QString currentId(TfrmSessions& form) {
  const QModelIndex current = form.processList()->grid()->currentIndex();
  return current.isValid() ? cell(form, current.row(), "Id") : QString();
}

void select(TfrmSessions& form, int row) {
  form.processList()->grid()->setCurrentIndex(form.processList()->model()->index(row, 0));
}

// Refreshes until the sleeping connection shows its statement.
bool showsSleeper(TfrmSessions& form, const SleepingConnection& sleeper) {
  form.Refresh();
  const int row = rowOf(form, sleeper.id);
  return row >= 0 && cell(form, row, "Info") == "SELECT SLEEP(60)";
}

// The session monitor on a fresh user's settings, opened; shown at a size for its renders.
struct Monitor {
  explicit Monitor(bool shown = false) {
    if (shown) {
      form.resize(1280, 860);
      form.show();
    }
    form.Open();
  }
  AdminFixture f;
  FreshSettings fresh;
  TfrmSessions form{*f.session, *fresh.store, f.reporter()};
};

}  // namespace

class SessionMonitorTest : public QObject {
  Q_OBJECT

 private slots:
  void opensWithListsChartsAndTheStatementsItNeeds() {
    AdminFixture f;
    FreshSettings fresh;
    TfrmSessions form(*f.session, *fresh.store, f.reporter());
    QCOMPARE(form.windowTitle(), QString("Session Monitor"));
    form.Open();
    QCOMPARE(f.takeStatements(),
             (std::vector<std::string>{"SHOW VARIABLES ", "SHOW STATUS ", "show plugins",
                                       "show full processlist ", "show status like 'Bytes_%'",
                                       "show status like 'Threads_%'", "show status like 'com_%'",
                                       "show status like 'com_%'", "show status like 'Handler_%'"}));
    auto* tabs = child<QTabWidget>(form, "pgcStatus");
    QStringList titles;
    for (int i = 0; i < tabs->count(); ++i) titles << tabs->tabText(i);
    QCOMPARE(titles, QStringList({"&Network", "T&hreads", "D&ML ", "DD&L", "D&isk", "&Variables", "&Server",
                                  "Installed plugins"}));
    auto* plugins = child<QTreeWidget>(form, "lvPlugins");
    QCOMPARE(plugins->headerItem()->text(0), QString("Name"));
    QVERIFY(!plugins->findItems("InnoDB", Qt::MatchExactly).isEmpty());
    QCOMPARE(plugins->findItems("InnoDB", Qt::MatchExactly)[0]->text(1), QString("ACTIVE"));
    auto* variables = child<QTreeWidget>(form, "lvVariables");
    QCOMPARE(variables->headerItem()->text(0), QString("Variable Name "));
    QVERIFY(!variables->findItems("max_connections", Qt::MatchExactly).isEmpty());
    QVERIFY(!child<QTreeWidget>(form, "lvServer")->findItems("Uptime", Qt::MatchExactly).isEmpty());
    QVERIFY(!child<QTimer>(form, "tmrRefresh")->isActive());
    QVERIFY(!form.processList()->grid()->actions().contains(form.processList()->action("actInsertRecord")));
    QCOMPARE(form.processList()->grid()->editTriggers(), QAbstractItemView::NoEditTriggers);
    for (const char* legend : {"lblLegendKilled", "lblLegendSleep", "lblLegendQuery"})
      QVERIFY(child<QLabel>(form, legend)->isVisibleTo(&form));
  }

  void sleepingConnectionShowsItsStatementAndKillEndsIt() {
    Monitor m(true);
    AdminFixture& f = m.f;
    TfrmSessions& form = m.form;
    SleepingConnection sleeper;
    QTRY_VERIFY(showsSleeper(form, sleeper));
    select(form, rowOf(form, sleeper.id));
    QCOMPARE(form.statementPane()->memo()->text(), QString("SELECT SLEEP(60)"));
    const QModelIndex command =
        form.processList()->model()->index(rowOf(form, sleeper.id), column(form, "Command"));
    QCOMPARE(command.data().toString(), QString("Query"));
    QCOMPARE(command.data(Qt::BackgroundRole).value<QBrush>().color(), QColor(0, 255, 255));
    QCOMPARE(command.siblingAtColumn(0).data(Qt::BackgroundRole).value<QBrush>().color(),
             QColor(0, 255, 255));
    renderPng(form, "admin_sessions");

    // The current connection stays current across a refresh, wherever its row goes.
    const int rows = form.processList()->model()->rowCount();
    QVERIFY(rows >= 2);
    for (int row : {0, rows - 1}) {
      select(form, row);
      const QString id = currentId(form);
      form.Refresh();
      QCOMPARE(currentId(form), id);
    }

    select(form, rowOf(form, sleeper.id));
    QSignalSpy refreshed(&form, &TfrmSessions::refreshed);
    f.takeStatements();
    child<QPushButton>(form, "btnKill")->click();
    const auto sent = f.takeStatements();
    QCOMPARE(sent.at(0), "kill " + sleeper.id);
    QCOMPARE(sent.at(1), std::string("show full processlist "));
    QCOMPARE(refreshed.count(), 1);
    QTRY_VERIFY(!sleeper.alive());
    QTRY_VERIFY(sleeper.done);
    QVERIFY(f.shown.isEmpty());
  }

  void killingAConnectionThatHasGoneReportsTheErrorAndStillRefreshes() {
    Monitor m;
    AdminFixture& f = m.f;
    TfrmSessions& form = m.form;
    SleepingConnection sleeper;
    QTRY_VERIFY(showsSleeper(form, sleeper));
    select(form, rowOf(form, sleeper.id));
    sideExec("KILL " + sleeper.id);
    QTRY_VERIFY(!sleeper.alive());
    QSignalSpy refreshed(&form, &TfrmSessions::refreshed);
    child<QPushButton>(form, "btnKill")->click();
    QCOMPARE(f.shown, QStringList{QString::fromStdString("Unknown thread id: " + sleeper.id)});
    QCOMPARE(refreshed.count(), 1);
    QCOMPARE(rowOf(form, sleeper.id), -1);
    // The current row falls to the list's first.
    QCOMPARE(form.processList()->grid()->currentIndex().row(), 0);
  }

  void intervalRefreshesByItselfAndZeroStops() {
    Monitor m;
    TfrmSessions& form = m.form;
    QSignalSpy refreshed(&form, &TfrmSessions::refreshed);
    auto* interval = child<QSpinBox>(form, "edtInterval");
    QCOMPARE(interval->minimum(), 0);
    QCOMPARE(interval->maximum(), 3600);
    interval->setValue(1);
    auto* timer = child<QTimer>(form, "tmrRefresh");
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 1000);
    QTRY_VERIFY_WITH_TIMEOUT(refreshed.count() >= 2, 10000);
    interval->setValue(0);
    QVERIFY(!timer->isActive());
  }

  void everyChartGetsOnePointPerSeriesPerRefresh() {
    Monitor m(true);
    AdminFixture& f = m.f;
    TfrmSessions& form = m.form;
    for (int i = 0; i < 4; ++i) {
      test::sideExec("CREATE TABLE IF NOT EXISTS admin_ui.t" + std::to_string(i + 2) + " (id INT)");
      form.Refresh();
    }
    const auto& charts = form.charts();
    QCOMPARE(int(charts.size()), 5);
    for (ui::TStatusChartView* chart : charts) {
      const auto& series = chart->series();
      // The DDL chart's seventh series has no counter left to plot.
      const int fed = series.size() == 7 ? 6 : int(series.size());
      for (int i = 0; i < series.size(); ++i) QCOMPARE(series[i]->count(), i < fed ? 5 : 0);
    }
    // Threads_connected: this session at least.
    QVERIFY(charts[1]->series()[0]->at(4).y() >= 1);
    // Running totals never go down.
    const auto& selects = charts[2]->series()[2]->points();
    QVERIFY(selects.last().y() >= selects.first().y());

    auto* tabs = child<QTabWidget>(form, "pgcStatus");
    for (int i = 0; i < 5; ++i) {
      tabs->setCurrentIndex(i);
      renderPng(form, QString("admin_sessions_chart%1").arg(i + 1));
    }

    // Without "Refresh graphic" only the process list is read.
    child<QCheckBox>(form, "chkRefreshGraphic")->setChecked(false);
    f.takeStatements();
    form.Refresh();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"show full processlist "});
    QCOMPARE(charts[0]->series()[0]->count(), 5);
  }

  void mainWindowCommandsOpenTheWindows() {
    AdminFixture f;
    FreshSettings fresh;
    ui::Tformppal window(*fresh.store);
    ui::installAdminCommands(window);
    window.MySqlSession.Settings = serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    auto& actions = window.actions();
    const auto newest = [&window] { return window.mdiArea()->subWindowList().last(); };
    actions.action("actSession")->trigger();
    auto* monitor = qobject_cast<TfrmSessions*>(newest()->widget());
    QVERIFY(monitor);
    QVERIFY(newest()->isMaximized());
    QVERIFY(monitor->processList()->model()->rowCount() >= 1);
    actions.action("actDbStataus")->trigger();
    QVERIFY(qobject_cast<ui::TformDataBaseSizes*>(newest()->widget()));
    actions.action("actTableStatus")->trigger();
    auto* status = qobject_cast<ui::TformTableStatus*>(newest()->widget());
    QVERIFY(status);
    QCOMPARE(status->windowTitle(), QString("Table status from lomarin_demo"));
    onNextModal<ui::TfrmOptimizingTables>([](ui::TfrmOptimizingTables* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("Optimize tables"));
    });
    actions.action("actOptimizingTable")->trigger();
    window.MySqlSession.Disconnect();
  }
};

LOMARIN_UI_TEST(SessionMonitorTest)

}  // namespace lomarin::test

#include "session_monitor_test.moc"
