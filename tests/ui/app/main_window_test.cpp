#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QDockWidget>
#include <QFile>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QToolBar>
#include <QTreeWidget>

#include "engine/app/option_names.h"
#include "engine/connect/accounts.h"
#include "engine/connect/my_query.h"
#include "shell_test_support.h"
#include "test_server.h"
#include "ui/app/action_icons.h"
#include "ui/app/editor_ex.h"
#include "ui/app/exception_dialog.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/app/select_database.h"
#include "ui/connect/form_connect.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::TExceptionDialog;
using lomarin::ui::Tformppal;

struct ExpectedAction {
  const char* name;
  const char* caption;
  const char* shortcut;
  const char* category;
};

// The commands as users know them: name, caption, shortcut, menu.
const ExpectedAction kExpectedActions[] = {
    {"actExit", "Exit", "", "File"},
    {"actOpen", "Open", "", "File"},
    {"actSave", "Save", "Ctrl+S", "File"},
    {"actSaveAs", "Save as", "", "File"},
    {"actsaveall", "Save all", "Shift+Ctrl+S", "File"},
    {"actSendMail", "Send mail", "", "File"},
    {"actPrint", "&Print", "Ctrl+P", "File"},
    {"actPrintSetup", "Print setup", "", "File"},
    {"actReportDesigner", "Print preview", "", "File"},
    {"actReopen", "Reopen", "", "File"},
    {"actNew", "Other", "", "File"},
    {"actNewPHPDocument", "PHP document", "", "File"},
    {"actJavaDocument", "JAVA document", "", "File"},
    {"actXMLDocument", "XML document", "", "File"},
    {"actHTMLDocument", "HTML document", "", "File"},
    {"actSQLDocument", "SQL document", "", "File"},
    {"actSearchReplace", "&Replace", "Ctrl+R", "Edit"},
    {"actFind", "Find", "Ctrl+F", "Edit"},
    {"actSearchPrevius", "Search previous", "Shift+Ctrl+F3", "Edit"},
    {"actSearchAgain", "&Search again", "F3", "Edit"},
    {"actCopyTree", "Copy tree value", "", "Edit"},
    {"actGotoLine", "Go to line", "Alt+G", "Edit"},
    {"actAutoReplace", "Auto replace", "", "Edit"},
    {"actClear", "Clear", "", "Edit"},
    {"actConect", "&Connect", "", "Database"},
    {"actDisconect", "Disconnect", "", "Database"},
    {"actObjectNavigator", "Object navigator", "", "Database"},
    {"actSqlEditor", "SQL editor", "", "Database"},
    {"actOutPut", "Message output", "Shift+Ctrl+O", "Database"},
    {"actTableStatus", "Table status", "", "Database"},
    {"actNewTable", "New table", "", "Database"},
    {"actDropTable", "Drop tables", "", "Database"},
    {"actDeleteData", "Delete tables data", "", "Database"},
    {"actRefresh", "Refresh", "Ctrl+F3", "Database"},
    {"actExpTable", "Explorer table", "", "Database"},
    {"actDropIndex", "Drop index", "", "Database"},
    {"actGetObjects", "Get objects", "", "Database"},
    {"actDbStataus", "Database status", "", "Database"},
    {"actGenTableSQL", "Generate table SQL", "", "Database"},
    {"actQueryBuilder", "Query builder", "", "Database"},
    {"actChangeCurrentPass", "Change password", "", "Database"},
    {"actOptimizingTable", "Optimizing tables", "", "Database"},
    {"actTransfer", "Transfer database", "", "Database"},
    {"actCloneObject", "Clone object", "", "Database"},
    {"actIndex", "New index", "", "Database"},
    {"actConstraint", "New constraint", "", "Database"},
    {"actNewUdf", "New UDF", "", "Database"},
    {"actMasterDetail", "Master detail table browser", "", "Database"},
    {"actSQLHsitory", "SQL history", "", "Database"},
    {"actNewView", "New view", "", "Database"},
    {"actNewProc", "New procedure", "", "Database"},
    {"actNewFunction", "New function", "", "Database"},
    {"actNewTrigger", "New trigger", "", "Database"},
    {"actDescObj", "Describe object", "F4", "Database"},
    {"actTruncateTables", "Truncate tables", "", "Database"},
    {"actNewObj", "New", "", "Database"},
    {"actNewEvent", "New schedule event", "", "Database"},
    {"actNewCclumn", "New column", "", "Database"},
    {"actSearchObj", "Search objects", "", "Database"},
    {"actPrintTable", "Table information", "", "Database"},
    {"actExportData", "Export data manager", "", "Database"},
    {"actImportData", "Import data manager", "", "Database"},
    {"actTemplates", "Templates", "Shift+Ctrl+T", "Database"},
    {"actDeleteUser", "Drop user", "", "Dba"},
    {"actSession", "Session monitor", "", "Dba"},
    {"actStatus", "Parameter monitor", "", "Dba"},
    {"actaddUser", "New user", "", "Dba"},
    {"actAddDatabase", "New database", "", "Dba"},
    {"actDropDatabase", "Drop database", "", "Dba"},
    {"actFlushHost", "Host", "", "Dba"},
    {"actFlushLogs", "Logs", "", "Dba"},
    {"actFlushPrivs", "Privileges", "", "Dba"},
    {"actFlushTables", "Tables", "", "Dba"},
    {"actFlushTablesRedo", "Tables With Read Locks", "", "Dba"},
    {"actFlushStatus", "Status", "", "Dba"},
    {"actCommit", "Commit", "F8", "Dba"},
    {"actRollback", "Rollback", "F6", "Dba"},
    {"actchangedatabase", "Change current database", "", "Dba"},
    {"actSetPasswd", "Change password", "", "Nav"},
    {"actRename", "Rename", "", "Nav"},
    {"actDropProc", "Drop", "", "Nav"},
    {"actEditSource", "Edit", "", "Nav"},
    {"actDeleteTableData", "Delete data", "", "Nav"},
    {"actTruncateTable", "Truncate table", "", "Nav"},
    {"actCountRecords", "Records count", "", "Nav"},
    {"actCloneObj", "Clone object", "", "Nav"},
    {"actExportDB", "Export database", "", "Nav"},
    {"actGentTableSQL", "Generate table SQL", "", "Nav"},
    {"actExpToClip", "Export data to clipboard", "", "Nav"},
    {"actTest", "Test", "", "Nav"},
    {"actExpDb", "Export full database ", "", "Backup"},
    {"actExpTables", "Export tables", "", "Backup"},
    {"actImport", "Table data import", "", "Backup"},
    {"actTableDataExport", "Table data export", "", "Backup"},
    {"actRepTables", "Tables", "", "Reports"},
    {"actRepTablesStatictis", "Tables statistic", "", "Reports"},
    {"actRepIndex", "Index", "", "Reports"},
    {"actRepProcess", "Database process", "", "Reports"},
    {"actRepDatabaseStatus", "Database server status", "", "Reports"},
    {"actProcReport", "Procedures", "", "Reports"},
    {"actFuncReport", "Functions", "", "Reports"},
    {"actReportTriggers", "Triggers", "", "Reports"},
    {"actdbdatasyn", "Database data synchronization", "", "Synchronization"},
    {"actdbstructureSyn", "Database structure synchronization", "", "Synchronization"},
    {"actCompareFiles", "Compare files", "", "Tools and view"},
    {"actOptions", "Options", "", "Tools and view"},
    {"actKeyManager", "SSH key manager", "", "Tools and view"},
    {"actFormatterOptions", "Formatter options", "", "Tools and view"},
    {"actProcBuilder", "Procedure builder", "", "Tools and view"},
    {"actAddPrj", "New MySQL project ", "", "Projects"},
    {"actCloseProjects", "Close project", "", "Projects"},
    {"actShowPHPEditor", "PHP editor", "", "Other editors"},
    {"actCodeGenerator", "Code generator", "", "Other editors"},
    {"actShowJavaEditor", "Java editor", "", "Other editors"},
    {"actWebSite", "WebSite", "", "Help and links"},
    {"actSupport", "Support", "", "Help and links"},
    {"actUserForum", "Forum", "", "Help and links"},
    {"actKnowledgebase", "Knowledge base", "", "Help and links"},
    {"actTwitter", "Twitter", "", "Help and links"},
    {"actFacebook", "FaceBook", "", "Help and links"},
    {"actLinkedin", "Linkedin", "", "Help and links"},
    {"actMessage", "Database group message", "", "Work group"},
    {"actUserMessage", "User message", "", "Work group"},
    {"actEditorOptions", "&Editor Options", "", "Tools and view"},
    {"actEditorHighlighting", "Customize &Syntax-Highlighting", "", "Tools and view"},
    {"actEditorKeyMapping", "&Key Mapping", "", "Tools and view"},
    {"actEditorPrint", "&Print", "", "Tools and view"},
    {"actEditorPreview", "Preview...", "", "Tools and view"},
    {"actEditorPrintPreview", "Print preview", "", "Tools and view"},
    {"actEditorExportRtf", "Export to &RTF", "", "Tools and view"},
    {"actEditorExportHtml", "Export to &HTML", "", "Tools and view"},
};

