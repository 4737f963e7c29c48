#include <QAbstractItemView>
#include <QMdiArea>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <algorithm>

#include "../app/shell_test_support.h"
#include "dataview_fixture.h"
#include "test_server.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/foreign_key_box.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

using Statements = std::vector<std::string>;

// Scrolls the open list to its last row, once it has rows below the visible ones.
void scrollToEnd(TForeignKeyBox* box) {
  QScrollBar* bar = box->view()->verticalScrollBar();
  QTRY_VERIFY(bar->maximum() > bar->value());
  bar->setValue(bar->maximum());
}

class ForeignKeyValuesTest : public QObject {
  Q_OBJECT
 private slots:
  // The copy references the demo database, whose reload could not drop it while the copy stays.
  void cleanup() { test::sideExec("DROP TABLE IF EXISTS lomarin_test.orders_fk"); }

  // A copy of the demo orders whose customer_id references the demo customers, as the original does.
  void referencedValuesAreReadByPageAndTheChosenOneIsWritten() {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test.orders_fk");
    test::sideExec("CREATE TABLE lomarin_test.orders_fk LIKE lomarin_demo.orders");
    test::sideExec(
        "INSERT INTO lomarin_test.orders_fk SELECT * FROM lomarin_demo.orders WHERE order_id <= 20");
    test::sideExec(
        "ALTER TABLE lomarin_test.orders_fk ADD CONSTRAINT fk_orders_fk_customer FOREIGN KEY (customer_id) "
        "REFERENCES lomarin_demo.customers (customer_id)");
    test::DataviewFixture f("lomarin_test");
    TformData* window = f.open("orders_fk");
    f.area.resize(900, 500);
    window->showMaximized();
    QTableView* grid = window->frameData()->grid();
    TDataModel& model = *window->frameData()->model();

    // Other columns keep their editors by type.
    grid->edit(model.index(0, 5));
    QWidget* plain = grid->indexWidget(model.index(0, 5));
    QVERIFY(plain && !qobject_cast<TForeignKeyBox*>(plain));
    emit grid->itemDelegate()->closeEditor(plain);

    const QString orderId = model.data(model.index(0, 0), Qt::EditRole).toString();
    const QString stored = model.data(model.index(0, 1), Qt::EditRole).toString();
    f.takeStatements();
    grid->setCurrentIndex(model.index(0, 1));
    grid->edit(model.index(0, 1));
    auto* box = qobject_cast<TForeignKeyBox*>(grid->indexWidget(model.index(0, 1)));
    QVERIFY(box);
    QCOMPARE(f.takeStatements(), Statements{"select customer_id from lomarin_demo.customers\nLIMIT 0,100"});
    QCOMPARE(box->count(), 100);
    QCOMPARE(box->currentText(), stored);
    lomarin::test::render(*window, "TformData-foreign-key");

    box->showPopup();
    QVERIFY(f.takeStatements().empty());
    scrollToEnd(box);
    QCOMPARE(f.takeStatements(), Statements{"select customer_id from lomarin_demo.customers\nLIMIT 100,100"});
    QCOMPARE(box->count(), 200);
    scrollToEnd(box);
    QCOMPARE(f.takeStatements(), Statements{"select customer_id from lomarin_demo.customers\nLIMIT 200,100"});
    QCOMPARE(box->count(), 250);
    QVERIFY(box->atEnd());
    scrollToEnd(box);
    QVERIFY(f.takeStatements().empty());
    lomarin::test::render(*box->view()->window(), "TForeignKeyBox-popup");

    // Every customer once, as the server holds them.
    std::vector<int> ids;
    for (int i = 0; i < box->count(); ++i) ids.push_back(box->itemText(i).toInt());
    std::sort(ids.begin(), ids.end());
    QString joined;
    for (int id : ids) joined += (joined.isEmpty() ? "" : ",") + QString::number(id);
    QCOMPARE(
        QString::fromStdString(test::scalar(
            *f.session, "select group_concat(customer_id order by customer_id) from lomarin_demo.customers")),
        joined);
    f.takeStatements();

    const int chosen = box->findText(stored == "7" ? "8" : "7");
    QVERIFY(chosen >= 0);
    box->setCurrentIndex(chosen);
    const std::string chosenText = box->itemText(chosen).toStdString();
    box->hidePopup();
    emit grid->itemDelegate()->commitData(box);
    emit grid->itemDelegate()->closeEditor(box);
    grid->setCurrentIndex(model.index(1, 0));
    QCOMPARE(f.takeStatements(), Statements{"UPDATE `lomarin_test`.`orders_fk` SET `customer_id` = " +
                                            chosenText + " WHERE `order_id` = " + orderId.toStdString()});
    QCOMPARE(test::scalar(*f.session,
                          "select customer_id from orders_fk where order_id = " + orderId.toStdString()),
             chosenText);
  }
};

}  // namespace

LOMARIN_UI_TEST(ForeignKeyValuesTest)
#include "foreign_key_values_test.moc"
