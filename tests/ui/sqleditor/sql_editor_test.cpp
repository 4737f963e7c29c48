#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <filesystem>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/sql_monitor.h"
#include "engine/sqleditor/query_params.h"
#include "engine/sqleditor/sql_formatter.h"
#include "engine/sqleditor/sql_history.h"
#include "render_path.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/memo_commands.h"
#include "ui/sqleditor/query_wait.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

// Runs check on the modal dialog once it is up.
void whenModal(std::function<void(QWidget*)> check) {
  QTimer::singleShot(0, [check] {
    QWidget* dialog = nullptr;
    QTRY_VERIFY((dialog = QApplication::activeModalWidget()) != nullptr);
    check(dialog);
  });
}

void clickButton(QWidget* dialog, QMessageBox::StandardButton which) {
  auto* box = qobject_cast<QMessageBox*>(dialog);
  QVERIFY(box);
  box->button(which)->click();
}

// One editor on a real session, with the statements it sent and the errors it showed.
struct Fixture {
  explicit Fixture(const std::filesystem::path& folder, const std::string& database = "lomarin_test",
                   bool trace = false)
      : settings(folder / "settings.db"),
        session(test::connect(database)),
        history(folder, trace),
        params(folder) {
    test::recordStatements(monitor, sent);
    session->setMonitor(&monitor);
    TSqlEditorContext context(*session, settings);
    context.History = &history;
    context.Params = &params;
    context.ShowServerError = [this](const QString& message) { errors << message; };
    context.DatabaseObjects = [] {
      return std::vector<TDbObjectItem>{{"orders", TDbObjectItem::Kind::Table}};
    };
    context.ShippedFolder = LOMARIN_SHIPPED_DIR;
    editor = std::make_unique<TformSQLEditor>(context);
    editor->setAttribute(Qt::WA_DeleteOnClose, false);
    editor->resize(900, 640);
    editor->show();
  }

  QsciScintilla* memo() const { return editor->frame()->memo(); }
  void run(const char* action, const QString& text) {
    memo()->setText(text);
    sent.clear();
    editor->action(action)->trigger();
  }

  SettingsStore settings;
  std::unique_ptr<TMyConnection> session;
  TMySQLMonitor monitor;
  THsitory history;
  TMyParams params;
  QStringList sent;
  QStringList errors;
  std::unique_ptr<TformSQLEditor> editor;
};

class SqlEditorTest : public QObject {
  Q_OBJECT

  std::filesystem::path folder_;

