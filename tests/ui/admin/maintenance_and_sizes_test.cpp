// The table maintenance dialog and the size windows against the sandbox server.
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>
#include <map>

#include "admin_fixture.h"
#include "find_child.h"
#include "test_server.h"
#include "ui/admin/form_database_sizes.h"
#include "ui/admin/form_optimizing_tables.h"
#include "ui/admin/form_table_status.h"
#include "ui_test_registry.h"

namespace lomarin::test {

using ui::TfrmOptimizingTables;

namespace {

QStringList column(QTreeWidget* list, int column) {
  QStringList texts;
  for (int i = 0; i < list->topLevelItemCount(); ++i) texts << list->topLevelItem(i)->text(column);
  return texts;
}

void checkOnly(QListWidget* tables, const QString& name) {
  for (int i = 0; i < tables->count(); ++i)
    tables->item(i)->setCheckState(tables->item(i)->text() == name ? Qt::Checked : Qt::Unchecked);
}

// What the server answers first for a statement, as "type : text".
std::string firstAnswer(const std::string& sql) {
  const auto rows = sideRows(sql);
  return rows.empty() ? std::string() : rows[0].at(2) + " : " + rows[0].at(3);
}

}  // namespace

class MaintenanceAndSizesTest : public QObject {
  Q_OBJECT

 private slots:
  void dialogListsTablesAndSendsNothingWithoutAChoice() {
    AdminFixture f;
    TfrmOptimizingTables dialog(*f.session, f.reporter());
    QCOMPARE(dialog.windowTitle(), QString("Optimize tables"));
    auto* db = child<QComboBox>(dialog, "cobodb");
    auto* tables = child<QListWidget>(dialog, "lstTables");
    QCOMPARE(db->currentText(), QString("lomarin_demo"));
    QVERIFY(tables->count() >= 8);
    for (int i = 0; i < tables->count(); ++i) QCOMPARE(tables->item(i)->checkState(), Qt::Checked);
    QVERIFY(child<QRadioButton>(dialog, "rbAnalyze")->isChecked());
    // The type boxes only for Check and Repair.
    const std::pair<const char*, bool> typed[] = {
        {"rbCheck", true}, {"rbOptimize", false}, {"rbRepair", true}, {"rbAnalyze", false}};
    for (const auto& [name, enabled] : typed) {
      child<QRadioButton>(dialog, name)->click();
      QCOMPARE(child<QRadioButton>(dialog, "rbQuick")->isEnabled(), enabled);
      QCOMPARE(child<QRadioButton>(dialog, "rbExtended")->isEnabled(), enabled);
    }

    child<QCheckBox>(dialog, "chkCheckAll")->click();
    for (int i = 0; i < tables->count(); ++i) QCOMPARE(tables->item(i)->checkState(), Qt::Unchecked);
    f.takeStatements();
    child<QPushButton>(dialog, "btnOk")->click();
    QVERIFY(f.takeStatements().empty());
    QCOMPARE(child<QTreeWidget>(dialog, "lvResult")->topLevelItemCount(), 0);

    // Another database lists its own tables, checked again.
    db->setCurrentText(AdminFixture::kScratch);
    QCOMPARE(tables->count(), 1);
    QCOMPARE(tables->item(0)->checkState(), Qt::Checked);
    QVERIFY(child<QCheckBox>(dialog, "chkCheckAll")->isChecked());
  }

  void everyOperationAndTypeListsTheServersAnswerPerTable() {
    AdminFixture f;
    TfrmOptimizingTables dialog(*f.session, f.reporter());
    dialog.show();
    auto* tables = child<QListWidget>(dialog, "lstTables");
    auto* results = child<QTreeWidget>(dialog, "lvResult");
    auto* progress = child<QProgressBar>(dialog, "ProgressBar");
    struct Case {
      const char* operation;
      const char* type;
      const char* table;
      std::string sql;
    };
    const Case cases[] = {
        {"rbAnalyze", "rbExtended", "categories", "analyze table `categories`"},
        {"rbCheck", "rbQuick", "categories", "check table `categories` Quick"},
        {"rbCheck", "rbExtended", "products", "check table `products` Extended"},
        {"rbOptimize", "rbQuick", "raw_import", "optimize table `raw_import`"},
        {"rbRepair", "rbQuick", "categories", "repair table `categories` Quick"},
        {"rbRepair", "rbExtended", "raw_import", "repair table `raw_import` Extended"},
    };
    for (const Case& c : cases) {
      child<QRadioButton>(dialog, c.operation)->click();
      child<QRadioButton>(dialog, c.type)->setChecked(true);
      checkOnly(tables, c.table);
      f.takeStatements();
      child<QPushButton>(dialog, "btnOk")->click();
      QCOMPARE(f.takeStatements(), std::vector<std::string>{c.sql});
      QCOMPARE(column(results, 0), QStringList{c.table});
      QCOMPARE(
          column(results, 1).value(0).toStdString(),
          firstAnswer(c.sql.substr(0, c.sql.find('`')) + "lomarin_demo." + c.sql.substr(c.sql.find('`'))));
      QCOMPARE(progress->maximum(), 1);
      QCOMPARE(progress->value(), 1);
      QCOMPARE(progress->format(), QString(c.table));
    }

    // Two tables: a row each, in list order.
    checkOnly(tables, "categories");
    for (int i = 0; i < tables->count(); ++i)
      if (tables->item(i)->text() == "products") tables->item(i)->setCheckState(Qt::Checked);
    child<QRadioButton>(dialog, "rbCheck")->click();
    child<QPushButton>(dialog, "btnOk")->click();
    QCOMPARE(column(results, 0), QStringList({"categories", "products"}));
    QCOMPARE(column(results, 1), QStringList({"status : OK", "status : OK"}));
    QCOMPARE(progress->value(), 2);
    renderPng(dialog, "admin_maintenance");
    QVERIFY(f.shown.isEmpty());
  }

