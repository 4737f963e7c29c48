#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <algorithm>

#include "dataview_fixture.h"
#include "render_path.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

using Statements = std::vector<std::string>;

struct Bar {
  TframeData* frame;
  QToolButton* button(const char* name) const { return frame->findChild<QToolButton*>(name); }
  // Hint and enabled state of first, previous, next and last, as the user sees them.
  QStringList state() const {
    QStringList out;
    for (const char* name : {"spleftall", "spleft", "spright", "sprightall"})
      out << button(name)->toolTip() + (button(name)->isEnabled() ? " on" : " off");
    return out;
  }
};

class TablePagingTest : public QObject {
  Q_OBJECT
 private slots:
  void pagesThroughA250RowTable() {
    test::DataviewFixture f;
    TformData* window = f.open("customers");
    TframeData* frame = window->frameData();
    QCOMPARE(window->windowTitle(), QString("TABLE [ `CUSTOMERS` ]"));
    QCOMPARE(
        f.takeStatements(),
        (Statements{
            "show keys FROM `customers`",
            "SELECT * \nFROM information_schema.KEY_COLUMN_USAGE \n WHERE TABLE_SCHEMA ='lomarin_demo' AND "
            "TABLE_NAME ='customers' AND \n CONSTRAINT_NAME <>'PRIMARY'\n AND REFERENCED_TABLE_NAME is not "
            "null",
            "select * from `customers`\nLIMIT 0,100", "SHOW COLUMNS FROM `lomarin_demo`.`customers`",
            "SHOW KEYS FROM `lomarin_demo`.`customers`", "Select count(*)  From `customers`"}));
    QCOMPARE(frame->model()->rowCount(), 100);
    QCOMPARE(frame->Paging().LastPageStart(), int64_t(200));
    QCOMPARE(frame->recordText(), QString("Record  1 / 100"));
    QCOMPARE(frame->model()->keyColumn(), QString("customer_id"));
    Bar bar{frame};
    QCOMPARE(bar.state(),
             (QStringList{"LIMIT 0,100 off", "LIMIT 0,100 off", "LIMIT 100,100 on", "LIMIT 200,100 on"}));

    bar.button("spright")->click();
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\nLIMIT 100,100"));
    QCOMPARE(bar.state(),
             (QStringList{"LIMIT 0,100 on", "LIMIT 0,100 on", "LIMIT 200,100 on", "LIMIT 200,100 on"}));

    bar.button("sprightall")->click();
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\nLIMIT 200,100"));
    QCOMPARE(frame->model()->rowCount(), 50);
    QCOMPARE(frame->Paging().PageEnd(), int64_t(300));
    QCOMPARE(bar.state(),
             (QStringList{"LIMIT 0,100 on", "LIMIT 0,100 on", "LIMIT 300,100 off", "LIMIT 200,100 off"}));

    bar.button("spleft")->click();
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\nLIMIT 0,100"));
    QCOMPARE(bar.state(),
             (QStringList{"LIMIT 0,100 on", "LIMIT 0,100 on", "LIMIT 200,100 on", "LIMIT 200,100 on"}));

    bar.button("spleftall")->click();
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\nLIMIT 0,100"));
    QCOMPARE(bar.state(),
             (QStringList{"LIMIT 0,100 off", "LIMIT 0,100 off", "LIMIT 100,100 on", "LIMIT 200,100 on"}));

    // The same name opens no second window.
    QCOMPARE(f.open("customers"), window);
    QCOMPARE(f.area.subWindowList().size(), 1);
  }

  void exactMultipleShowsAnEmptyLastPage() {
    test::DataviewFixture f;
    TframeData* frame = f.open("products")->frameData();
    Bar bar{frame};
    QCOMPARE(frame->Paging().LastPageStart(), int64_t(200));
    bar.button("sprightall")->click();
    QCOMPARE(f.lastStatement(), std::string("select * from `products`\nLIMIT 200,100"));
    QCOMPARE(frame->model()->rowCount(), 0);
    QCOMPARE(frame->recordText(), QString("Record ???"));
  }

  void filterAndSortShapeTheStatement() {
    test::DataviewFixture f;
    TframeData* frame = f.open("customers")->frameData();
    auto* filter = frame->findChild<QLineEdit*>("edtFilter");
    filter->setText("customer_id > 240");
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(f.lastStatement(),
             std::string("select * from `customers`\n where  customer_id > 240\nLIMIT 0,100"));
    QCOMPARE(frame->model()->rowCount(), 10);

    filter->clear();
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\n\nLIMIT 0,100"));
    QCOMPARE(frame->model()->rowCount(), 100);

    QHeaderView* header = frame->grid()->horizontalHeader();
    const int idColumn = 0;
    emit header->sectionClicked(idColumn);
    QCOMPARE(f.lastStatement(),
             std::string("select * from `customers`\n\norder by `customer_id` ASC\nLIMIT 0,100"));
    emit header->sectionClicked(idColumn);
    QCOMPARE(f.lastStatement(),
             std::string("select * from `customers`\n\norder by `customer_id` DESC\nLIMIT 0,100"));
    QCOMPARE(frame->model()->data(frame->model()->index(0, idColumn), Qt::DisplayRole).toString(),
             QString("250"));

    // The filter keeps the sort and the page.
    filter->setText("customer_id < 5");
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(
        f.lastStatement(),
        std::string(
            "select * from `customers`\n where  customer_id < 5\norder by `customer_id` DESC\nLIMIT 0,100"));
    QCOMPARE(frame->model()->rowCount(), 4);

    // A refused filter keeps the previous rows and state.
    f.takeStatements();
    QVERIFY(!frame->ApplyFilter("no_such_column = 1"));
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QCOMPARE(frame->model()->rowCount(), 4);
    QCOMPARE(frame->WhereLine, std::string(" where  customer_id < 5"));
  }

