#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

#include "../app/shell_test_support.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"
#include "ui/sqleditor/sqleditor_commands.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

// The main window on the test server with an SQL editor and two table windows, and what the
// session sent.
struct BusyWindow {
  test::FreshSettings fresh;
  Tformppal window{*fresh.store};
  QStringList sent;
  TformSQLEditor* editor = nullptr;
  TformData* rows = nullptr;
  TformData* other = nullptr;

  BusyWindow() {
    installSqlEditorCommands(window);
    window.resize(1100, 720);
    window.show();
    test::recordStatements(window.MySqlMonitor, sent);
    test::connectWindow(window, "lomarin_busy_ui");
    rows = openTableWindow(window.mdiArea(), window.MySqlSession, window.settings(), "lomarin_busy_ui",
                           "many", false);
    other = openTableWindow(window.mdiArea(), window.MySqlSession, window.settings(), "lomarin_busy_ui",
                            "few", false);
    editor = test::openEditor(window);
    editor->frame()->memo()->setText(test::kSleep);
    // Closing the window at the end asks nothing about unsaved text.
    editor->frame()->memo()->setModified(false);
  }
  QAction* mainStop() const { return window.findChild<QAction*>("actStopSession"); }
  void show(QWidget* document) const {
    window.mdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(document->parentWidget()));
  }
};

class SessionBusyTest : public QObject {
  Q_OBJECT
 private slots:
  void initTestCase() {
    test::sideExec("DROP DATABASE IF EXISTS lomarin_busy_ui");
    test::sideExec("CREATE DATABASE lomarin_busy_ui");
    test::sideExec("CREATE TABLE lomarin_busy_ui.many (id INT PRIMARY KEY)");
    test::sideExec("INSERT INTO lomarin_busy_ui.many SELECT seq FROM lomarin_busy_ui.seq_1_to_600");
    test::sideExec("CREATE TABLE lomarin_busy_ui.few (id INT PRIMARY KEY)");
    test::sideExec("INSERT INTO lomarin_busy_ui.few VALUES (1), (2)");
  }

  // The run keeps to its editor: no modal box, another table window scrolls through rows it
  // has read, and the main window's Stop ends the query.
  void otherWindowsWorkAndTheMainStopEndsTheRun() {
    BusyWindow w;
    QTableView* grid = w.rows->frameData()->findChild<QTableView*>("cxdbgrData");
    QVERIFY(grid);
    QVERIFY(!w.mainStop()->isEnabled());
    QElapsedTimer run;
    qint64 stoppedAt = -1;
    QTimer::singleShot(0, [&] {
      QTRY_VERIFY(w.editor->waitPanel()->isVisible());
      QVERIFY(QApplication::activeModalWidget() == nullptr);
      QVERIFY(w.editor->waitPanel()->findChild<QLabel*>("lblWhat")->text() ==
              QString("Run SQL: ") + test::kSleep);
      test::render(w.window, "session_busy_main_window");
      // Another document comes to the front and scrolls to its last row without the server.
      const qsizetype sentBefore = w.sent.size();
      w.show(w.rows);
      QTRY_VERIFY(grid->isVisible());
      grid->setFocus();
      const auto toLastRow = [grid] {
        QTest::keyClick(grid, Qt::Key_End, Qt::ControlModifier);
        return grid->currentIndex().row() == 599;
      };
      QTRY_VERIFY(toLastRow());
      QCOMPARE(grid->model()->rowCount(), 600);
      QVERIFY(grid->verticalScrollBar()->value() > 0);
      QCOMPARE(grid->verticalScrollBar()->value(), grid->verticalScrollBar()->maximum());
      QCOMPARE(w.sent.size(), sentBefore);
      // The main window's Stop, clicked on its toolbar.
      QVERIFY(w.mainStop()->isEnabled());
      QVERIFY(w.mainStop()->toolTip().contains(test::kSleep));
      auto* bar = w.window.actions().toolbar("tbtDbBar");
      stoppedAt = run.elapsed();
      QTest::mouseClick(bar->widgetForAction(w.mainStop()), Qt::LeftButton);
    });
    run.start();
    w.editor->action("actRun")->trigger();
    const qint64 elapsed = run.elapsed();
    QVERIFY(stoppedAt >= 0);
    QVERIFY2(elapsed < 5000, qPrintable(QString::number(elapsed)));
    QVERIFY2(elapsed - stoppedAt < 1000, qPrintable(QString::number(elapsed - stoppedAt)));
    QVERIFY(!w.editor->waitPanel()->isVisible());
    QVERIFY(!w.mainStop()->isEnabled());
    QCOMPARE(test::sleepsOnServer(), 0);
    QVERIFY(w.editor->action("actRun")->isEnabled());
  }

