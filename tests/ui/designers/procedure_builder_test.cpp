// The routine editor on the server: loading by kind, compiling with collected errors, executing
// with the parameter list.
#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui/designers/form_procedure_builder.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::DesignersFixture;
using lomarin::ui::TformProcedureBuilder;
using lomarin::ui::TProcedureBuilderContext;

constexpr const char* kDemo = "lomarin_demo";

std::unique_ptr<TformProcedureBuilder> document(DesignersFixture& f, const QString& source,
                                                const QString& name, const QString& kind,
                                                const QString& database) {
  TProcedureBuilderContext context(*f.session, *f.settings);
  auto doc = std::make_unique<TformProcedureBuilder>(context, source, name, kind, database);
  doc->setAttribute(Qt::WA_DeleteOnClose, false);
  doc->resize(800, 600);
  doc->show();
  return doc;
}

QStringList row(QTableWidget* grid, int r) {
  QStringList cells;
  for (int c = 0; c < grid->columnCount(); ++c)
    cells << (c == 4 ? (grid->item(r, c)->checkState() == Qt::Checked ? "null" : "")
                     : grid->item(r, c)->text());
  return cells;
}

void type(QTableWidget* grid, int r, const QString& value) { grid->item(r, 3)->setText(value); }

class ProcedureBuilderTest : public QObject {
  Q_OBJECT
 private slots:
  void demoRoutinesLoadByKindWithTheirParameters() {
    DesignersFixture f;
    auto proc = document(f, {}, "get_customer_orders", "Procedures", kDemo);
    QVERIFY(f.takeStatements().front() == "SHOW CREATE PROCEDURE `lomarin_demo`.get_customer_orders");
    QCOMPARE(proc->windowTitle(), QString("get_customer_orders"));
    QCOMPARE(proc->panelText(2), QString("get_customer_orders"));
    QVERIFY(proc->frame()->memo()->text().contains(
        "PROCEDURE `get_customer_orders`(IN p_customer_id INT UNSIGNED"));
    QCOMPARE(proc->pages()->currentIndex(), 1);
    QCOMPARE(proc->parameters()->rowCount(), 2);
    QCOMPARE(row(proc->parameters(), 0), (QStringList{"p_customer_id", "Integer", "IN", "", "", "10"}));
    QCOMPARE(row(proc->parameters(), 1), (QStringList{"p_order_count", "Integer", "OUT", "", "", "10"}));
    lomarin::test::render(*proc, "TformProcedureBuilder_execute");

    auto function = document(f, {}, "order_total", "FUNCTION", kDemo);
    QVERIFY(function->frame()->memo()->text().contains("FUNCTION `order_total`(p_order_id INT UNSIGNED)"));
    QCOMPARE(row(function->parameters(), 0).mid(0, 3), (QStringList{"RESULT", "Float", "OUT"}));
    QCOMPARE(row(function->parameters(), 1).mid(0, 3), (QStringList{"p_order_id", "Integer", "IN"}));

    // Triggers and events have no Execute page; an event's long lines wrap.
    auto trigger = document(f, {}, "trg_products_price_history", "Triggers", kDemo);
    QVERIFY(!trigger->pages()->isTabVisible(1));
    QVERIFY(trigger->frame()->memo()->text().contains("CREATE"));
    QVERIFY(trigger->frame()->memo()->text().contains(
        "TRIGGER trg_products_price_history AFTER UPDATE ON products"));
    f.takeStatements();
    auto event = document(f, {}, "ev_purge_price_history", "events", kDemo);
    QCOMPARE(f.takeStatements().front(),
             std::string("SHOW CREATE EVENT `lomarin_demo`.ev_purge_price_history"));
    QVERIFY(!event->pages()->isTabVisible(1));
    QCOMPARE(event->frame()->memo()->wrapMode(), QsciScintilla::WrapWord);
    QVERIFY(event->frame()->memo()->text().startsWith("DELIMITER $$\n\nCREATE DEFINER="));
  }