  void aTableOfAnotherDatabaseCarriesItsPrefix() {
    AdminFixture f;
    TfrmOptimizingTables dialog(*f.session, f.reporter());
    child<QComboBox>(dialog, "cobodb")->setCurrentText(AdminFixture::kScratch);
    child<QRadioButton>(dialog, "rbCheck")->click();
    f.takeStatements();
    child<QPushButton>(dialog, "btnOk")->click();
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"check table admin_ui.`t1` Quick"});
    QCOMPARE(column(child<QTreeWidget>(dialog, "lvResult"), 1), QStringList{"status : OK"});
  }

  void databaseSizesEqualInformationSchemaByTheSameRule() {
    AdminFixture f;
    ui::TformDataBaseSizes form(*f.session, f.reporter());
    QCOMPARE(form.windowTitle(), QString("Database status"));
    QVERIFY(form.Refresh());
    auto* list = child<QTreeWidget>(form, "lvDatabases");
    std::map<QString, QStringList> shownRows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
      QTreeWidgetItem* item = list->topLevelItem(i);
      shownRows[item->text(0)] = {item->text(1), item->text(2), item->text(3)};
    }
    const auto expected = sideRows(
        "SELECT TABLE_SCHEMA, COUNT(*), IFNULL(SUM(TABLE_ROWS), 0), "
        "IFNULL(SUM((DATA_LENGTH >> 10) + (INDEX_LENGTH >> 10)), 0) FROM information_schema.TABLES "
        "WHERE TABLE_SCHEMA IN ('lomarin_demo', 'mysql', 'admin_ui') GROUP BY TABLE_SCHEMA");
    QCOMPARE(expected.size(), size_t(3));
    for (const auto& row : expected) {
      const QString name = QString::fromStdString(row[0]);
      QVERIFY2(shownRows.count(name), qPrintable(name));
      QCOMPARE(shownRows[name], QStringList({QString::fromStdString(row[1]), QString::fromStdString(row[2]),
                                             QString::fromStdString(row[3]) + " KB"}));
    }
    QCOMPARE(int(shownRows.size()), int(sideRows("Show databases ").size()));
    form.resize(900, 640);
    renderPng(form, "admin_database_sizes");
  }

  void tableStatusListsEachTableWithTotals() {
    AdminFixture f;
    ui::TformTableStatus form(*f.session, f.reporter(), "lomarin_demo");
    QCOMPARE(form.windowTitle(), QString("Table status from lomarin_demo"));
    f.takeStatements();
    QVERIFY(form.Refresh());
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"show table status  from `lomarin_demo`"});
    auto* list = child<QTreeWidget>(form, "lvTables");
    const auto expected = sideRows(
        "SELECT TABLE_NAME, IFNULL((DATA_LENGTH >> 10) + (INDEX_LENGTH >> 10), 0) FROM "
        "information_schema.TABLES "
        "WHERE TABLE_SCHEMA = 'lomarin_demo'");
    std::map<std::string, std::string> shownSizes;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
      shownSizes[list->topLevelItem(i)->text(0).toStdString()] = list->topLevelItem(i)->text(5).toStdString();
    QCOMPARE(shownSizes.size(), expected.size());
    unsigned long long total = 0;
    for (const auto& row : expected) {
      QCOMPARE(shownSizes[row[0]], row[1] + " KB");
      total += std::stoull(row[1]);
    }
    QVERIFY(child<QLabel>(form, "lblTotals")->text().endsWith(QString("Size: %1 KB").arg(total)));
    QVERIFY(child<QLabel>(form, "lblTotals")->text().startsWith(QString("Tables: %1 ").arg(expected.size())));
    form.resize(900, 640);
    renderPng(form, "admin_table_status");
  }
};

LOMARIN_UI_TEST(MaintenanceAndSizesTest)

}  // namespace lomarin::test

#include "maintenance_and_sizes_test.moc"
