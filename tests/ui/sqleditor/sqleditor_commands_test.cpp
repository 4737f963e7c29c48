#include "ui/sqleditor/sqleditor_commands.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include "../app/shell_test_support.h"
#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/db_object_names.h"
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
    // The editor's execution commands follow the connection.
    QVERIFY(!editor->action("actRun")->isEnabled());
    window.MySqlSession.Settings = lomarin::test::serverSettings();
    window.MySqlSession.Connect();
    QVERIFY(editor->action("actRun")->isEnabled());
    window.MySqlSession.Disconnect();
    QVERIFY(!editor->action("actRun")->isEnabled());
  }

  void editorsShareTheNameListsOfTheCurrentDatabase() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    QStringList sent;
    window.MySqlMonitor.addListener(
        [&](const std::string& line) { sent << QString::fromStdString(line.substr(line.find("] ") + 2)); });
    lomarin::test::sideExec("DROP DATABASE IF EXISTS lomarin_names_ui");
    lomarin::test::sideExec("CREATE DATABASE lomarin_names_ui");
    lomarin::test::sideExec("CREATE VIEW lomarin_names_ui.only_view AS SELECT 1 AS one");
    window.MySqlSession.Settings = lomarin::test::serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    auto openEditor = [&] {
      window.actions().action("actSqlEditor")->trigger();
      return qobject_cast<TformSQLEditor*>(window.mdiArea()->activeSubWindow()->widget());
    };
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
      for (const std::string& sql :
           lomarin::DbObjectStatements("lomarin_demo", window.MySqlSession.ServerMajorVersion(),
                                       window.MySqlSession.ServerVersionNumber(), [&](std::string_view value) {
                                         return lomarin::EscapeString(window.MySqlSession, value);
                                       }))
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
