// The trigger and view dialogs against the server: what they send and what the server then holds.
#include <Qsci/qsciscintilla.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/designers/form_event_manager.h"
#include "ui/designers/form_new_view.h"
#include "ui/designers/form_trg_mgr.h"
#include "ui/designers/form_udf.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using lomarin::ui::TformNewView;
using lomarin::ui::TformTrgMgr;
using lomarin::ui::TformUDF;
using lomarin::ui::TfrmEventManager;

QString lineText(QWidget* dialog, const char* name) { return child<QLineEdit>(dialog, name)->text(); }
void setLine(QWidget* dialog, const char* name, const QString& text) {
  child<QLineEdit>(dialog, name)->setText(text);
}
bool checked(QWidget* dialog, const char* name) { return child<QAbstractButton>(dialog, name)->isChecked(); }
void check(QWidget* dialog, const char* name, bool on) {
  child<QAbstractButton>(dialog, name)->setChecked(on);
}

std::string eventColumn(DesignersFixture& f, const std::string& column, const std::string& name) {
  return lomarin::test::scalar(*f.session, "SELECT " + column +
                                               " FROM information_schema.events WHERE event_schema = "
                                               "'designers_ui' AND event_name = '" +
                                               name + "'");
}

constexpr const char* kTriggerSetup[] = {"CREATE TABLE t (id INT)", "CREATE TABLE u (id INT)"};

std::string triggerBody(DesignersFixture& f, const std::string& name) {
  return lomarin::test::scalar(*f.session,
                               "SELECT action_statement FROM information_schema.triggers "
                               "WHERE trigger_schema = 'designers_ui' AND trigger_name = '" +
                                   name + "'");
}