QString lastOutputLine(Tformppal& window) {
  const auto* out = window.paneOut()->findChild<QPlainTextEdit*>("memOutput");
  return out->toPlainText().section('\n', -1);
}

void connectDemo(Tformppal& window, const std::string& database = "lomarin_demo") {
  window.MySqlSession.Settings = lomarin::test::serverSettings();
  window.MySqlSession.Settings.Database = database;
  window.MySqlSession.Connect();
}

class MainWindowTest : public QObject {
  Q_OBJECT
 private slots:
  void everyActionHasItsCaptionShortcutAndMenu() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    QCOMPARE(window.findChildren<QAction*>(QRegularExpression("^act")).size(), std::size(kExpectedActions));
    for (const ExpectedAction& expected : kExpectedActions) {
      QAction* action = window.actions().action(expected.name);
      QVERIFY2(action, expected.name);
      QCOMPARE(action->text(), QString(expected.caption));
      QCOMPARE(action->shortcut(), QKeySequence(expected.shortcut, QKeySequence::PortableText));
      QMenu* menu = window.actions().menu(expected.category);
      QVERIFY2(menu && menu->actions().contains(action), expected.name);
      QCOMPARE(menu->title(), QString(expected.category));
    }
  }

  // Every command on a toolbar shows its icon alone, its caption without the & marks as its
  // tooltip; the table names only icons the shipped theme has.
  void toolbarCommandsShowIconsWithTheirCaptionAsTooltip() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    for (const lomarin::ui::ActionIcon& entry : lomarin::ui::actionIcons())
      QVERIFY2(QIcon::hasThemeIcon(QString::fromUtf8(entry.icon.data(), entry.icon.size())),
               entry.action.data());
    int buttons = 0;
    for (QToolBar* bar : window.findChildren<QToolBar*>()) {
      QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonIconOnly);
      for (QAction* action : bar->actions()) {
        ++buttons;
        QVERIFY2(!action->icon().pixmap(22).isNull(), qPrintable(action->objectName()));
        QCOMPARE(action->toolTip(), action->text().remove('&').trimmed());
      }
    }
    QVERIFY(buttons >= 20);
  }

  void startsUnconnectedWithOnlyWorkingCommandsEnabled() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    QCOMPARE(window.windowTitle(), QString("Lomarin for MySQL 6.0 "));
    auto& a = window.actions();
    QVERIFY(a.action("actConect")->isEnabled());
    QVERIFY(a.action("actOptions")->isEnabled());
    QVERIFY(!a.action("actDisconect")->isEnabled());
    QVERIFY(!a.action("actFlushPrivs")->isEnabled());
    // Present, but nothing opens it yet.
    QVERIFY(!a.action("actNewTable")->isEnabled());
    QVERIFY(!a.action("actSession")->isEnabled());
    QCOMPARE(window.outputHeight(), 80);
  }

  void startupMigratesStoredSshPasswordsOnce() {
    lomarin::test::FreshSettings fresh;
    QCOMPARE(fresh.store->read(lomarin::opt::EncryptSsh), std::string("0"));
    Tformppal window(*fresh.store);
    QCOMPARE(fresh.store->read(lomarin::opt::EncryptSsh), std::string("1"));
  }

  void outputSizeBelowOneGives80() {
    lomarin::test::FreshSettings fresh;
    fresh.store->write(lomarin::opt::OutputSize, "0");
    QCOMPARE(Tformppal(*fresh.store).outputHeight(), 80);
    fresh.store->write(lomarin::opt::OutputSize, "-3");
    QCOMPARE(Tformppal(*fresh.store).outputHeight(), 80);
    fresh.store->write(lomarin::opt::OutputSize, "140");
    QCOMPARE(Tformppal(*fresh.store).outputHeight(), 140);
  }

  void connectingSetsCaptionActionsAndOutput() {
    lomarin::test::FreshSettings fresh;
    fresh.store->write(lomarin::opt::SavePassWord, true);
    Tformppal window(*fresh.store);
    window.show();
    connectDemo(window);
    const auto s = lomarin::test::serverSettings();
    QCOMPARE(window.windowTitle(), QString::fromStdString("Lomarin for MySQL 6.0  [" + s.Username +
                                                          ":lomarin_demo@" + s.Server + "]"));
    auto& a = window.actions();
    QVERIFY(!a.action("actConect")->isEnabled());
    QVERIFY(a.action("actDisconect")->isEnabled());
    QVERIFY(a.action("actFlushPrivs")->isEnabled());
    QVERIFY(a.action("actNewEvent")->isVisible());
    QCOMPARE(QString::fromStdString(fresh.store->read(lomarin::opt::DefaultPassword)),
             QString::fromStdString(s.Password));

    a.action("actFlushStatus")->trigger();
    QTRY_VERIFY(lastOutputLine(window).endsWith(" ] FLUSH STATUS "));
    QVERIFY(lastOutputLine(window).startsWith("[SQL "));
    const auto demo =
        window.explorer()->tree()->findItems("lomarin_demo", Qt::MatchExactly | Qt::MatchRecursive);
    QCOMPARE(demo.size(), 1);
    demo[0]->setExpanded(true);
    if (demo[0]->childCount() > 0) demo[0]->child(0)->setExpanded(true);
    lomarin::test::render(window, "main_window_connected");

    a.action("actDisconect")->trigger();
    QVERIFY(!window.MySqlSession.Connected());
    QCOMPARE(window.windowTitle(), QString("Lomarin for MySQL"));
    QVERIFY(a.action("actConect")->isEnabled());
    QVERIFY(!a.action("actFlushStatus")->isEnabled());
  }

  void connectDialogWithAStoredAccount() {
    lomarin::test::FreshSettings fresh;
    const auto s = lomarin::test::serverSettings();
    QVERIFY(lomarin::ensureLocalSandboxAccount(*fresh.store, s.Server, s.Port, s.Username, s.Password,
                                               "lomarin_demo"));
    Tformppal window(*fresh.store);
    window.show();
    lomarin::test::onNextModal<lomarin::ui::TformConnect>([](lomarin::ui::TformConnect* dialog) {
      auto* accounts = dialog->findChild<QTreeWidget*>("lvAccounts");
      const auto items = accounts->findItems("Local sandbox", Qt::MatchExactly);
      QCOMPARE(items.size(), 1);
      accounts->setCurrentItem(items[0]);
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    window.actions().action("actConect")->trigger();
    QVERIFY(window.MySqlSession.Connected());
    QCOMPARE(window.windowTitle(), QString::fromStdString("Lomarin for MySQL 6.0  [" + s.Username +
                                                          ":lomarin_demo@" + s.Server + "]"));
    const QTreeWidgetItem* server = window.explorer()->tree()->topLevelItem(0);
    QVERIFY(server);
    QStringList shown;
    for (int i = 0; i < server->childCount(); ++i) shown << server->child(i)->text(0);
    QVERIFY2(shown.contains("lomarin_demo"), qPrintable(shown.join(',')));
  }

  void lostConnectionIsRetriedTenTimesThenAsked() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    connectDemo(window);
    const auto killSession = [&] {
      lomarin::test::sideExec("KILL " + std::to_string(window.MySqlSession.ThreadId()));
    };
    for (int i = 0; i < 10; ++i) {
      killSession();
      QVERIFY(lomarin::ExecSQLText(window.MySqlSession, "DO 1"));
    }
    killSession();
    QString question, error;
    QTimer::singleShot(0, [&] {
      QMessageBox* box = nullptr;
      QTRY_VERIFY((box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) != nullptr);
      question = box->text();
      lomarin::test::onNextModal<TExceptionDialog>([&](TExceptionDialog* d) { error = d->message(); });
      box->button(QMessageBox::Abort)->click();
    });
    QVERIFY(!lomarin::ExecSQLText(window.MySqlSession, "DO 1"));
    QCOMPARE(question, QString("Error trying to reestablish lost connection ?"));
    QVERIFY2(error.startsWith("2013\n") || error.startsWith("2006\n"), qPrintable(error));
  }

  void oldServersHideWhatTheyCannotDo() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    const QStringList needs5{"actNewView",    "actNewProc",    "actNewFunction",    "actProcReport",
                             "actFuncReport", "actNewTrigger", "actReportTriggers", "actProcBuilder"};
    const auto visible = [&](const QString& name) {
      return window.actions().action(name.toStdString())->isVisible();
    };
    window.applyServerVersion("4.1.22");
    for (const QString& name : needs5) QVERIFY2(!visible(name), qPrintable(name));
    QVERIFY(!visible("actNewEvent"));
    window.applyServerVersion("5.0.96");
    for (const QString& name : needs5) QVERIFY2(visible(name), qPrintable(name));
    QVERIFY(!visible("actNewEvent"));
    window.applyServerVersion("5.5.5-10.11.6-MariaDB");
    QVERIFY(visible("actNewEvent"));
    QVERIFY(visible("actNewTable"));
  }

  void serverErrorsShowNumberMessageAndConnection() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    connectDemo(window);
    QString message, details;
    lomarin::test::onNextModal<TExceptionDialog>([&](TExceptionDialog* dialog) {
      message = dialog->message();
      details = dialog->details();
      dialog->findChild<QPushButton*>("btnDetails")->click();
      lomarin::test::render(*dialog, "exception_dialog");
    });
    QVERIFY(!lomarin::ExecSQLText(window.MySqlSession, "select * from no_such_table"));
    QCOMPARE(message, QString("1146\nTable 'lomarin_demo.no_such_table' doesn't exist"));
    // The text box shows line ends as plain line feeds.
    QCOMPARE(details, QString::fromStdString(window.MySqlSession.GetMySQLinfo()).remove('\r'));
    QVERIFY(details.startsWith("MySQL Server   5.5.5-10."));
  }

  void longAndUnhandledErrors() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    const QString text = QString(499, 'a') + QString(1001, 'b');
    QString shown;
    lomarin::test::onNextModal<TExceptionDialog>([&](TExceptionDialog* d) { shown = d->message(); });
    window.ShowServerError(text);
    QCOMPARE(shown, QString(1001, 'b'));

    lomarin::test::onNextModal<TExceptionDialog>([&](TExceptionDialog* d) { shown = d->message(); });
    window.showUnhandledError(std::runtime_error("Net: Assertion failure in read"));
    QCOMPARE(shown, QString("Connection broken by unstable network"));
  }

  void fileArguments() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    const QString missing = fresh.dir.filePath("absent.txt");
    QString shown;
    lomarin::test::onNextModal<TExceptionDialog>([&](TExceptionDialog* d) { shown = d->message(); });
    window.CheckParam(missing);
    QCOMPARE(shown, "Unable to find  " + missing);

    const QString notes = fresh.dir.filePath("notes.txt");
    QFile file(notes);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("first line\nsecond line\n");
    file.close();

    // A bare name is left alone: nothing opens, nothing is remembered.
    QDir::setCurrent(fresh.dir.path());
    window.CheckParam("notes.txt");
    QCOMPARE(window.mdiArea()->subWindowList().size(), 0);
    QVERIFY(window.recentFiles().items().empty());

    window.CheckParam(notes);
    QCOMPARE(window.mdiArea()->subWindowList().size(), 1);
    auto* editor = qobject_cast<lomarin::ui::TformEditorEX*>(window.mdiArea()->subWindowList()[0]->widget());
    QVERIFY(editor);
    QCOMPARE(editor->editor()->text(), QString("first line\nsecond line\n"));
    window.show();
    lomarin::test::render(window, "text_editor");
    // Opening it again shows the open document instead of a second copy.
    window.CheckParam(notes);
    QCOMPARE(window.mdiArea()->subWindowList().size(), 1);
    QCOMPARE(window.recentFiles().items(), std::vector<std::string>{notes.toStdString()});
    QVERIFY(window.actions().action("actReopen")->menu()->findChild<QAction*>("MRU1"));
  }

  void currentdbAsksForADatabaseOnce() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    QVERIFY(window.currentdb());  // not connected
    connectDemo(window, "");
    lomarin::test::onNextModal<lomarin::ui::TformSelectDatabase>([](lomarin::ui::TformSelectDatabase* d) {
      auto* list = d->findChild<QListWidget*>("lstDatabases");
      const auto items = list->findItems("lomarin_demo", Qt::MatchExactly);
      QCOMPARE(items.size(), 1);
      list->setCurrentItem(items[0]);
      lomarin::test::render(*d, "select_database");
      d->accept();
    });
    QVERIFY(!window.currentdb());
    QVERIFY(lastOutputLine(window).endsWith(" ] USE `lomarin_demo`"));
    QCOMPARE(window.MySqlSession.CurrentDatabase(), std::string("lomarin_demo"));
    QVERIFY(window.currentdb());

    // A double-click on a database in the tree makes it current as well.
    const auto mysql = window.explorer()->tree()->findItems("mysql", Qt::MatchExactly | Qt::MatchRecursive);
    QCOMPARE(mysql.size(), 1);
    emit window.explorer()->tree()->itemDoubleClicked(mysql[0], 0);
    QVERIFY(lastOutputLine(window).endsWith(" ] USE `mysql`"));
    QCOMPARE(window.MySqlSession.CurrentDatabase(), std::string("mysql"));
  }
};

}  // namespace

LOMARIN_UI_TEST(MainWindowTest)
#include "main_window_test.moc"
