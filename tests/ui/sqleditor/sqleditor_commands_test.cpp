#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include "../app/shell_test_support.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/sqleditor_commands.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::TformSQLEditor;
using lomarin::ui::Tformppal;

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
};

}  // namespace

LOMARIN_UI_TEST(SqlEditorCommandsTest)
#include "sqleditor_commands_test.moc"