class ProgramDialogsTest : public QObject {
  Q_OBJECT
 private slots:
  void triggerIsCheckedCreatedAndThenHeld() {
    DesignersFixture f({std::begin(kTriggerSetup), std::end(kTriggerSetup)});
    QStringList reported;
    TformTrgMgr dialog(
        *f.session, *f.settings, [&](const QString& m) { reported << m; }, DesignersFixture::kDatabase);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Trigger manager"));
    QCOMPARE(child<QComboBox>(&dialog, "cobodb")->currentText(), QString(DesignersFixture::kDatabase));
    auto* tables = child<QComboBox>(&dialog, "coboTable");
    QCOMPARE(tables->count(), 2);
    QCOMPARE(child<QComboBox>(&dialog, "cobotrgtime")->currentIndex(), -1);
    f.takeStatements();

    auto* ok = child<QPushButton>(&dialog, "btnOk");
    child<QLineEdit>(&dialog, "edName")->setText("stamp");
    child<QComboBox>(&dialog, "cobotrgtime")->setCurrentText("BEFORE");
    ok->click();
    QCOMPARE(reported, QStringList{"Missing trigger event."});
    child<QComboBox>(&dialog, "cobotrgEvent")->setCurrentText("INSERT");
    ok->click();
    QCOMPARE(reported.last(), QString("Missing trigger source."));
    QVERIFY(f.takeStatements().empty());

    tables->setCurrentText("u");
    dialog.fraWhere()->memo()->setText("SET NEW.id = NEW.id + 1");
    child<QTabWidget>(&dialog, "pgcTrigger")->setCurrentIndex(2);
    const std::string create =
        "CREATE TRIGGER `designers_ui`.stamp BEFORE INSERT\n ON u\n FOR EACH ROW \n"
        "SET NEW.id = NEW.id + 1";
    QCOMPARE(dialog.sourceFrame()->memo()->text().toStdString(), create);
    lomarin::test::render(dialog, "TformTrgMgr");
    ok->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{create});
    QCOMPARE(triggerBody(f, "stamp"), std::string("SET NEW.id = NEW.id + 1"));
    // Submitted once: the dialog now holds the trigger and cannot send it again.
    QVERIFY(!ok->isEnabled());
    QVERIFY(dialog.editMode());
    QCOMPARE(dialog.windowTitle(), QString("Trigger [designers_ui.stamp]"));
  }

  void triggerLoadedChangedAndKeptWhenTheServerRefusesTheChange() {
    DesignersFixture f({"CREATE TABLE t (id INT)",
                        "CREATE TRIGGER stamp AFTER DELETE ON t FOR EACH ROW SET @gone = OLD.id"});
    TformTrgMgr dialog(*f.session, *f.settings, {}, DesignersFixture::kDatabase, "stamp");
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Trigger [designers_ui.stamp]"));
    const std::vector<std::string> sent = f.takeStatements();
    QVERIFY(std::find(sent.begin(), sent.end(),
                      "select  trigger_schema,trigger_name,event_manipulation,\r\n"
                      "       event_object_table,action_order,\r\n"
                      "       action_condition,action_statement,action_orientation,action_timing\r\n"
                      "from information_schema.triggers \r\n"
                      "where trigger_schema ='designers_ui' and\r\n"
                      "      trigger_name ='stamp'") != sent.end());
    QCOMPARE(child<QComboBox>(&dialog, "coboTable")->currentText(), QString("t"));
    QCOMPARE(child<QLineEdit>(&dialog, "edName")->text(), QString("stamp"));
    QCOMPARE(child<QComboBox>(&dialog, "cobotrgtime")->currentText(), QString("AFTER"));
    QCOMPARE(child<QComboBox>(&dialog, "cobotrgEvent")->currentText(), QString("DELETE"));
    QCOMPARE(dialog.fraWhere()->memo()->text(), QString("SET @gone = OLD.id"));
    lomarin::test::render(dialog, "TformTrgMgr_general");

    // A body the server refuses: the drop went through, so the old trigger is put back.
    dialog.fraWhere()->memo()->setText("SET NEW.id = 1");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements().front(), std::string("drop trigger `designers_ui`.stamp"));
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QCOMPARE(triggerBody(f, "stamp"), std::string("SET @gone = OLD.id"));
    QVERIFY(child<QPushButton>(&dialog, "btnOk")->isEnabled());
    f.takeStatements();

    dialog.fraWhere()->memo()->setText("SET @gone = OLD.id * 2");
    child<QComboBox>(&dialog, "cobotrgtime")->setCurrentText("BEFORE");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(
        f.takeStatements(),
        (std::vector<std::string>{"drop trigger `designers_ui`.stamp",
                                  "CREATE TRIGGER `designers_ui`.stamp BEFORE DELETE\n ON t\n FOR EACH ROW \n"
                                  "SET @gone = OLD.id * 2"}));
    QCOMPARE(triggerBody(f, "stamp"), std::string("SET @gone = OLD.id * 2"));
    QVERIFY(!child<QPushButton>(&dialog, "btnOk")->isEnabled());
  }

  // A database and a table with a hyphen, and a body of several statements, changed once.
  void compoundTriggerOfAHyphenatedDatabase() {
    DesignersFixture f;
    lomarin::test::sideExec("DROP DATABASE IF EXISTS `designers-trg`");
    lomarin::test::sideExec("CREATE DATABASE `designers-trg`");
    lomarin::test::sideExec("CREATE TABLE `designers-trg`.`price-list` (id INT)");
    TformTrgMgr dialog(*f.session, *f.settings, {}, "designers-trg");
    dialog.show();
    child<QLineEdit>(&dialog, "edName")->setText("stamp");
    child<QComboBox>(&dialog, "cobotrgtime")->setCurrentText("BEFORE");
    child<QComboBox>(&dialog, "cobotrgEvent")->setCurrentText("INSERT");
    child<QComboBox>(&dialog, "coboTable")->setCurrentText("price-list");
    const QString body = "BEGIN\n  SET NEW.id = NEW.id + 1;\n  SET @seen = NEW.id;\nEND";
    dialog.fraWhere()->memo()->setText(body);
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    const std::string head = "CREATE TRIGGER `designers-trg`.stamp BEFORE INSERT\n ON `price-list`\n FOR EACH ROW \n";
    QCOMPARE(f.takeStatements(), std::vector<std::string>{head + body.toStdString()});

    TformTrgMgr edit(*f.session, *f.settings, {}, "designers-trg", "stamp");
    edit.show();
    QCOMPARE(child<QComboBox>(&edit, "coboTable")->currentText(), QString("price-list"));
    QCOMPARE(edit.fraWhere()->memo()->text(), body);
    edit.fraWhere()->memo()->setText(QString(body).replace("+ 1", "+ 2"));
    f.takeStatements();
    child<QPushButton>(&edit, "btnOk")->click();
    QCOMPARE(f.takeStatements().front(), std::string("drop trigger `designers-trg`.`stamp`"));
    QVERIFY(f.serverErrors.empty());
    lomarin::test::sideExec("INSERT INTO `designers-trg`.`price-list` VALUES (1)");
    QCOMPARE(lomarin::test::scalar(*f.session, "SELECT id FROM `designers-trg`.`price-list`"), std::string("3"));
    lomarin::test::sideExec("DROP DATABASE `designers-trg`");
  }

  void oneTimeEventCreatedThenLoadedAndAltered() {
    DesignersFixture f({"CREATE TABLE t (id INT)"});
    QStringList reported;
    {
      TfrmEventManager dialog(
          *f.session, *f.settings, [&](const QString& m) { reported << m; }, DesignersFixture::kDatabase);
      dialog.show();
      QVERIFY(checked(&dialog, "cxchkEnabled"));
      QVERIFY(checked(&dialog, "cxchkCompletion"));
      QVERIFY(!child<QLineEdit>(&dialog, "cxeditEvery")->isEnabled());
      setLine(&dialog, "cxEventName", "once");
      child<QPushButton>(&dialog, "btnOk")->click();
      QCOMPARE(reported, QStringList{"Missing event source."});
      setLine(&dialog, "cxedCurrent", "2030-06-01 10:00:00");
      setLine(&dialog, "cxedinterval", "2");
      child<QComboBox>(&dialog, "cxcoboInterval")->setCurrentText("HOUR");
      child<QPlainTextEdit>(&dialog, "cxmemoComment")->setPlainText(R"(it's C:\)");
      dialog.fraDefinition()->memo()->setText("INSERT INTO t VALUES (1)");
      lomarin::test::render(dialog, "TfrmEventManager");
      f.takeStatements();
      child<QPushButton>(&dialog, "btnOk")->click();
      QCOMPARE(f.takeStatements(),
               std::vector<std::string>{"CREATE EVENT `once`\n"
                                        "ON SCHEDULE AT '2030-06-01 10:00:00' + INTERVAL 2 HOUR\n"
                                        "ON COMPLETION NOT PRESERVE\n"
                                        "ENABLE\n"
                                        R"(COMMENT 'it\'s C:\\' DO)"
                                        "\n"
                                        "INSERT INTO t VALUES (1)"});
      QCOMPARE(dialog.windowTitle(), QString("EVENT [designers_ui.once]"));
      QVERIFY(dialog.alterMode());
      QVERIFY(!child<QPushButton>(&dialog, "btnOk")->isEnabled());
    }
    QCOMPARE(eventColumn(f, "execute_at", "once"), std::string("2030-06-01 12:00:00"));
    QCOMPARE(eventColumn(f, "event_comment", "once"), std::string(R"(it's C:\)"));

    TfrmEventManager dialog(*f.session, *f.settings, {}, DesignersFixture::kDatabase, "once");
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("EVENT [designers_ui.once]"));
    QVERIFY(checked(&dialog, "cxrdiAt"));
    QCOMPARE(lineText(&dialog, "cxedCurrent"), QString("2030-06-01 12:00:00"));
    QCOMPARE(child<QPlainTextEdit>(&dialog, "cxmemoComment")->toPlainText(), QString(R"(it's C:\)"));
    QCOMPARE(dialog.fraDefinition()->memo()->text(), QString("INSERT INTO t VALUES (1)"));
    check(&dialog, "cxchkEnabled", false);
    check(&dialog, "cxchkCompletion", false);
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(eventColumn(f, "status", "once"), std::string("DISABLED"));
    QCOMPARE(eventColumn(f, "on_completion", "once"), std::string("PRESERVE"));
  }

  void recurringEventLoadedWithEveryFieldAndAltered() {
    DesignersFixture f(
        {"CREATE TABLE t (id INT)",
         "CREATE EVENT every ON SCHEDULE EVERY 5 MINUTE STARTS '2030-01-01 00:00:00' "
         "ENDS '2031-01-01 00:00:00' ON COMPLETION PRESERVE DISABLE COMMENT 'tick' DO DELETE FROM t"});
    TfrmEventManager dialog(*f.session, *f.settings, {}, DesignersFixture::kDatabase, "every");
    dialog.show();
    QVERIFY(checked(&dialog, "cxradiEvery"));
    QVERIFY(!child<QLineEdit>(&dialog, "cxedCurrent")->isEnabled());
    QCOMPARE(lineText(&dialog, "cxEventName"), QString("every"));
    QCOMPARE(lineText(&dialog, "cxeditEvery"), QString("5"));
    QCOMPARE(child<QComboBox>(&dialog, "cxcoboEvery")->currentText(), QString("MINUTE"));
    QVERIFY(checked(&dialog, "cxchkstart"));
    QCOMPARE(lineText(&dialog, "cxedStart"), QString("2030-01-01 00:00:00"));
    QVERIFY(checked(&dialog, "cxchkEnd"));
    QCOMPARE(lineText(&dialog, "cxedEnd"), QString("2031-01-01 00:00:00"));
    QVERIFY(!checked(&dialog, "cxchkEnabled"));
    QVERIFY(!checked(&dialog, "cxchkCompletion"));
    QCOMPARE(child<QPlainTextEdit>(&dialog, "cxmemoComment")->toPlainText(), QString("tick"));
    QCOMPARE(dialog.fraDefinition()->memo()->text(), QString("DELETE FROM t"));

    setLine(&dialog, "cxeditEvery", "1");
    child<QComboBox>(&dialog, "cxcoboEvery")->setCurrentText("DAY");
    check(&dialog, "cxchkEnd", false);
    child<QTabWidget>(&dialog, "pgcEvent")->setCurrentIndex(2);
    const QString alter =
        "ALTER EVENT `every`\n"
        "ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00'\n"
        "ON COMPLETION PRESERVE\n"
        "DISABLE\n"
        "COMMENT 'tick' DO\n"
        "DELETE FROM t";
    QCOMPARE(dialog.sourceFrame()->memo()->text(), alter);
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{alter.toStdString()});
    QCOMPARE(eventColumn(f, "interval_field", "every"), std::string("DAY"));
  }

  // The texts name no database, and a compound body holds ";": both must reach the server whole,
  // in the event's own database.
  void compoundEventOfAnotherDatabaseCreatedAndAlteredThere() {
    DesignersFixture f;
    lomarin::test::sideExec("DROP DATABASE IF EXISTS `designers-events`");
    lomarin::test::sideExec("CREATE DATABASE `designers-events`");
    const std::string body = "BEGIN\n  SET @a = 1;\n  SET @b = 2;\nEND";
    {
      TfrmEventManager dialog(*f.session, *f.settings, {}, "designers-events");
      dialog.show();
      setLine(&dialog, "cxEventName", "tally");
      check(&dialog, "cxradiEvery", true);
      setLine(&dialog, "cxeditEvery", "1");
      child<QComboBox>(&dialog, "cxcoboEvery")->setCurrentText("DAY");
      dialog.fraDefinition()->memo()->setText(QString::fromStdString(body));
      f.takeStatements();
      child<QPushButton>(&dialog, "btnOk")->click();
      QCOMPARE(f.takeStatements(),
               (std::vector<std::string>{"USE `designers-events`",
                                         "CREATE EVENT `tally`\nON SCHEDULE EVERY 1 DAY\n"
                                         "ON COMPLETION NOT PRESERVE\nENABLE\nCOMMENT '' DO\n" +
                                             body,
                                         "USE `designers_ui`"}));
      QCOMPARE(dialog.windowTitle(), QString("EVENT [designers-events.tally]"));
    }
    const std::string where = " FROM information_schema.events WHERE event_name = 'tally'";
    QCOMPARE(lomarin::test::scalar(*f.session, "SELECT GROUP_CONCAT(event_schema)" + where),
             std::string("designers-events"));
    QCOMPARE(lomarin::test::scalar(*f.session, "SELECT event_definition" + where), body);

    TfrmEventManager dialog(*f.session, *f.settings, {}, "designers-events", "tally");
    dialog.show();
    QCOMPARE(dialog.fraDefinition()->memo()->text().toStdString(), body);
    check(&dialog, "cxchkEnabled", false);
    check(&dialog, "cxchkCompletion", false);
    child<QPlainTextEdit>(&dialog, "cxmemoComment")->setPlainText("say \"it's\" \\n");
    setLine(&dialog, "cxEventName", "tallied");
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    const std::vector<std::string> sent = f.takeStatements();
    QCOMPARE(sent.size(), size_t(3));
    QVERIFY(sent[1].starts_with("ALTER EVENT `tally`\nON SCHEDULE EVERY 1 DAY STARTS '"));
    QVERIFY(sent[1].find("\nON COMPLETION PRESERVE\nRENAME TO `tallied`\nDISABLE\n") != std::string::npos);
    QVERIFY(f.serverErrors.empty());
    QCOMPARE(dialog.windowTitle(), QString("EVENT [designers-events.tallied]"));
    QCOMPARE(lomarin::test::scalar(*f.session, "SELECT CONCAT_WS('|', event_name, status, on_completion, "
                                               "event_comment) FROM information_schema.events WHERE "
                                               "event_schema = 'designers-events'"),
             std::string("tallied|DISABLED|PRESERVE|say \"it's\" \\n"));
    QCOMPARE(f.session->CurrentDatabase(), std::string("designers_ui"));
    lomarin::test::sideExec("DROP DATABASE `designers-events`");
  }

  void libraryFunctionStatementsAndTheServersRefusal() {
    DesignersFixture f;
    QStringList reported;
    TformUDF dialog(*f.session, *f.settings, [&](const QString& m) { reported << m; });
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("UDF manager"));
    QCOMPARE(child<QComboBox>(&dialog, "coboretuns")->currentText(), QString("String"));
    lomarin::test::render(dialog, "TformUDF_general");
    setLine(&dialog, "edName", "nothere");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(reported, QStringList{"Missing library."});
    setLine(&dialog, "rxFilename", "nothere.so");
    child<QComboBox>(&dialog, "coboretuns")->setCurrentText("Integer");
    check(&dialog, "chkAggrgate", true);
    child<QTabWidget>(&dialog, "pgcUdf")->setCurrentIndex(1);
    lomarin::test::render(dialog, "TformUDF");
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(),
             std::vector<std::string>{
                 "CREATE FUNCTION AGGREGATE `nothere` RETURNS Integer SONAME \"nothere.so\""});
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QVERIFY(dialog.isVisible());
    QCOMPARE(lineText(&dialog, "edName"), QString("nothere"));
  }

  void viewMadeFromTheSqlPage() {
    DesignersFixture f({"CREATE TABLE t (id INT)"});
    TformNewView dialog(*f.session, *f.settings);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("New View"));
    child<QLineEdit>(&dialog, "edName")->setText("ids");
    dialog.fraWhere()->memo()->setText("select id from t");
    child<QTabWidget>(&dialog, "pgcView")->setCurrentIndex(1);
    lomarin::test::render(dialog, "TformNewView_sql");
    child<QTabWidget>(&dialog, "pgcView")->setCurrentIndex(2);
    QCOMPARE(dialog.sourceFrame()->memo()->text(), QString("CREATE VIEW ids AS \nselect id from t"));
    QVERIFY(dialog.sourceFrame()->isReadOnly());
    lomarin::test::render(dialog, "TformNewView");
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"CREATE VIEW ids AS \nselect id from t"});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(lomarin::test::scalar(*f.session,
                                   "SELECT COUNT(*) FROM information_schema.views "
                                   "WHERE table_schema = 'designers_ui' AND table_name = 'ids'"),
             std::string("1"));
  }
};

}  // namespace

LOMARIN_UI_TEST(ProgramDialogsTest)
#include "program_dialogs_test.moc"