 private slots:
  void init() {
    folder_ = std::filesystem::temp_directory_path() / "lomarin_ui_sql_editor";
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void cleanup() { std::filesystem::remove_all(folder_); }

  void commandsAndPanels() {
    Fixture f(folder_);
    QCOMPARE(f.editor->windowTitle(), QString("SQL editor"));
    const std::pair<const char*, const char*> shortcuts[] = {{"actRun", "F9"},
                                                             {"actRunScript", "F7"},
                                                             {"actRunCurrentSQL", "Shift+Return"},
                                                             {"actUnformat", "Ctrl+Shift+U"},
                                                             {"actSQLList", "Ctrl+J"},
                                                             {"actIndent", "Ctrl+Shift+I"},
                                                             {"actLowerCase", "Ctrl+L"},
                                                             {"actUpperCase", "Ctrl+U"},
                                                             {"actRedo", "Ctrl+Shift+Z"},
                                                             {"actFind", "Ctrl+F"},
                                                             {"actReplace", "Ctrl+R"},
                                                             {"actIncSearch", "Ctrl+E"}};
    for (const auto& [name, keys] : shortcuts)
      QCOMPARE(f.editor->action(name)->shortcut(), QKeySequence(keys));
    QCOMPARE(f.editor->action("actExplain")->text(), QString("Explain SQL"));
    QCOMPARE(f.editor->action("TBItem8")->text(), QString("Execute SQL"));
    QCOMPARE(f.editor->action("actReplace")->text(), QString("&Replace "));
    QCOMPARE(f.editor->panelText(1), QString("Record ???"));
  }

  void queryModeSendsOneRequestAndShowsEachResult() {
    Fixture f(folder_, "lomarin_test", true);
    f.run("actRun", "select 1; select 2 as b union select 3");
    QCOMPARE(f.sent, QStringList{"select 1; select 2 as b union select 3"});
    QCOMPARE(f.editor->results()->count(), 2);
    QCOMPARE(f.editor->results()->widget(0), f.editor->fraData());
    QCOMPARE(f.editor->fraData()->model()->index(0, 0).data().toString(), QString("1"));
    auto* second = qobject_cast<QTableView*>(f.editor->results()->widget(1));
    QCOMPARE(second->model()->rowCount(), 2);
    QCOMPARE(second->model()->index(1, 0).data().toString(), QString("3"));
    QCOMPARE(f.editor->panelText(2), QString("Rows Count  : 1"));
    QVERIFY(QRegularExpression("^SQL Executed : [0-9.e-]+ secs$").match(f.editor->panelText(3)).hasMatch());
    QCOMPARE(f.editor->panelText(1), QString("Record  1 / 1"));

    // A selection runs alone; Explain sends the word, one blank and the text, and stays out of the history.
    f.memo()->setText("select 5\nselect * from dual");
    f.memo()->setSelection(0, 0, 0, 8);
    f.sent.clear();
    f.editor->action("actExplain")->trigger();
    QCOMPARE(f.sent, QStringList{"Explain select 5"});
    f.history.LoadFile();
    QCOMPARE(f.history.Table().RecordCount(), size_t{1});

    // A failing request shows the server's message; the text and the last results stay.
    f.run("actRun", "select * from no_such_table_ed");
    QCOMPARE(f.errors.size(), 1);
    QVERIFY(f.errors[0].contains("no_such_table_ed"));
    QCOMPARE(f.memo()->text(), QString("select * from no_such_table_ed"));
  }

  void resultsStreamIntoTheDataFrame() {
    Fixture f(folder_);
    TDataModel* model = f.editor->fraData()->model();
    const QString big = "select seq, seq * 2 as d from seq_1_to_100000";
    f.run("actRun", big);
    QCOMPARE(f.sent, QStringList{big});
    QCOMPARE(f.editor->panelText(2), QString("Rows Count  : 1000"));
    QCOMPARE(f.editor->panelText(1), QString("Record  1 / 1000"));
    QCOMPARE(model->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), QString("d"));
    // Scrolling reads on; a request of its own (multi-statement mode is off again) still works.
    QVERIFY(model->canFetchMore({}));
    model->fetchMore({});
    QVERIFY(model->rowCount() > 1000);
    QCOMPARE(test::scalar(*f.session, "select 7"), std::string("7"));

    // Rows-less statements before the first result are passed over, and every later result has
    // a tab; a run that returns no rows leaves an empty grid and no extra tab.
    f.run("actRun", "do 1; select 5 as five; set @x = 1; select 6");
    QCOMPARE(model->index(0, 0).data().toString(), QString("5"));
    QCOMPARE(f.editor->results()->count(), 2);
    f.run("actRun", "do 1");
    QCOMPARE(f.editor->results()->count(), 1);
    QCOMPARE(model->columnCount(), 0);
    QCOMPARE(f.editor->panelText(1), QString("Record ???"));

    // "FetchAll Records" is read before every run; an SSH tunnel reads every row in any case.
    const QString more = "select seq from seq_1_to_3000";
    f.settings.write(opt::FetchAllRecords, true);
    f.run("actRun", more);
    QCOMPARE(f.editor->panelText(2), QString("Rows Count  : 3000"));
    f.settings.write(opt::FetchAllRecords, false);
    TSqlEditorContext tunnelled(*f.session, f.settings);
    tunnelled.IsSSHTunnel = [] { return true; };
    TformSQLEditor editor(tunnelled);
    editor.frame()->memo()->setText(more);
    editor.action("actRun")->trigger();
    QCOMPARE(editor.fraData()->model()->rowCount(), 3000);
  }

  void historyOnlyWithSqlTrace() {
    Fixture f(folder_, "lomarin_test", false);
    f.run("actRun", "select 1");
    QVERIFY(!std::filesystem::exists(f.history.FileName()));
  }