  void clearingTheFilterBoxShowsEveryRowAgain() {
    test::DataviewFixture f;
    TframeData* frame = f.open("customers")->frameData();
    auto* filter = frame->findChild<QLineEdit*>("edtFilter");
    filter->setText("customer_id > 240");
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(frame->model()->rowCount(), 10);
    // A refused condition leaves the filter in force.
    filter->setText("no_such_column = 1");
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(frame->WhereLine, std::string(" where  customer_id > 240"));
    f.takeStatements();

    // The box's clear button (x).
    auto clickClear = [filter] { QTest::mouseClick(filter->findChild<QToolButton*>(), Qt::LeftButton); };
    clickClear();
    QTRY_COMPARE(frame->WhereLine, std::string());
    QCOMPARE(f.takeStatements(), (Statements{"select * from `customers`\n\nLIMIT 0,100"}));
    QCOMPARE(frame->model()->rowCount(), 100);
    QVERIFY(frame->Refresh());
    QCOMPARE(f.takeStatements().front(), std::string("select * from `customers`\n\nLIMIT 0,100"));

    // A filter chosen from a column's value list shows in the box, so it can be cleared there.
    QVERIFY(frame->FilterOnValue(0, "7"));
    QCOMPARE(filter->text(), QString("`customer_id` = 7"));
    clickClear();
    QTRY_COMPARE(f.lastStatement(), std::string("select * from `customers`\n\nLIMIT 0,100"));
  }

  void filterValueListsFilterOnOneValue() {
    test::DataviewFixture f;
    TframeData* frame = f.open("categories")->frameData();
    f.takeStatements();
    const auto parents = frame->FilterValues(1, 50);
    QCOMPARE(f.takeStatements(), (Statements{"Select DISTINCT `parent_id` From `categories`"}));
    const auto nullEntry =
        std::find_if(parents.begin(), parents.end(), [](const auto& v) { return v.second == "NULL"; });
    QVERIFY(nullEntry != parents.end());
    QCOMPARE(nullEntry->first, QString("(NULL)"));
    QVERIFY(frame->FilterOnValue(1, "NULL"));
    QCOMPARE(f.lastStatement(),
             std::string("select * from `categories`\n where  `parent_id` IS NULL\nLIMIT 0,100"));
    const int roots = frame->model()->rowCount();
    QVERIFY(roots > 0);

    const auto names = frame->FilterValues(2, 50);
    const auto coffee =
        std::find_if(names.begin(), names.end(), [](const auto& v) { return v.first == "Coffee & Tea"; });
    QVERIFY(coffee != names.end());
    QVERIFY(frame->FilterOnValue(2, coffee->second));
    QCOMPARE(f.lastStatement(),
             std::string("select * from `categories`\n where  `name` = 'Coffee & Tea'\nLIMIT 0,100"));
    QCOMPARE(frame->model()->rowCount(), 1);
    // No value list for memo columns.
    QVERIFY(frame->FilterValues(3, 50).empty());
  }

  void zeroPageSizeLeavesPagingOff() {
    test::DataviewFixture f;
    f.settings->write(opt::LimitSize, "0");
    TformData window(*f.session, *f.settings, "lomarin_demo", "customers", false);
    QStringList shown;
    window.frameData()->ErrorDisplay = [&shown](const QString& message) { shown << message; };
    window.show();
    QCOMPARE(shown, QStringList{"Division by zero"});
    Bar bar{window.frameData()};
    for (const char* name : {"spleftall", "spleft", "spright", "sprightall"})
      QVERIFY2(!bar.button(name)->isEnabled(), name);
  }

  void activeBoxAndLimitSettingsRestartPaging() {
    test::DataviewFixture f;
    TframeData* frame = f.open("customers")->frameData();
    Bar bar{frame};
    auto* active = frame->findChild<QCheckBox*>("cxchkActive");
    active->setChecked(false);
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\n"));
    QCOMPARE(frame->model()->rowCount(), 250);
    for (const char* name : {"spleftall", "spleft", "spright", "sprightall", "spLimitSettings"})
      QVERIFY2(!bar.button(name)->isEnabled(), name);

    // The emptied LIMIT line stays as the filter's line; the clause comes back after it.
    active->setChecked(true);
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\n\nLIMIT 0,100"));
    QVERIFY(bar.button("spLimitSettings")->isEnabled());

    QTimer::singleShot(0, [] {
      QDialog* dialog = nullptr;
      QTRY_VERIFY((dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) != nullptr);
      QCOMPARE(dialog->windowTitle(), QString("Limit settings"));
      dialog->grab().save(lomarin::test::renderPath("dataview_limit_settings.png"));
      dialog->findChild<QSpinBox*>("speLimit")->setValue(60);
      dialog->findChild<QSpinBox*>("speIncrement")->setValue(30);
      dialog->findChild<QAbstractButton*>("btnOk")->click();
    });
    bar.button("spLimitSettings")->click();
    QCOMPARE(f.settings->read(opt::LimitSize), std::string("60"));
    QCOMPARE(f.settings->read(opt::LimitIncrementValue), std::string("30"));
    QCOMPARE(f.lastStatement(), std::string("select * from `customers`\n\nLIMIT 0,60"));
    QCOMPARE(frame->Paging().LastPageStart(), int64_t(240));
    QCOMPARE(bar.state(),
             (QStringList{"LIMIT 0,60 off", "LIMIT 0,60 off", "LIMIT 60,60 on", "LIMIT 240,60 on"}));
  }
};

}  // namespace

LOMARIN_UI_TEST(TablePagingTest)
#include "table_paging_test.moc"
