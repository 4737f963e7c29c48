#include "ui/designers/form_table.h"

#include <Qsci/qsciscintilla.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "engine/designers/create_table.h"
#include "ui/designers/form_foreign.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using lomarin::ui::TformForeign;
using lomarin::ui::TfrmTable;

const char* const kFlags[] = {"chkPk",      "chkMandatory", "chkAutoInc", "chkIndex",
                              "chkforeing", "chkUnsigned",  "chkzerofill"};

QCheckBox* box(QWidget* dialog, const char* name) { return child<QCheckBox>(dialog, name); }

void enterColumn(QWidget* dialog, const QString& name, const QString& type, const QString& length = {},
                 const QStringList& checked = {}) {
  child<QLineEdit>(dialog, "edName")->setText(name);
  child<QComboBox>(dialog, "coboDataType")->setCurrentText(type);
  child<QLineEdit>(dialog, "edLenght")->setText(length);
  for (const QString& flag : checked) box(dialog, flag.toLatin1().constData())->setChecked(true);
}

void addColumn(QWidget* dialog, const QString& name, const QString& type, const QString& length = {},
               const QStringList& checked = {}) {
  enterColumn(dialog, name, type, length, checked);
  child<QPushButton>(dialog, "spbuadd")->click();
}

QStringList gridRow(QWidget* dialog, int row) {
  QTreeWidgetItem* item = child<QTreeWidget>(dialog, "dxtrFields")->topLevelItem(row);
  QStringList cells;
  for (int c = 0; c < 12; ++c) cells << item->text(c);
  return cells;
}

class TableDesignerTest : public QObject {
  Q_OBJECT
 private slots:
  void namedWidgetsAndLists() {
    DesignersFixture f;
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Table Properties"));
    for (const char* name :
         {"edtName", "cobodb", "coboTableType", "coboRowFormat", "meComment", "edName", "coboDataType",
          "edLenght", "edDefault", "edExtraValue", "spbuadd", "spbuDelete", "dxtrFields", "cxcoboPartType",
          "cxtextExpression", "cxspCount", "cxmemoValue", "btnOk", "btnCancel"})
      QVERIFY2(dialog.findChild<QWidget*>(name), name);
    for (const char* name : kFlags) QVERIFY2(box(&dialog, name), name);
    QCOMPARE(child<QComboBox>(&dialog, "cobodb")->currentText(), QString(DesignersFixture::kDatabase));
    QCOMPARE(child<QComboBox>(&dialog, "coboTableType")->currentText(), QString("MyISAM"));
    QCOMPARE(child<QComboBox>(&dialog, "coboRowFormat")->currentText(), QString("DEFAULT"));
    QCOMPARE(child<QComboBox>(&dialog, "coboDataType")->count(), 30);
    QCOMPARE(child<QComboBox>(&dialog, "coboDataType")->currentIndex(), -1);
    auto* pages = child<QTabWidget>(&dialog, "pgcTable");
    QCOMPARE(pages->count(), 4);
    QVERIFY(pages->isTabVisible(2));  // the sandbox reports 5.5
    QCOMPARE(f.takeStatements().back(), std::string("Show databases "));
    QTreeWidgetItem* header = child<QTreeWidget>(&dialog, "dxtrFields")->headerItem();
    QCOMPARE(header->text(5), QString("Lenght"));
    QCOMPARE(header->text(11), QString("Zerofill"));
    lomarin::test::render(dialog, "TfrmTable");
  }

  void typeChoicesEnableTheirFields() {
    DesignersFixture f;
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    auto* type = child<QComboBox>(&dialog, "coboDataType");
    auto* length = child<QLineEdit>(&dialog, "edLenght");
    auto* defaultValue = child<QLineEdit>(&dialog, "edDefault");
    enterColumn(&dialog, "c", "int", "11", {"chkIndex"});
    defaultValue->setText("5");
    type->setCurrentText("bool");
    for (const char* name : kFlags) {
      QVERIFY2(!box(&dialog, name)->isEnabled(), name);
      QVERIFY2(!box(&dialog, name)->isChecked(), name);
    }
    QCOMPARE(length->text(), QString("11"));  // nothing else changes for bool
    type->setCurrentText("datetime");
    QVERIFY(box(&dialog, "chkPk")->isEnabled());
    QVERIFY(!box(&dialog, "chkAutoInc")->isEnabled());
    QVERIFY(!length->isEnabled());
    QVERIFY(length->text().isEmpty());
    defaultValue->setText("2020-01-01");
    type->setCurrentText("timestamp");
    QVERIFY(!defaultValue->isEnabled());
    QVERIFY(defaultValue->text().isEmpty());
    type->setCurrentText("enum");
    QVERIFY(child<QLineEdit>(&dialog, "edExtraValue")->isEnabled());
    QVERIFY(!box(&dialog, "chkUnsigned")->isEnabled());
    type->setCurrentText("int");
    box(&dialog, "chkPk")->setChecked(true);
    QVERIFY(box(&dialog, "chkMandatory")->isChecked());
    QVERIFY(!box(&dialog, "chkMandatory")->isEnabled());
    QVERIFY(!box(&dialog, "chkforeing")->isEnabled());
    type->setCurrentText("bigint");  // another type keeps the primary key's partners off
    QVERIFY(!box(&dialog, "chkMandatory")->isEnabled());
    box(&dialog, "chkPk")->setChecked(false);
    QVERIFY(box(&dialog, "chkMandatory")->isEnabled());
    QVERIFY(box(&dialog, "chkforeing")->isEnabled());
  }