  void scriptModeSplitsAndCollectsErrors() {
    Fixture f(folder_);
    f.run("actRunScript", "select 1; select 2");
    QCOMPARE(f.sent, (QStringList{"select 1", "select 2"}));
    QCOMPARE(f.editor->results()->count(), 1);
    QCOMPARE(f.editor->fraData()->model()->columnCount(), 0);
    QVERIFY(f.editor->panelText(3).startsWith("SQL Executed : "));

    test::sideExec("drop procedure if exists lomarin_test.ed_proc");
    f.run("actRunScript",
          "DELIMITER $$\ncreate procedure ed_proc()\nbegin\n  select 1;\n  select "
          "'a\r\nb';\nend$$\nDELIMITER ;\nselect 3;");
    // The body keeps the editor's line breaks, the literal's CR LF included.
    QCOMPARE(test::scalar(*f.session,
                          "select body from mysql.proc where db = 'lomarin_test' and name = 'ed_proc'"),
             std::string("begin\n  select 1;\n  select 'a\r\nb';\nend"));
    QVERIFY(f.errors.isEmpty());

    f.run("actRunScript", "select 1;\nselect * from no_such_ed;\nselect 3;");
    QCOMPARE(f.sent.last(), QString("select 3"));
    QCOMPARE(f.errors.size(), 1);
    QVERIFY(
        f.errors[0].startsWith("select * from no_such_ed\rTable 'lomarin_test.no_such_ed' doesn't exist\n"));
    test::sideExec("drop procedure lomarin_test.ed_proc");
  }