  void compileListsErrorsTakesTheNameAndDropsBeforeTheNextCompile() {
    DesignersFixture f;
    auto doc =
        document(f, "DELIMITER $$\nCREATE PROCEDURE `my-proc` ( )\nBEGIN\n  SELEC 1;\nEND$$\nDELIMITER ;\n",
                 {}, {}, DesignersFixture::kDatabase);
    QCOMPARE(doc->windowTitle(), QString("Procedure Builder"));
    QVERIFY(doc->messageView()->isHidden());
    lomarin::test::render(*doc, "TformProcedureBuilder_source_new");
    f.takeStatements();
    doc->action("actCompile")->trigger();
    QCOMPARE(doc->messageView()->topLevelItemCount(), 1);
    QVERIFY(doc->messageView()->isVisible());
    QVERIFY(doc->messageView()->topLevelItem(0)->text(1).contains("near '1;"));
    QCOMPARE(doc->messageView()->topLevelItem(0)->text(0), QString("2"));
    QCOMPARE(doc->routineName(), std::string("my-proc"));
    QCOMPARE(doc->windowTitle(), QString("my-proc"));
    QCOMPARE(doc->kind(), std::string("PROCEDURE"));
    QVERIFY(doc->panelText(4).startsWith("SQL Executed : "));
    lomarin::test::render(*doc, "TformProcedureBuilder_source_error");

    doc->frame()->memo()->setText(
        "DELIMITER $$\nCREATE PROCEDURE `my-proc` ( )\nBEGIN\n  SELECT 1;\nEND$$\nDELIMITER ;\n");
    f.takeStatements();
    doc->action("actCompile")->trigger();
    QCOMPARE(f.takeStatements().front(), std::string("drop procedure if exists `my-proc`"));
    QVERIFY(doc->messageView()->isHidden());
    QCOMPARE(lomarin::test::scalar(*f.session,
                                   "SELECT COUNT(*) FROM information_schema.routines WHERE "
                                   "routine_schema = 'designers_ui' AND routine_name = 'my-proc'"),
             std::string("1"));
  }

  void demoFunctionCompiledWithAnErrorAndThenFixed() {
    DesignersFixture f;
    // Loaded from the demo database and compiled back into it, though the session is elsewhere.
    auto doc = document(f, {}, "order_total", "Functions", kDemo);
    const QString text = doc->frame()->memo()->text();
    doc->frame()->memo()->setText(QString(text).replace("RETURN COALESCE", "RETURN COALESC("));
    doc->action("actCompile")->trigger();
    QCOMPARE(doc->messageView()->topLevelItemCount(), 1);
    doc->frame()->memo()->setText(text);
    f.takeStatements();
    doc->action("actCompile")->trigger();
    const std::vector<std::string> sent = f.takeStatements();
    QCOMPARE(sent.front(), std::string("USE `lomarin_demo`"));
    QCOMPARE(sent[1], std::string("drop function if exists order_total"));
    QCOMPARE(sent.back(), std::string("USE `designers_ui`"));
    QCOMPARE(doc->messageView()->topLevelItemCount(), 0);
    QCOMPARE(lomarin::test::scalar(*f.session,
                                   "SELECT GROUP_CONCAT(routine_schema, ': ', routine_comment) FROM "
                                   "information_schema.routines WHERE routine_name = 'order_total' "
                                   "AND routine_schema IN ('lomarin_demo', 'designers_ui')"),
             std::string("lomarin_demo: Sum of the lines of one order, discounts applied"));
    QCOMPARE(f.session->CurrentDatabase(), std::string("designers_ui"));
  }

  void procedureExecutedWithTypedValuesAndOutValuesShown() {
    DesignersFixture f(
        {"CREATE PROCEDURE p3(IN a INT, OUT b VARCHAR(20), INOUT c INT) BEGIN "
         "SET b = CONCAT('got ', a); SET c = c * 2; SELECT a AS one UNION SELECT a + 1; "
         "SELECT 'second' AS two; END"});
    auto doc = document(f, {}, "p3", "PROCEDURE", DesignersFixture::kDatabase);
    QTableWidget* grid = doc->parameters();
    QCOMPARE(row(grid, 2), (QStringList{"c", "Integer", "IN/OUT", "", "", "10"}));
    type(grid, 0, "5");
    type(grid, 2, "21");
    f.takeStatements();
    doc->findChild<QPushButton*>("buExecute")->click();
    QCOMPARE(f.takeStatements(),
             (std::vector<std::string>{"SET @`c` = '21'", "CALL `designers_ui`.`p3`('5', @`b`, @`c`)",
                                       "SELECT @`b`, @`c`"}));
    QCOMPARE(row(grid, 1).mid(3, 2), (QStringList{"got 5", ""}));
    QCOMPARE(row(grid, 2).mid(3, 2), (QStringList{"42", ""}));
    QCOMPARE(doc->fraData()->model()->rowCount(), 2);
    QCOMPARE(doc->results()->count(), 2);
    QVERIFY(doc->panelText(4).startsWith("SQL Executed : "));
    QVERIFY(doc->panelText(4).endsWith(" secs"));
    lomarin::test::render(*doc, "TformProcedureBuilder_executed");

    // A checked Null box sends NULL, not the text.
    grid->item(0, 3)->setText("NULL");
    grid->item(0, 4)->setCheckState(Qt::Checked);
    f.takeStatements();
    doc->findChild<QPushButton*>("buExecute")->click();
    QCOMPARE(f.takeStatements().at(1), std::string("CALL `designers_ui`.`p3`(NULL, @`b`, @`c`)"));
    QCOMPARE(row(grid, 1).mid(3, 2), (QStringList{"", "null"}));
    QCOMPARE(row(grid, 2).mid(3, 2), (QStringList{"84", ""}));
  }

