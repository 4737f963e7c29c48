#include <Qsci/qsciscintilla.h>

#include <QDir>
#include <QFrame>
#include <QLineEdit>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include "dataview_fixture.h"
#include "render_path.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

QStringList tabTexts(QTabWidget* tabs) {
  QStringList out;
  for (int i = 0; i < tabs->count(); ++i) out << tabs->tabText(i);
  return out;
}

bool sent(const std::vector<std::string>& statements, const std::string& prefix) {
  return std::any_of(statements.begin(), statements.end(),
                     [&](const std::string& s) { return s.starts_with(prefix); });
}

class TableWindowTest : public QObject {
  Q_OBJECT
 private slots:
  void tabsLoadWhenFirstShown() {
    test::DataviewFixture f;
    TformData* window = f.open("product_media");
    QTabWidget* tabs = window->tabs();
    QCOMPARE(tabTexts(tabs),
             (QStringList{"&Data", "&Columns", "F&oreign Keys", "&Triggers", "Partitions", "&Script"}));
    QVERIFY(!sent(f.statements, "DESC "));
    QCOMPARE(window->foreignKeys().Count(), size_t(1));

    f.takeStatements();
    tabs->setCurrentIndex(1);
    QCOMPARE(f.takeStatements(), (std::vector<std::string>{"DESC `product_media`"}));
    auto* columns = window->findChild<QTableWidget*>("grdColumns");
    QCOMPARE(columns->rowCount(), 7);
    QCOMPARE(columns->item(0, 0)->text(), QString("media_id"));
    QCOMPARE(columns->item(0, 3)->text(), QString("PRI"));
    QCOMPARE(columns->item(1, 3)->text(), QString("MUL"));
    tabs->setCurrentIndex(0);
    tabs->setCurrentIndex(1);
    QVERIFY(f.takeStatements().empty());

    tabs->setCurrentIndex(2);
    auto* keys = window->findChild<QTableWidget*>("grdForeignKeys");
    QCOMPARE(keys->rowCount(), 1);
    QCOMPARE(keys->item(0, 2)->text(), QString("products"));

    tabs->setCurrentIndex(3);
    QCOMPARE(f.takeStatements(),
             (std::vector<std::string>{"SHOW TRIGGERS FROM `lomarin_demo` WHERE `Table` = 'product_media'"}));
    tabs->setCurrentIndex(4);
    QVERIFY(sent(f.takeStatements(), "SELECT PARTITION_NAME"));
    tabs->setCurrentIndex(5);
    QCOMPARE(f.takeStatements(), (std::vector<std::string>{"SHOW CREATE TABLE `product_media`"}));
    auto* script = window->findChild<TframeecSQL*>("frameScript");
    QVERIFY(script->isReadOnly());
    QVERIFY(script->memo()->text().startsWith("CREATE TABLE `product_media` (\n  `media_id`"));
    QVERIFY(script->memo()->isVisible());
    QVERIFY(!script->tree()->isVisible());
    window->parentWidget()->showMaximized();
    QVERIFY(f.area.grab().save(lomarin::test::renderPath("dataview_script_tab.png")));

    // Another database's table is named with its database.
    TformData* other = openTableWindow(&f.area, *f.session, *f.settings, "mysql", "db", false);
    QCOMPARE(other->windowTitle(), QString("TABLE [ `MYSQL`.`DB` ]"));
    QCOMPARE(f.area.subWindowList().size(), 2);
  }

  void viewWindowHasNoPagingAndTableTabs() {
    test::DataviewFixture f;
    f.settings->write(opt::UseLimit, false);
    TformData* window = f.open("v_customer_revenue", true);
    QCOMPARE(window->windowTitle(), QString("VIEW [ `V_CUSTOMER_REVENUE` ]"));
    QCOMPARE(tabTexts(window->tabs()), (QStringList{"&Data", "&Columns", "&Script"}));
    QVERIFY(!window->frameData()->findChild<QFrame*>("cxgrbolimit")->isVisible());
    QVERIFY(window->frameData()->findChild<QLineEdit*>("edtFilter")->isVisible());
    QVERIFY(sent(f.statements, "select * from `v_customer_revenue`"));
    QVERIFY(!sent(f.statements, "Select count(*)"));
    QVERIFY(window->frameData()->model()->rowCount() > 0);
    window->tabs()->setCurrentIndex(2);
    QVERIFY(f.lastStatement() == "SHOW CREATE VIEW `v_customer_revenue`");
    QVERIFY(window->findChild<TframeecSQL*>("frameScript")
                ->memo()
                ->text()
                .contains("VIEW `v_customer_revenue` AS select"));
  }

  void refreshDataReloadsOnlyItsOwnTable() {
    test::DataviewFixture f;
    TformData* window = f.open("categories");
    f.takeStatements();
    window->RefreshData("lomarin_demo", "customers");
    QVERIFY(f.takeStatements().empty());
    window->RefreshData("lomarin_demo", "categories");
    QCOMPARE(f.takeStatements(), (std::vector<std::string>{"select * from `categories`\nLIMIT 0,100",
                                                           "SHOW COLUMNS FROM `lomarin_demo`.`categories`",
                                                           "SHOW KEYS FROM `lomarin_demo`.`categories`"}));
  }

  void rendersOrderItemsWithTheLimitBar() {
    test::DataviewFixture f;
    TformData* window = f.open("order_items");
    window->parentWidget()->showMaximized();
    QCOMPARE(window->frameData()->model()->rowCount(), 100);
    QCOMPARE(window->frameData()->Paging().LastPageStart(), int64_t(100000));
    QVERIFY(f.area.grab().save(lomarin::test::renderPath("dataview_order_items.png")));
    auto* pages = window->frameData()->findChild<QTabWidget*>("pgcData");
    pages->setCurrentIndex(1);
    QVERIFY(f.area.grab().save(lomarin::test::renderPath("dataview_order_items_form.png")));
    window->tabs()->setCurrentIndex(1);
    QVERIFY(f.area.grab().save(lomarin::test::renderPath("dataview_order_items_columns.png")));
  }
};

}  // namespace

LOMARIN_UI_TEST(TableWindowTest)
#include "table_window_test.moc"