  void macroIsAskedOnceAndCancelSendsNothing() {
    Fixture f(folder_);
    f.run("actRun", "select 41 as answer");
    const auto shown = [&] {
      const QAbstractItemModel* grid = f.editor->fraData()->model();
      return grid->rowCount() == 1 ? grid->index(0, 0).data().toString() : QString();
    };
    QCOMPARE(shown(), QString("41"));
    int asked = 0;
    whenModal([&](QWidget* dialog) {
      ++asked;
      qobject_cast<QDialog*>(dialog)->reject();
    });
    f.run("actRun", "select &id, &id + 1");
    QCOMPARE(asked, 1);
    QVERIFY(f.sent.isEmpty());
    // Cancelling the prompt leaves the last result on screen.
    QCOMPARE(shown(), QString("41"));

    whenModal([&](QWidget* dialog) {
      dialog->findChild<QLineEdit*>("edtValue")->setText("7");
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    f.run("actRun", "select &id, &id + 1");
    QCOMPARE(f.sent, QStringList{"select 7, 7 + 1"});

    // A quote in a quoted value is escaped by the client library.
    whenModal([&](QWidget* dialog) {
      dialog->findChild<QComboBox*>("cboDataType")->setCurrentText("String");
      dialog->findChild<QLineEdit*>("edtValue")->setText("it's");
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    f.run("actRun", "select &name");
    QCOMPARE(f.sent, QStringList{"select 'it\\'s'"});
    QVERIFY(f.errors.isEmpty());
    QCOMPARE(f.editor->fraData()->model()->index(0, 0).data().toString(), QString("it's"));
  }

  void runCurrentAndTreeSendTheirBlock() {
    Fixture f(folder_);
    f.memo()->setText("select 9;\n\nselect 1,\n2;\n\nselect 3");
    f.memo()->setCursorPosition(4, 0);
    f.sent.clear();
    f.editor->action("actRunCurrentSQL")->trigger();
    QCOMPARE(f.sent, QStringList{"\n\rselect 1,\n\r2;"});
    QCOMPARE(f.editor->panelText(2), QString("Rows Count  : 1"));

    // The tree's "Execute SQL" runs the statement of the chosen node.
    f.editor->frame()->refreshTree();
    QTreeWidget* tree = f.editor->frame()->tree();
    QCOMPARE(tree->topLevelItemCount(), 3);
    tree->setCurrentItem(tree->topLevelItem(2));
    f.sent.clear();
    f.editor->action("TBItem8")->trigger();
    QCOMPARE(f.sent, QStringList{"select 3"});
  }

  void snippetsLeaveTheCaretInsideBrackets() {
    Fixture f(folder_);
    // Snippets ending in a bracket leave the caret inside it.
    f.memo()->setText("");
    f.editor->action("actSQLList")->trigger();
    QVERIFY(f.memo()->isListActive());
    QTest::keyClicks(f.memo(), "IFN");
    QTest::keyClick(f.memo(), Qt::Key_Return);
    QCOMPARE(f.memo()->text(), QString("IFNULL()"));
    int line = 0, index = 0;
    f.memo()->getCursorPosition(&line, &index);
    QCOMPARE(index, 7);
  }

  void formatClearAndSave() {
    Fixture f(folder_);
    f.memo()->setText("select 1;\nselect a,b from t where x=1");
    f.memo()->setSelection(1, 0, 1, 28);
    f.editor->action("actFormat")->trigger();
    QCOMPARE(f.memo()->text(), QString::fromStdString(FormatSql("select a,b from t where x=1").Text));
    QCOMPARE(f.editor->frame()->errorLine(), -1);
    f.editor->action("actUnformat")->trigger();
    QCOMPARE(f.memo()->text(), QString("select a,b from t where x=1"));
    f.memo()->setText("select 1\nfrom (t");
    f.editor->action("actFormat")->trigger();
    QCOMPARE(f.editor->frame()->errorLine(), 2);

    f.memo()->setText("keep me");
    whenModal([](QWidget* box) {
      QCOMPARE(qobject_cast<QMessageBox*>(box)->text(),
               QString("Are you sure you want to clear the editor ?"));
      clickButton(box, QMessageBox::No);
    });
    f.editor->action("actClear")->trigger();
    QCOMPARE(f.memo()->text(), QString("keep me"));
    whenModal([](QWidget* box) { clickButton(box, QMessageBox::Yes); });
    f.editor->action("actClear")->trigger();
    QCOMPARE(f.memo()->text(), QString());
    f.memo()->setText("gone without asking");
    f.editor->action("actClearScript")->trigger();
    QCOMPARE(f.memo()->text(), QString());

    const QString file = QString::fromStdString((folder_ / "Script.SQL").string());
    f.memo()->setText("select 'é';\n");
    QVERIFY(f.editor->saveToFile(file));
    TformSQLEditor other(TSqlEditorContext(*f.session, f.settings));
    QVERIFY(other.loadFile(file));
    QCOMPARE(other.frame()->memo()->text(), QString("select 'é';\n"));
    QCOMPARE(other.property("fileName").toString(), file);
    QVERIFY(!other.loadFile(file + ".missing"));
  }

  void memoCommands() {
    Fixture f(folder_);
    QsciScintilla* memo = f.memo();
    TMemoCommands* commands = f.editor->frame()->commands();
    memo->setText("select B;\nselect a;\n  select c;");
    memo->setCursorPosition(1, 0);
    commands->toggleBookmark(3);
    QCOMPARE(commands->bookmarkLine(3), 1);
    memo->setCursorPosition(2, 0);
    commands->toggleBookmark(3);  // a bookmark moves to the line it is set on
    QCOMPARE(commands->bookmarkLine(3), 2);
    commands->toggleBookmark(3);
    QCOMPARE(commands->bookmarkLine(3), -1);
    memo->setCursorPosition(1, 0);
    commands->toggleBookmark(0);
    memo->setCursorPosition(2, 3);
    commands->gotoBookmark(0);
    int line = 0, index = 0;
    memo->getCursorPosition(&line, &index);
    QCOMPARE(line, 1);

    memo->setSelection(0, 0, 2, 0);
    f.editor->action("actCommentLines")->trigger();
    QCOMPARE(memo->text(), QString("-- select B;\n-- select a;\n  select c;"));
    memo->setSelection(0, 0, 2, 3);
    f.editor->action("actUncommentLines")->trigger();
    QCOMPARE(memo->text(), QString("select B;\nselect a;\n  select c;"));

    memo->setSelection(0, 0, 0, 9);
    f.editor->action("actToggleCase")->trigger();
    QCOMPARE(memo->text(0), QString("SELECT b;\n"));
    f.editor->action("actLowerCase")->trigger();
    QCOMPARE(memo->selectedText(), QString("select b;"));
    memo->setSelection(0, 0, 0, 0);
    f.editor->action("actSortDescending")->trigger();
    QCOMPARE(memo->text(), QString("select b;\nselect a;\n  select c;"));
    f.editor->action("actSortAscending")->trigger();
    QCOMPARE(memo->text(), QString("  select c;\nselect a;\nselect b;"));

    f.editor->action("actReplace")->trigger();
    auto* find = f.editor->findChild<QLineEdit*>("edtFind");
    QVERIFY(find->isVisible() && f.editor->findChild<QLineEdit*>("edtReplace")->isVisible());
    find->setText("select");
    f.editor->findChild<QLineEdit*>("edtReplace")->setText("SELECT");
    QCOMPARE(commands->replaceAll(), 3);
    QCOMPARE(memo->text(), QString("  SELECT c;\nSELECT a;\nSELECT b;"));
    memo->undo();
    QCOMPARE(memo->text(), QString("  select c;\nselect a;\nselect b;"));

    const QString html = QString::fromStdString((folder_ / "out.html").string());
    commands->exportHtml(html);
    QFile page(html);
    QVERIFY(page.open(QIODevice::ReadOnly));
    QVERIFY(page.readAll().contains("<span class=\"k\">select</span>"));

    // With marking on, a double-click marks every whole occurrence of the word.
    f.editor->frame()->setObjectMarking(true);
    memo->setText("orders o, orders2, orders");
    emit memo->SCN_DOUBLECLICK(2, 0, 0);
    auto marked = [&](int position) {
      return memo->SendScintilla(QsciScintillaBase::SCI_INDICATORVALUEAT, 8, position) != 0;
    };
    QVERIFY(marked(0) && marked(22) && !marked(11));
    emit memo->SCN_DOUBLECLICK(8, 0, 0);  // on the blank: marking off
    QVERIFY(!marked(0) && !marked(22));
  }

  void closingAsksToSaveAChangedText() {
    Fixture f(folder_);
    f.memo()->setText("select 1");
    whenModal([](QWidget* box) { clickButton(box, QMessageBox::Cancel); });
    QVERIFY(!f.editor->close());
    QVERIFY(f.editor->isVisible());
    whenModal([](QWidget* box) { clickButton(box, QMessageBox::No); });
    QVERIFY(f.editor->close());
    // An unchanged text closes without a question.
    TformSQLEditor quiet(TSqlEditorContext(*f.session, f.settings));
    quiet.setAttribute(Qt::WA_DeleteOnClose, false);
    quiet.show();
    QVERIFY(quiet.close());
  }

  void stopInterruptsTheServer() {
    Fixture f(folder_);
    QElapsedTimer sinceStop;
    QTimer::singleShot(800, [&] {
      QVERIFY(f.editor->action("actStop")->isEnabled());
      // The request outlasted the quiet moment: the editor's own wait area with its Stop is up,
      // and nothing modal holds the other windows.
      QVERIFY(f.editor->waitPanel()->isVisible());
      QVERIFY(!QApplication::activeModalWidget());
      f.editor->grab().save(test::renderPath("query_wait.png"));
      sinceStop.start();
      f.editor->action("actStop")->trigger();
    });
    f.run("actRun", test::kSleep);
    QVERIFY(sinceStop.isValid());
    QVERIFY2(sinceStop.elapsed() < 1000, qPrintable(QString::number(sinceStop.elapsed())));
    QVERIFY(!f.editor->action("actStop")->isEnabled());
    QCOMPARE(test::sleepsOnServer(), 0);
    // The kill travels on a side connection; the session itself sent only the query.
    QCOMPARE(f.sent, QStringList{test::kSleep});
    QVERIFY(f.errors.isEmpty());
  }

  void treePaneFollowsItsOption() {
    Fixture f(folder_);
    f.settings.write(opt::SqlTreeEnable, false);
    TformSQLEditor closed(TSqlEditorContext(*f.session, f.settings));
    QVERIFY(!closed.frame()->treeVisible());
    closed.frame()->memo()->setText("select 1");
    closed.action("actSyntaxTree")->setChecked(true);
    QCOMPARE(closed.frame()->tree()->topLevelItemCount(), 1);
    QVERIFY(f.settings.read(opt::SqlTreeEnable));
    closed.frame()->action("actCloseTree")->trigger();
    QVERIFY(!f.settings.read(opt::SqlTreeEnable));
    QVERIFY(!closed.action("actSyntaxTree")->isChecked());
  }

  void renderedEditor() {
    Fixture f(folder_, "lomarin_demo");
    f.run("actRun",
          "-- shipped orders by customer\nSELECT c.first_name, c.last_name, count(o.order_id) AS orders\n"
          "FROM customers c JOIN orders o ON o.customer_id = c.customer_id\nWHERE o.status = 'shipped'\n"
          "GROUP BY c.customer_id ORDER BY orders DESC LIMIT 20;");
    QVERIFY(f.errors.isEmpty());
    f.editor->frame()->refreshTree();
    QCOMPARE(f.editor->results()->count(), 1);
    f.editor->grab().save(test::renderPath("sql_editor.png"));
    // A format that found an open bracket marks its line, beside the find bar.
    f.memo()->setText("select a, b\nfrom t\nwhere (a = 1 and b = 2");
    f.editor->action("actFormat")->trigger();
    QCOMPARE(f.editor->frame()->errorLine(), 3);
    QCOMPARE(f.memo()->selectedText(), QString("where (a = 1 and b = 2"));
    f.editor->action("actFind")->trigger();
    f.editor->grab().save(test::renderPath("sql_editor_format.png"));
  }
};

LOMARIN_UI_TEST(SqlEditorTest)

}  // namespace

#include "sql_editor_test.moc"