  void rowsAreCheckedAddedAndDeleted() {
    DesignersFixture f;
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    dialog.show();
    QString warning;
    lomarin::test::onNextModal<QMessageBox>([&](QMessageBox* box) { warning = box->text(); });
    addColumn(&dialog, "v", "varchar");
    QCOMPARE(warning, QString("The varchar field most have a size !! "));
    auto* grid = child<QTreeWidget>(&dialog, "dxtrFields");
    QCOMPARE(grid->topLevelItemCount(), 0);
    addColumn(&dialog, "id", "int", "11", {"chkPk", "chkAutoInc", "chkUnsigned"});
    QCOMPARE(gridRow(&dialog, 0), QStringList({"id", "int", "Y", "Y", "", "11", "", "Y", "", "", "Y", ""}));
    // The entry is reset and every box usable again.
    QVERIFY(child<QLineEdit>(&dialog, "edName")->text().isEmpty());
    QCOMPARE(child<QComboBox>(&dialog, "coboDataType")->currentIndex(), -1);
    for (const char* name : kFlags)
      QVERIFY2(box(&dialog, name)->isEnabled() && !box(&dialog, name)->isChecked(), name);
    QVERIFY(!child<QLineEdit>(&dialog, "edExtraValue")->isEnabled());

    lomarin::test::onNextModal<QMessageBox>([&](QMessageBox* box) { warning = box->text(); });
    addColumn(&dialog, "ID", "int");
    QCOMPARE(warning, QString("The name already exists "));
    enterColumn(&dialog, "e", "enum");
    child<QLineEdit>(&dialog, "edExtraValue")->setText("'a','b'");
    child<QPushButton>(&dialog, "spbuadd")->click();
    addColumn(&dialog, "n", "int");
    QCOMPARE(gridRow(&dialog, 1).at(9), QString("('a','b')"));
    QCOMPARE(grid->topLevelItemCount(), 3);

    grid->clearSelection();
    grid->topLevelItem(1)->setSelected(true);
    grid->topLevelItem(2)->setSelected(true);
    QString question;
    lomarin::test::onNextModal<QMessageBox>([&](QMessageBox* box) {
      question = box->windowTitle() + "|" + box->text();
      box->button(QMessageBox::Ok)->click();
    });
    child<QPushButton>(&dialog, "spbuDelete")->click();
    QCOMPARE(question, QString("Warning !|Delete selected fields ?"));
    QCOMPARE(grid->topLevelItemCount(), 1);
    QCOMPARE(grid->currentItem(), grid->topLevelItem(0));
    QVERIFY(grid->topLevelItem(0)->isSelected());
  }

  void partitionTypeEnablesItsFields() {
    DesignersFixture f;
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    auto* kind = child<QComboBox>(&dialog, "cxcoboPartType");
    auto* expression = child<QLineEdit>(&dialog, "cxtextExpression");
    auto* count = child<QSpinBox>(&dialog, "cxspCount");
    auto* values = child<QPlainTextEdit>(&dialog, "cxmemoValue");
    QVERIFY(!expression->isEnabled() && !values->isEnabled());
    kind->setCurrentText("range");
    QVERIFY(expression->isEnabled() && values->isEnabled() && !count->isEnabled());
    values->setPlainText("PARTITION p0 VALUES LESS THAN (10)");
    kind->setCurrentText("hash");
    QVERIFY(expression->isEnabled() && count->isEnabled() && !values->isEnabled());
    QVERIFY(values->toPlainText().isEmpty());
  }