  void functionResultRowAndAStoppedCall() {
    DesignersFixture f({"CREATE FUNCTION twice(a INT) RETURNS INT DETERMINISTIC RETURN a * 2",
                        "CREATE PROCEDURE slow() SELECT SLEEP(30)"});
    auto doc = document(f, {}, "twice", "Functions", DesignersFixture::kDatabase);
    type(doc->parameters(), 1, "21");
    f.takeStatements();
    doc->findChild<QPushButton*>("buExecute")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"SELECT `designers_ui`.`twice`('21')"});
    QCOMPARE(row(doc->parameters(), 0).mid(0, 4), (QStringList{"RESULT", "Integer", "OUT", "42"}));

    auto slow = document(f, {}, "slow", "Procedures", DesignersFixture::kDatabase);
    TformProcedureBuilder* running = slow.get();
    // Stop once the server runs the call: a kill sent earlier finds nothing to interrupt.
    std::unique_ptr<lomarin::TMyConnection> watcher = lomarin::test::connect(DesignersFixture::kDatabase);
    QTimer::singleShot(0, [running, &watcher] {
      QTRY_VERIFY(running->isBusy());
      QTRY_COMPARE(lomarin::test::scalar(*watcher,
                                         "SELECT COUNT(*) FROM information_schema.processlist "
                                         "WHERE info = 'SELECT SLEEP(30)'"),
                   std::string("1"));
      running->Stop();
    });
    QElapsedTimer clock;
    clock.start();
    slow->findChild<QPushButton*>("buExecute")->click();
    QVERIFY(!slow->isBusy());
    QVERIFY(clock.elapsed() < 20000);
    QVERIFY(f.serverErrors.empty());
  }

  // Stop pressed while the worker is about to send the statement, before the server has it.
  void aStopBeforeTheServerHasTheStatementEndsTheRunAtOnce() {
    DesignersFixture f({"CREATE PROCEDURE slow() SELECT SLEEP(60)"});
    QElapsedTimer sinceStop;
    auto doc = document(f, {}, "slow", "Procedures", DesignersFixture::kDatabase);
    TformProcedureBuilder* running = doc.get();
    // The monitor hears a statement on the sending thread just before it goes out.
    f.monitor.addListener([running, &sinceStop](const std::string&) {
      if (QThread::currentThread() == running->thread() || sinceStop.isValid()) return;
      QMetaObject::invokeMethod(
          running,
          [running, &sinceStop] {
            sinceStop.start();
            running->Stop();
          },
          Qt::BlockingQueuedConnection);
    });
    const auto expectStoppedAtOnce = [&](const std::function<void()>& start) {
      sinceStop.invalidate();
      start();
      QVERIFY(sinceStop.isValid());
      QVERIFY2(sinceStop.elapsed() < 1000, qPrintable(QString::number(sinceStop.elapsed())));
      QVERIFY(!running->isBusy());
      QVERIFY(f.serverErrors.empty());
      QCOMPARE(lomarin::test::scalar(*f.session, "SELECT 2"), std::string("2"));
    };
    expectStoppedAtOnce([&] { doc->findChild<QPushButton*>("buExecute")->click(); });
    doc->frame()->memo()->setText("DO SLEEP(60);\nCREATE TABLE never (id INT);\n");
    expectStoppedAtOnce([&] { doc->action("actCompile")->trigger(); });
    QCOMPARE(lomarin::test::scalar(*f.session, "SELECT COUNT(*) FROM information_schema.tables "
                                               "WHERE table_schema = 'designers_ui' AND table_name = 'never'"),
             std::string("0"));
  }

  void clearAsksFirst() {
    DesignersFixture f;
    auto doc = document(f, "SELECT 1", {}, {}, DesignersFixture::kDatabase);
    lomarin::test::onNextModal<QMessageBox>([](QMessageBox* box) {
      QCOMPARE(box->text(), QString("Are you sure you want to clear the editor ?"));
      box->button(QMessageBox::No)->click();
    });
    doc->action("actClear")->trigger();
    QCOMPARE(doc->frame()->memo()->text(), QString("SELECT 1"));
    lomarin::test::onNextModal<QMessageBox>([](QMessageBox* box) { box->button(QMessageBox::Yes)->click(); });
    doc->action("actClear")->trigger();
    QCOMPARE(doc->frame()->memo()->text(), QString());
  }
};

}  // namespace

LOMARIN_UI_TEST(ProcedureBuilderTest)
#include "procedure_builder_test.moc"