  // The wait area counts the seconds; its Stop gives the keyboard back to the editor, so F9 runs
  // again without a click.
  void stopInTheEditorGivesTheKeyboardBack() {
    BusyWindow w;
    w.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w.window));
    auto* memo = w.editor->frame()->memo();
    memo->setFocus();
    QTRY_COMPARE(QApplication::focusWidget(), memo);
    TWaitPanel* panel = w.editor->waitPanel();
    int runs = 0;
    const auto stopOnceShown = [&](bool waitASecond) {
      QTimer::singleShot(0, [&, waitASecond] {
        QTRY_VERIFY(panel->isVisible());
        ++runs;
        if (waitASecond) QTRY_COMPARE(panel->findChild<QLabel*>("lblElapsed")->text(), QString("1 s"));
        QTest::mouseClick(panel->findChild<QPushButton*>("btnStop"), Qt::LeftButton);
      });
    };
    stopOnceShown(true);
    QTest::keyClick(memo, Qt::Key_F9);
    QCOMPARE(runs, 1);
    QVERIFY(!panel->isVisible());
    QCOMPARE(QApplication::focusWidget(), memo);
    stopOnceShown(false);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F9);
    QCOMPARE(runs, 2);
    QCOMPARE(test::sleepsOnServer(), 0);
  }

  // A Stop that comes before the server has the statement is not lost: the kill is sent again
  // until the statement ends.
  void aStopBeforeTheServerHasTheQueryEndsTheRun() {
    BusyWindow w;
    TformSQLEditor* editor = w.editor;
    QElapsedTimer sinceStop;
    // The monitor hears a statement on the sending thread just before it goes out.
    w.window.MySqlMonitor.addListener([editor, &sinceStop](const std::string&) {
      if (QThread::currentThread() == editor->thread() || sinceStop.isValid()) return;
      QMetaObject::invokeMethod(
          editor,
          [editor, &sinceStop] {
            sinceStop.start();
            editor->Stop();
          },
          Qt::BlockingQueuedConnection);
    });
    editor->action("actRun")->trigger();
    QVERIFY(sinceStop.isValid());
    QVERIFY2(sinceStop.elapsed() < 1000, qPrintable(QString::number(sinceStop.elapsed())));
    QCOMPARE(test::sleepsOnServer(), 0);
    QCOMPARE(test::scalar(w.window.MySqlSession, "SELECT 2"), std::string("2"));
  }

  // A document that needs the session meanwhile says what runs, waits when asked to, and goes
  // on once the run has been stopped. The question holds only the window that asked.
  void aDocumentNeedingTheSessionAsksStopOrWait() {
    BusyWindow w;
    QPushButton elsewhere("Another window");
    int clicksElsewhere = 0;
    connect(&elsewhere, &QPushButton::clicked, [&] { ++clicksElsewhere; });
    elsewhere.show();
    QVERIFY(QTest::qWaitForWindowExposed(&elsewhere));
    // The user goes on in the main window.
    w.window.activateWindow();
    QTRY_VERIFY(w.window.isActiveWindow());
    QElapsedTimer run;
    QString asked;
    bool stillWaiting = false;
    bool refreshed = false;
    bool heldTheMainWindowOnly = false;
    QTimer::singleShot(0, [&] {
      QTRY_VERIFY(w.editor->waitPanel()->isVisible());
      w.show(w.other);
      QTimer::singleShot(0, [&] {
        QWidget* box = nullptr;
        QTRY_VERIFY((box = QApplication::activeModalWidget()) != nullptr);
        QCOMPARE(box->objectName(), QString("SessionBusy"));
        QTest::mouseClick(&elsewhere, Qt::LeftButton);
        heldTheMainWindowOnly = box->windowModality() == Qt::WindowModal &&
                                box->parentWidget() == &w.window && clicksElsewhere == 1;
        asked = box->findChild<QLabel*>("lblBusy")->text();
        test::render(*box, "session_busy_prompt");
        box->findChild<QPushButton*>("btnWait")->click();
        stillWaiting = box->isVisible() &&
                       box->findChild<QLabel*>("lblBusy")->text().startsWith("Waiting for Run SQL") &&
                       test::sleepsOnServer() == 1;
        test::render(*box, "session_busy_waiting");
        box->findChild<QPushButton*>("btnStop")->click();
      });
      // F5 in the other table window: its statement needs the session.
      refreshed = w.other->frameData()->Refresh();
    });
    run.start();
    w.editor->action("actRun")->trigger();
    QVERIFY2(run.elapsed() < 5000, qPrintable(QString::number(run.elapsed())));
    QVERIFY2(asked.contains(QString("Run SQL: ") + test::kSleep), qPrintable(asked));
    QVERIFY(asked.contains("Stop it, or wait until it ends?"));
    QVERIFY(stillWaiting);
    QVERIFY(heldTheMainWindowOnly);
    QVERIFY(refreshed);
    QCOMPARE(test::sleepsOnServer(), 0);
    // The refresh went to the server after the query, not beside it.
    QVERIFY(w.sent.indexOf(test::kSleep) >= 0);
    QVERIFY(w.sent.lastIndexOf(QRegularExpression("select \\* from `?few`?.*")) >
            w.sent.indexOf(test::kSleep));
    QCOMPARE(w.other->frameData()->findChild<QTableView*>("cxdbgrData")->model()->rowCount(), 2);
  }

  void cleanupTestCase() { test::sideExec("DROP DATABASE IF EXISTS lomarin_busy_ui"); }
};

}  // namespace

LOMARIN_UI_TEST(SessionBusyTest)
#include "session_busy_test.moc"
