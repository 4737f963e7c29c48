#include "ui/designers/form_databases.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/designers/form_clone_object.h"
#include "ui/designers/form_rename_table.h"
#include "ui/sqleditor/form_exec_script.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using namespace lomarin::ui;

constexpr const char* kOtherDatabase = "designers-ui-other";

bool databaseExists(DesignersFixture& f, const std::string& name) {
  return lomarin::test::scalar(
             *f.session,
             "select count(*) from information_schema.schemata where schema_name = '" + name + "'") == "1";
}

class DatabaseDialogsTest : public QObject {
  Q_OBJECT
 private slots:
  void cleanup() { lomarin::test::sideExec(std::string("DROP DATABASE IF EXISTS `") + kOtherDatabase + "`"); }

  void newDatabaseNeedsANameAndCreatesIt() {
    DesignersFixture f;
    QStringList shown;
    TformNewDataBase dialog(*f.session, [&](const QString& message) { shown << message; });
    dialog.show();
    lomarin::test::render(dialog, "TformNewDataBase");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(shown, QStringList{"Please write a DataBase Name !!! "});
    QVERIFY(dialog.isVisible());
    child<QLineEdit>(&dialog, "edtName")->setText(kOtherDatabase);
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"create database `designers-ui-other`"});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(databaseExists(f, kOtherDatabase));
  }

  void dropDatabaseGoesThroughTheExecSqlConfirmation() {
    DesignersFixture f;
    lomarin::test::sideExec(std::string("CREATE DATABASE `") + kOtherDatabase + "`");
    QStringList shown;
    TformDropDatabase dialog(*f.session, *f.settings, [&](const QString& message) { shown << message; });
    dialog.show();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"Show databases "});
    auto* databases = child<QComboBox>(&dialog, "coboDataBase");
    QVERIFY(databases->findText(kOtherDatabase) >= 0);
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(shown, QStringList{"Please select a DataBase !!! "});
    databases->setCurrentText(kOtherDatabase);
    lomarin::test::render(dialog, "TformDropDatabase");

    // Closing the confirmation sends nothing and keeps the dialog.
    lomarin::test::onNextModal<TformExecScript>([](TformExecScript* confirm) {
      QCOMPARE(confirm->sql(), QString("drop database `designers-ui-other`"));
    });
    child<QPushButton>(&dialog, "btnOk")->click();
    QVERIFY(dialog.isVisible());
    QVERIFY(databaseExists(f, kOtherDatabase));

    lomarin::test::onNextModal<TformExecScript>(
        [](TformExecScript* confirm) { child<QPushButton>(confirm, "btnExecute")->click(); });
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!databaseExists(f, kOtherDatabase));
  }

  void renameTable() {
    DesignersFixture f({"CREATE TABLE a (id INT)", "CREATE TABLE taken (id INT)"});
    TfrmRenameTable dialog(*f.session, DesignersFixture::kDatabase, "a");
    dialog.show();
    lomarin::test::render(dialog, "TfrmRenameTable");
    auto* newName = child<QLineEdit>(&dialog, "edNewName");
    newName->clear();
    child<QPushButton>(&dialog, "btnOk")->click();
    QVERIFY(f.takeStatements().empty());
    newName->setText("taken");
    child<QPushButton>(&dialog, "btnOk")->click();
    QVERIFY(dialog.isVisible());
    QCOMPARE(newName->text(), QString("taken"));
    newName->setText("b");
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"RENAME TABLE designers_ui.a TO designers_ui.b "});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(lomarin::test::scalar(*f.session, "show tables like 'b'"), std::string("b"));
  }

  void copyWithAndWithoutDataIntoAnotherDatabase() {
    DesignersFixture f({"CREATE TABLE src (id INT PRIMARY KEY, v VARCHAR(5))",
                        "INSERT INTO src VALUES (1,'a'),(2,'b')", "CREATE TABLE other (id INT)"});
    lomarin::test::sideExec(std::string("CREATE DATABASE `") + kOtherDatabase + "`");
    for (const bool withData : {true, false}) {
      TfrmCloneObject dialog(*f.session, DesignersFixture::kDatabase, "src", {});
      dialog.show();
      auto* tables = child<QListWidget>(&dialog, "lstTables");
      QCOMPARE(tables->count(), 2);
      QCOMPARE(tables->currentItem()->text(), QString("src"));
      QCOMPARE(child<QLineEdit>(&dialog, "edNewName")->text(), QString("src_new"));
      QCOMPARE(child<QComboBox>(&dialog, "cobodb")->currentText(), QString(DesignersFixture::kDatabase));
      if (withData) lomarin::test::render(dialog, "TfrmCloneObject");
      child<QLineEdit>(&dialog, "edNewName")->setText(withData ? "full" : "bare");
      child<QComboBox>(&dialog, "cobodb")->setCurrentText(kOtherDatabase);
      child<QCheckBox>(&dialog, "chkdata")->setChecked(withData);
      child<QPushButton>(&dialog, "btnOk")->click();
      QVERIFY(dialog.Success());
      QCOMPARE(dialog.result(), int(QDialog::Accepted));
    }
    QCOMPARE(lomarin::test::scalar(*f.session,
                                   "select group_concat(v order by id) from `designers-ui-other`.full"),
             std::string("a,b"));
    QCOMPARE(lomarin::test::scalar(*f.session, "select count(*) from `designers-ui-other`.bare"),
             std::string("0"));

    // A copy that exists already is refused and the dialog stays.
    TfrmCloneObject again(*f.session, DesignersFixture::kDatabase, "src", {});
    again.show();
    child<QLineEdit>(&again, "edNewName")->setText("other");
    child<QPushButton>(&again, "btnOk")->click();
    QVERIFY(!again.Success());
    QVERIFY(again.isVisible());
  }
};

}  // namespace

LOMARIN_UI_TEST(DatabaseDialogsTest)
#include "form_databases_test.moc"
