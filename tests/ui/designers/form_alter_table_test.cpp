#include "ui/designers/form_alter_table.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using lomarin::ui::TfrmAlterTable;

const char* const kTable =
    "CREATE TABLE t (id INT UNSIGNED NOT NULL AUTO_INCREMENT PRIMARY KEY, old INT, "
    "e ENUM('x','y') DEFAULT 'x')";

std::string columnsOf(DesignersFixture& f) {
  const std::string created = f.createText("t");
  return created.substr(0, created.find("  PRIMARY KEY"));
}

class AlterTableTest : public QObject {
  Q_OBJECT
 private slots:
  void addModeListsThePositionsAndAddsTheColumn() {
    DesignersFixture f({kTable});
    TfrmAlterTable dialog(*f.session, "t");
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Alter Table t"));
    for (const char* name :
         {"edName", "coboDataType", "edLenght", "edDefault", "edValues", "cobotherFields", "chkAutoInc",
          "chkMandatory", "chkKey", "chkUnsigned", "chkzerofill", "btnOk", "btnCancel"})
      QVERIFY2(dialog.findChild<QWidget*>(name), name);
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"show fields FROM t"});
    auto* after = child<QComboBox>(&dialog, "cobotherFields");
    QCOMPARE(after->count(), 3);
    QVERIFY(after->isEnabled());
    QVERIFY(!child<QCheckBox>(&dialog, "chkKey")->isVisible());
    lomarin::test::render(dialog, "TfrmAlterTable");

    child<QLineEdit>(&dialog, "edName")->setText("n");
    child<QComboBox>(&dialog, "coboDataType")->setCurrentText("varchar");
    child<QLineEdit>(&dialog, "edLenght")->setText("10");
    child<QLineEdit>(&dialog, "edDefault")->setText("'dflt'");
    child<QCheckBox>(&dialog, "chkMandatory")->setChecked(true);
    after->setCurrentText("id");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(),
             std::vector<std::string>{"Alter table t Add n varchar(10)   Default 'dflt' Not Null  After id"});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(columnsOf(f).find(
                "`id` int(10) unsigned NOT NULL AUTO_INCREMENT,\n  `n` varchar(10) NOT NULL DEFAULT "
                "'dflt',\n  `old`") != std::string::npos);
  }

  void changeModeReadsTheColumnAndRenamesAndRetypesIt() {
    DesignersFixture f({kTable});
    TfrmAlterTable key(*f.session, "t", "id");
    key.show();
    QCOMPARE(child<QComboBox>(&key, "coboDataType")->currentText(), QString("int"));
    QCOMPARE(child<QLineEdit>(&key, "edLenght")->text(), QString("10"));
    QVERIFY(child<QCheckBox>(&key, "chkUnsigned")->isChecked());
    QVERIFY(child<QCheckBox>(&key, "chkMandatory")->isChecked());
    QVERIFY(child<QCheckBox>(&key, "chkAutoInc")->isChecked());
    QVERIFY(!child<QLineEdit>(&key, "edDefault")->isEnabled());
    QVERIFY(child<QCheckBox>(&key, "chkKey")->isVisible() && child<QCheckBox>(&key, "chkKey")->isChecked());
    QVERIFY(!child<QComboBox>(&key, "cobotherFields")->isEnabled());

    f.takeStatements();
    TfrmAlterTable dialog(*f.session, "t", "old");
    dialog.show();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"show fields FROM t like 'old'"});
    QCOMPARE(child<QLineEdit>(&dialog, "edName")->text(), QString("old"));
    child<QLineEdit>(&dialog, "edName")->setText("renamed");
    child<QComboBox>(&dialog, "coboDataType")->setCurrentText("bigint");
    child<QLineEdit>(&dialog, "edLenght")->setText("");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(),
             std::vector<std::string>{"Alter table t change `old`  `renamed` bigint     "});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(columnsOf(f).find("`renamed` bigint(20) DEFAULT NULL") != std::string::npos);
  }

  void enumColumnIsModified() {
    DesignersFixture f({kTable});
    TfrmAlterTable dialog(*f.session, "t", "e");
    dialog.show();
    QCOMPARE(child<QComboBox>(&dialog, "coboDataType")->currentText(), QString("enum"));
    QCOMPARE(child<QLineEdit>(&dialog, "edValues")->text(), QString("x,y"));
    QVERIFY(child<QLineEdit>(&dialog, "edDefault")->isEnabled());
    child<QLineEdit>(&dialog, "edValues")->setText("x,y,z");
    child<QLineEdit>(&dialog, "edDefault")->setText("z");
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(),
             std::vector<std::string>{"ALTER TABLE t MODIFY COLUMN `e` enum('x','y','z') Default 'z'   "});
    QVERIFY(columnsOf(f).find("`e` enum('x','y','z') DEFAULT 'z'") != std::string::npos);
  }

  void autoIncrementTakesTheDefaultAndARefusalKeepsTheInput() {
    DesignersFixture f({kTable});
    TfrmAlterTable dialog(*f.session, "t");
    dialog.show();
    auto* defaultValue = child<QLineEdit>(&dialog, "edDefault");
    child<QComboBox>(&dialog, "coboDataType")->setCurrentText("int");
    defaultValue->setText("3");
    child<QCheckBox>(&dialog, "chkAutoInc")->setChecked(true);
    QVERIFY(!defaultValue->isEnabled() && defaultValue->text().isEmpty());
    child<QCheckBox>(&dialog, "chkAutoInc")->setChecked(false);
    QVERIFY(defaultValue->isEnabled());

    child<QLineEdit>(&dialog, "edName")->setText("old");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QVERIFY(dialog.isVisible());
    QCOMPARE(child<QLineEdit>(&dialog, "edName")->text(), QString("old"));
  }
};

}  // namespace

LOMARIN_UI_TEST(AlterTableTest)
#include "form_alter_table_test.moc"
