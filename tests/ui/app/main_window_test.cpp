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

#include "engine/app/action_table.h"
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

// The keys users know the commands by.
const std::pair<const char*, const char*> kShortcuts[] = {
    {"actSave", "Ctrl+S"},         {"actsaveall", "Shift+Ctrl+S"},
    {"actPrint", "Ctrl+P"},        {"actSearchReplace", "Ctrl+R"},
    {"actFind", "Ctrl+F"},         {"actSearchPrevius", "Shift+Ctrl+F3"},
    {"actSearchAgain", "F3"},      {"actGotoLine", "Alt+G"},
    {"actOutPut", "Shift+Ctrl+O"}, {"actRefresh", "Ctrl+F3"},
    {"actDescObj", "F4"},          {"actTemplates", "Shift+Ctrl+T"},
    {"actCommit", "F8"},           {"actRollback", "F6"}};

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
    const auto specs = lomarin::mainActions();
    const auto text = [](std::string_view v) { return QString::fromUtf8(v.data(), qsizetype(v.size())); };
    QCOMPARE(window.findChildren<QAction*>(QRegularExpression("^act")).size(), qsizetype(specs.size()));
    for (const lomarin::ActionSpec& spec : specs) {
      QAction* action = window.actions().action(spec.name);
      QVERIFY2(action, spec.name.data());
      QCOMPARE(action->text(), text(spec.caption));
      QCOMPARE(action->shortcut(), QKeySequence(text(spec.shortcut), QKeySequence::PortableText));
      QMenu* menu = window.actions().menu(spec.category);
      QVERIFY2(menu && menu->actions().contains(action), spec.name.data());
      QCOMPARE(menu->title(), text(spec.category));
    }
    for (const auto& [name, keys] : kShortcuts)
      QCOMPARE(window.actions().action(name)->shortcut(), QKeySequence(keys, QKeySequence::PortableText));
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

  void startupReadsTheOutputSizeAndMigratesStoredSshPasswordsOnce() {
    lomarin::test::FreshSettings fresh;
    QCOMPARE(fresh.store->read(lomarin::opt::EncryptSsh), std::string("0"));
    fresh.store->write(lomarin::opt::OutputSize, "140");
    Tformppal window(*fresh.store);
    QCOMPARE(fresh.store->read(lomarin::opt::EncryptSsh), std::string("1"));
    QCOMPARE(window.outputHeight(), 140);
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
