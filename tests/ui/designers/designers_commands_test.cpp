#include "ui/designers/designers_commands.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/designers/form_alter_table.h"
#include "ui/designers/form_constraint_manager.h"
#include "ui/designers/form_index_manager.h"
#include "ui/designers/form_table.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using lomarin::ui::TformConstraintManager;
using lomarin::ui::TformIndexManager;
using lomarin::ui::Tformppal;
using lomarin::ui::TfrmAlterTable;
using lomarin::ui::TfrmTable;

QTreeWidgetItem* childNamed(QTreeWidgetItem* parent, const QString& text) {
  for (int i = 0; parent && i < parent->childCount(); ++i)
    if (parent->child(i)->text(0) == text) return parent->child(i);
  return nullptr;
}

QStringList childTexts(QTreeWidgetItem* parent) {
  QStringList texts;
  for (int i = 0; parent && i < parent->childCount(); ++i) texts << parent->child(i)->text(0);
  return texts;
}

constexpr const char* kCommands[] = {"actNewTable",    "actNewCclumn",   "actRename",    "actCloneObject",
                                     "actCloneObj",    "actIndex",       "actDropIndex", "actConstraint",
                                     "actAddDatabase", "actDropDatabase"};

class DesignersCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void commandsNeedTheConnectionAndRefreshTheTreeAfterSuccess() {
    DesignersFixture f({"CREATE TABLE t (id INT PRIMARY KEY)"});
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installDesignersCommands(window);
    for (const char* name : kCommands) QVERIFY2(!window.actions().action(name)->isEnabled(), name);
    window.MySqlSession.Settings = lomarin::test::serverSettings();
    window.MySqlSession.Settings.Database = DesignersFixture::kDatabase;
    window.MySqlSession.Connect();
    for (const char* name : kCommands) QVERIFY2(window.actions().action(name)->isEnabled(), name);

    QTreeWidget* tree = window.explorer()->tree();
    QTreeWidgetItem* database = childNamed(tree->topLevelItem(0), DesignersFixture::kDatabase);
    QVERIFY(database);
    childNamed(database, "Tables")->setExpanded(true);
    QCOMPARE(childTexts(childNamed(database, "Tables")), QStringList{"t"});
    tree->setCurrentItem(childNamed(database, "Tables"));

    lomarin::test::onNextModal<TfrmTable>([](TfrmTable* dialog) {
      QCOMPARE(dialog->database(), QString(DesignersFixture::kDatabase));
      child<QLineEdit>(dialog, "edtName")->setText("made");
      child<QLineEdit>(dialog, "edName")->setText("id");
      child<QComboBox>(dialog, "coboDataType")->setCurrentText("int");
      child<QPushButton>(dialog, "spbuadd")->click();
      child<QPushButton>(dialog, "btnOk")->click();
    });
    window.actions().action("actNewTable")->trigger();
    database = childNamed(tree->topLevelItem(0), DesignersFixture::kDatabase);
    QTreeWidgetItem* tables = childNamed(database, "Tables");
    tables->setExpanded(true);
    QCOMPARE(childTexts(tables), QStringList({"made", "t"}));

    tree->setCurrentItem(childNamed(tables, "t"));
    lomarin::test::onNextModal<TfrmAlterTable>([](TfrmAlterTable* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("Alter Table `t`"));
      child<QLineEdit>(dialog, "edName")->setText("added");
      child<QComboBox>(dialog, "coboDataType")->setCurrentText("int");
      child<QPushButton>(dialog, "btnOk")->click();
    });
    window.actions().action("actNewCclumn")->trigger();
    QVERIFY(f.createText("t").find("`added` int(11)") != std::string::npos);

    // The index manager opens on the selected table; once it closes the table's index folder shows the new
    // one.
    database = childNamed(tree->topLevelItem(0), DesignersFixture::kDatabase);
    tables = childNamed(database, "Tables");
    tables->setExpanded(true);
    tree->setCurrentItem(childNamed(tables, "t"));
    lomarin::test::onNextModal<TformIndexManager>([](TformIndexManager* dialog) {
      QCOMPARE(dialog->table(), std::string("t"));
      child<QLineEdit>(dialog, "edtIndexName")->setText("ix_added");
      auto* columns = child<QTreeWidget>(dialog, "grdColumns");
      columns->topLevelItem(1)->setCheckState(0, Qt::Checked);
      lomarin::test::onNextModal<QMessageBox>([](QMessageBox*) {});
      child<QPushButton>(dialog, "btnOk")->click();
    });
    window.actions().action("actIndex")->trigger();
    database = childNamed(tree->topLevelItem(0), DesignersFixture::kDatabase);
    tables = childNamed(database, "Tables");
    tables->setExpanded(true);
    QTreeWidgetItem* indexes = childNamed(childNamed(tables, "t"), "Index");
    QVERIFY(indexes);
    indexes->setExpanded(true);
    QCOMPARE(childTexts(indexes), QStringList({"PRIMARY", "ix_added"}));

    tree->setCurrentItem(indexes);

    lomarin::test::onNextModal<TformConstraintManager>([](TformConstraintManager* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("Constraint Manager"));
      QCOMPARE(dialog->table(), std::string("t"));
    });
    window.actions().action("actConstraint")->trigger();
    window.MySqlSession.Disconnect();
  }
};

}  // namespace

LOMARIN_UI_TEST(DesignersCommandsTest)
#include "designers_commands_test.moc"
