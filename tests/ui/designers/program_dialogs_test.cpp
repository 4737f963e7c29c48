// The trigger and view dialogs against the server: what they send and what the server then holds.
#include <Qsci/qsciscintilla.h>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/designers/form_new_view.h"
#include "ui/designers/form_trg_mgr.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using lomarin::ui::TformNewView;
using lomarin::ui::TformTrgMgr;

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

  void viewMadeFromTheSqlPage() {
    DesignersFixture f({"CREATE TABLE t (id INT)"});
    TformNewView dialog(*f.session, *f.settings);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("New View"));
    child<QLineEdit>(&dialog, "edName")->setText("ids");
    dialog.fraWhere()->memo()->setText("select id from t");
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