  void sourcePageShowsTheStatementAndOkCreatesTheTable() {
    DesignersFixture f({"CREATE TABLE customers (id INT PRIMARY KEY) ENGINE=InnoDB"});
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    dialog.show();
    child<QLineEdit>(&dialog, "edtName")->setText("orders");
    child<QComboBox>(&dialog, "coboTableType")->setCurrentText("InnoDB");
    child<QPlainTextEdit>(&dialog, "meComment")->setPlainText("made here");
    addColumn(&dialog, "id", "int", "", {"chkPk", "chkAutoInc"});
    addColumn(&dialog, "code", "char", "4", {"chkIndex"});
    enterColumn(&dialog, "cid", "int");
    lomarin::test::onNextModal<TformForeign>([](TformForeign* foreign) {
      QCOMPARE(foreign->windowTitle(), QString("Foreign key options"));
      child<QComboBox>(foreign, "coboTables")->setCurrentText("customers");
      QCOMPARE(child<QComboBox>(foreign, "coboFields")->currentText(), QString("id"));
      child<QComboBox>(foreign, "coboEvent")->setCurrentText("DELETE");
      child<QComboBox>(foreign, "coboRule")->setCurrentText("SET NULL ");
      lomarin::test::render(*foreign, "TformForeign");
      child<QPushButton>(foreign, "btnOk")->click();
    });
    box(&dialog, "chkforeing")->setChecked(true);
    QVERIFY(box(&dialog, "chkIndex")->isChecked());
    QVERIFY(!box(&dialog, "chkPk")->isEnabled());
    child<QPushButton>(&dialog, "spbuadd")->click();
    QCOMPARE(gridRow(&dialog, 2).at(8),
             QString(" FOREIGN KEY (cid) REFERENCES customers (id) ON DELETE  SET NULL "));

    const std::string expected =
        " CREATE TABLE designers_ui.orders( \nid int NOT NULL  AUTO_INCREMENT , \ncode char(4) , \ncid int , "
        " "
        "PRIMARY KEY (id),\nINDEX(code,cid) , FOREIGN KEY (cid) REFERENCES customers (id) ON DELETE  SET "
        "NULL  )"
        " ENGINE = InnoDB ROW_FORMAT =DEFAULT COMMENT = 'made here'";
    child<QTabWidget>(&dialog, "pgcTable")->setCurrentIndex(3);
    QCOMPARE(dialog.sourceFrame()->memo()->text().toStdString(), expected);
    QVERIFY(dialog.sourceFrame()->memo()->isReadOnly());
    lomarin::test::render(dialog, "TfrmTable-source");
    child<QTabWidget>(&dialog, "pgcTable")->setCurrentIndex(1);
    lomarin::test::render(dialog, "TfrmTable-columns");

    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{expected});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    const std::string created = f.createText("orders");
    for (const char* part :
         {"`id` int(11) NOT NULL AUTO_INCREMENT", "PRIMARY KEY (`id`)", "KEY `code` (`code`,`cid`)",
          "FOREIGN KEY (`cid`) REFERENCES `customers` (`id`) ON DELETE SET NULL", "COMMENT='made here'"})
      QVERIFY2(created.find(part) != std::string::npos, created.c_str());
  }

  void partitionedTable() {
    DesignersFixture f;
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    dialog.show();
    child<QLineEdit>(&dialog, "edtName")->setText("parted");
    addColumn(&dialog, "id", "int", "", {"chkPk"});
    child<QComboBox>(&dialog, "cxcoboPartType")->setCurrentText("key");
    child<QLineEdit>(&dialog, "cxtextExpression")->setText("id");
    child<QSpinBox>(&dialog, "cxspCount")->setValue(3);
    child<QTabWidget>(&dialog, "pgcTable")->setCurrentIndex(2);
    lomarin::test::render(dialog, "TfrmTable-partitions");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const std::string created = f.createText("parted");
    QVERIFY2(created.find("PARTITION BY KEY (`id`)\nPARTITIONS 3") != std::string::npos, created.c_str());
  }

  void refusedStatementKeepsTheDialogAndItsInput() {
    DesignersFixture f;
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    dialog.show();
    child<QLineEdit>(&dialog, "edtName")->setText("old_kind");
    child<QComboBox>(&dialog, "coboTableType")->setCurrentText("BDB");
    addColumn(&dialog, "id", "int", "", {"chkPk"});
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QVERIFY(dialog.isVisible());
    QCOMPARE(child<QLineEdit>(&dialog, "edtName")->text(), QString("old_kind"));
    QCOMPARE(child<QComboBox>(&dialog, "coboTableType")->currentText(), QString("BDB"));
    QCOMPARE(child<QTreeWidget>(&dialog, "dxtrFields")->topLevelItemCount(), 1);
    // Corrected, the same dialog goes on.
    child<QComboBox>(&dialog, "coboTableType")->setCurrentText("HEAP");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(f.createText("old_kind").find("ENGINE=MEMORY") != std::string::npos);
  }

  void cancelledForeignKeyUnchecksTheBox() {
    DesignersFixture f({"CREATE TABLE customers (id INT PRIMARY KEY) ENGINE=InnoDB"});
    TfrmTable dialog(*f.session, *f.settings, DesignersFixture::kDatabase);
    dialog.show();
    enterColumn(&dialog, "cid", "int");
    lomarin::test::onNextModal<TformForeign>([](TformForeign*) {});
    box(&dialog, "chkforeing")->setChecked(true);
    QVERIFY(!box(&dialog, "chkforeing")->isChecked());
    QVERIFY(box(&dialog, "chkPk")->isEnabled());
    child<QPushButton>(&dialog, "spbuadd")->click();
    QCOMPARE(gridRow(&dialog, 0).at(8), QString());
  }
};

}  // namespace

LOMARIN_UI_TEST(TableDesignerTest)
#include "form_table_test.moc"
