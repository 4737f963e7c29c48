#include "ui/sqleditor/sqleditor_commands.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>

#include "../app/shell_test_support.h"
#include "engine/app/option_names.h"
#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/db_object_names.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/completion_popup.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::Tformppal;
using lomarin::ui::TformSQLEditor;

// What Ctrl+Space in the editor offers, and the statements it sent for that.
struct Completion {
  QStringList offered;
  QStringList sent;
};

class SqlEditorCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void sqlFilesAndTheCommandOpenEditors() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QString file = QDir(fresh.dir.path()).filePath("Report.Sql");
    QFile out(file);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write("select 1;\n");
    out.close();

    window.CheckParam(file);
    QCOMPARE(window.mdiArea()->subWindowList().size(), 1);
    auto* editor = qobject_cast<TformSQLEditor*>(window.mdiArea()->subWindowList().first()->widget());
    QVERIFY(editor);
    QCOMPARE(editor->frame()->memo()->text(), QString("select 1;\n"));
    // Opened again: the open one comes to the front, no second copy.
    window.actions().action("actSqlEditor")->trigger();
    QCOMPARE(window.mdiArea()->subWindowList().size(), 2);
    window.CheckParam(file);
    QCOMPARE(window.mdiArea()->subWindowList().size(), 2);
    QTRY_VERIFY(window.mdiArea()->activeSubWindow());
    QCOMPARE(window.mdiArea()->activeSubWindow()->widget(), editor);
    // The editor's five execution commands follow the connection.
    const auto runnable = [editor](bool enabled) {
      for (const char* name : {"actRun", "actRunScript", "actRunCurrentSQL", "actExplain", "TBItem8"})
        QVERIFY2(editor->action(name)->isEnabled() == enabled, name);
    };
    runnable(false);
    lomarin::test::connectWindow(window);
    runnable(true);
    window.MySqlSession.Disconnect();
    runnable(false);
  }

  void historyCopiesTheChosenStatementIntoTheEditorOrOntoTheClipboard() {
    lomarin::test::FreshSettings fresh;
    const QByteArray oldData = qgetenv("LOMARIN_DATA_DIR");
    qputenv("LOMARIN_DATA_DIR", fresh.dir.path().toUtf8());
    fresh.store->write(lomarin::opt::SqlTrace, true);
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    qputenv("LOMARIN_DATA_DIR", oldData);
    window.show();
    lomarin::test::connectWindow(window, "lomarin_demo");
    TformSQLEditor* editor = lomarin::test::openEditor(window);
    editor->RunStatementText("select 1");
    editor->RunStatementText("select count(*)\nfrom customers");
    editor->frame()->memo()->setText("-- ");
    editor->frame()->memo()->setCursorPosition(0, 3);

    QAction* history = window.actions().action("actSQLHsitory");
    QVERIFY(history->isEnabled());
    // The newest statement is chosen and shown read-only; a choice goes into the editor unless told
    // otherwise.
    lomarin::test::onNextModal<QDialog>([](QDialog* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("SQL history"));
      auto* grid = dialog->findChild<QTableView*>("grdHistory");
      auto* shown = dialog->findChild<lomarin::ui::TframeecSQL*>("frameSQL");
      QCOMPARE(grid->currentIndex().row(), 1);
      QCOMPARE(shown->memo()->text(), QString("select count(*)\nfrom customers"));
      QVERIFY(shown->isReadOnly());
      lomarin::test::render(*dialog, "sql_history");
      grid->selectRow(0);
      QCOMPARE(shown->memo()->text(), QString("select 1"));
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    history->trigger();
    QCOMPARE(editor->frame()->memo()->text(), QString("-- select 1"));

    lomarin::test::onNextModal<QDialog>([](QDialog* dialog) {
      dialog->findChild<QTableView*>("grdHistory")->selectRow(1);
      dialog->findChild<QRadioButton*>("rbClipboard")->setChecked(true);
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    history->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QString("select count(*)\nfrom customers"));
    QCOMPARE(editor->frame()->memo()->text(), QString("-- select 1"));

    // Cancel copies nothing.
    QGuiApplication::clipboard()->clear();
    lomarin::test::onNextModal<QDialog>(
        [](QDialog* dialog) { dialog->findChild<QPushButton*>("btnCancel")->click(); });
    history->trigger();
    QCOMPARE(editor->frame()->memo()->text(), QString("-- select 1"));
    QVERIFY(QGuiApplication::clipboard()->text().isEmpty());
  }

  void closingAsksEveryDocumentBeforeAnyGoes() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    lomarin::test::connectWindow(window);
    for (const char* text : {"select 1", "select 2"})
      lomarin::test::openEditor(window)->frame()->memo()->setText(text);
    // Which document asked, with the main window still on screen, and the answers to give. A
    // polling timer, since each question opens only once the one before has closed.
    QStringList asked;
    QList<QMessageBox::StandardButton> answers;
    QTimer answering;
    answering.setInterval(10);
    connect(&answering, &QTimer::timeout, [&] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (!box || !box->isVisible() || answers.isEmpty()) return;
      auto* front = qobject_cast<TformSQLEditor*>(window.mdiArea()->activeSubWindow()->widget());
      asked << (window.isVisible() ? front->frame()->memo()->text() : "after the window went");
      box->button(answers.takeFirst())->click();
    });
    answering.start();

    answers = {QMessageBox::No, QMessageBox::Cancel};
    QVERIFY(!window.close());
    QCOMPARE(asked, (QStringList{"select 1", "select 2"}));
    QVERIFY(window.isVisible());
    QCOMPARE(window.mdiArea()->subWindowList().size(), 2);
    QVERIFY(window.MySqlSession.Connected());

    answers = {QMessageBox::No, QMessageBox::No};
    QVERIFY(window.close());
    QCOMPARE(asked, (QStringList{"select 1", "select 2", "select 1", "select 2"}));
    QVERIFY(window.mdiArea()->subWindowList().isEmpty());
    QVERIFY(!window.MySqlSession.Connected());
  }

  void closingStopsARunningQueryFirst() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    lomarin::test::connectWindow(window);
    TformSQLEditor* editor = lomarin::test::openEditor(window);
    QElapsedTimer sinceClose;
    QTimer::singleShot(0, [&] {
      QTRY_COMPARE(lomarin::test::sleepsOnServer(), 1);
      sinceClose.start();
      window.close();
    });
    editor->RunStatementText(lomarin::test::kSleep);
    QTRY_VERIFY_WITH_TIMEOUT(!window.isVisible(), 15000);
    QVERIFY2(sinceClose.elapsed() < 10000, qPrintable(QString::number(sinceClose.elapsed())));
    QCOMPARE(lomarin::test::sleepsOnServer(), 0);
    QVERIFY(window.mdiArea()->subWindowList().isEmpty());
    QVERIFY(!window.MySqlSession.Connected());
  }

  void editorsShareTheNameListsOfTheCurrentDatabase() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    QStringList sent;
    lomarin::test::recordStatements(window.MySqlMonitor, sent);
    lomarin::test::sideExec("DROP DATABASE IF EXISTS lomarin_names_ui");
    lomarin::test::sideExec("CREATE DATABASE lomarin_names_ui");
    lomarin::test::sideExec("CREATE VIEW lomarin_names_ui.only_view AS SELECT 1 AS one");
    lomarin::test::connectWindow(window, "lomarin_demo");
    const auto openEditor = [&] { return lomarin::test::openEditor(window); };
    auto complete = [&](TformSQLEditor* editor) {
      sent.clear();
      editor->frame()->memo()->setText("");
      editor->frame()->action("actComplete")->trigger();
      lomarin::ui::TCompletionPopup* popup = editor->frame()->completer()->keywordPopup();
      Completion seen{popup->isHidden() ? QStringList() : popup->shownTexts(), sent};
      popup->hide();
      return seen;
    };
    const auto demoStatements = [&] {
      QStringList statements;
      for (const std::string& sql : lomarin::DbObjectStatements(
               "lomarin_demo", window.MySqlSession.ServerMajorVersion(),
               window.MySqlSession.ServerVersionNumber(),
               [&](std::string_view value) { return lomarin::EscapeString(window.MySqlSession, value); }))
        statements << QString::fromStdString(sql);
      return statements;
    }();

    // Loaded the first time an editor asks, then shared by every editor.
    TformSQLEditor* first = openEditor();
    QVERIFY(!sent.contains(demoStatements.first()));
    const Completion loaded = complete(first);
    QCOMPARE(loaded.sent, demoStatements);
    QVERIFY(loaded.offered.contains("customers") && loaded.offered.contains("ev_purge_price_history"));
    const Completion shared = complete(openEditor());
    QVERIFY(shared.sent.isEmpty());
    QCOMPARE(shared.offered, loaded.offered);

    // Shown at the caret of the editor in front, in the main window.
    TformSQLEditor* front = qobject_cast<TformSQLEditor*>(window.mdiArea()->activeSubWindow()->widget());
    front->frame()->memo()->setText("select * from c");
    front->frame()->memo()->setCursorPosition(0, 15);
    front->frame()->action("actComplete")->trigger();
    QVERIFY(front->frame()->completer()->keywordPopup()->isVisible());
    lomarin::test::render(window, "sql_completion_in_main_window");
    front->frame()->completer()->keywordPopup()->hide();
    front->frame()->memo()->setText("");

    // Another current database: loaded again, for it.
    lomarin::TMyQuery use(window.MySqlSession);
    use.SQL = "USE lomarin_names_ui";
    use.Execute();
    const Completion other = complete(first);
    QCOMPARE(other.sent.first(), QString("show full tables  from `lomarin_names_ui`"));
    QVERIFY(other.offered.contains("only_view"));
    QVERIFY(!other.offered.contains("customers"));

    // A new connection drops them, even to the same database; without one nothing is offered.
    window.MySqlSession.Disconnect();
    const Completion unconnected = complete(first);
    QVERIFY(unconnected.sent.isEmpty());
    QVERIFY(!unconnected.offered.contains("only_view"));
    window.MySqlSession.Connect();
    QCOMPARE(complete(first).sent, demoStatements);
    window.MySqlSession.Disconnect();
    window.MySqlSession.Connect();
    QCOMPARE(complete(first).sent, demoStatements);
    lomarin::test::sideExec("DROP DATABASE lomarin_names_ui");
  }
};

}  // namespace

LOMARIN_UI_TEST(SqlEditorCommandsTest)
#include "sqleditor_commands_test.moc"
