#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <algorithm>

#include "connect/modal_helper.h"
#include "dataview_fixture.h"
#include "engine/connect/my_query.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_adv_filter_builder.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

std::string noEscape(std::string_view value) { return std::string(value); }

// Fills the condition fields and presses one of the compose buttons.
void addCondition(Tformadvfilterbuilder* b, const char* button, const QString& name, const QString& op,
                  const QString& type, const QString& value) {
  b->findChild<QComboBox*>("cboName")->setCurrentText(name);
  b->findChild<QComboBox*>("cboCondition")->setCurrentText(op);
  b->findChild<QComboBox*>("cboType")->setCurrentText(type);
  b->findChild<QLineEdit*>("edtValue")->setText(value);
  b->findChild<QPushButton*>(button)->click();
}

std::vector<int> sortedIds(std::vector<int> ids) {
  std::sort(ids.begin(), ids.end());
  return ids;
}

class FilterBuilderTest : public QObject {
  Q_OBJECT
 private slots:
  void composesSavesAndOpensTheFilterText() {
    Tformadvfilterbuilder builder({"order_date", "status"}, noEscape);
    builder.findChild<QComboBox*>("cboDateFormat")->setCurrentText("%Y-%m-%d");
    addCondition(&builder, "btnAdd", "order_date", "=", "Date", "2010-01-31");
    addCondition(&builder, "btnOr", "status", "<>", "String", "new");
    builder.findChild<QCheckBox*>("chkFormatTypes")->setChecked(false);
    QVERIFY(!builder.findChild<QComboBox*>("cboDateFormat")->isEnabled());
    addCondition(&builder, "btnAnd", "status", "=", "String", "note IS NULL");
    const QString expected =
        "DATE_FORMAT(order_date,'%Y-%m-%d')='2010-01-31' or status <> 'new' and note IS NULL";
    QCOMPARE(builder.filterText(), expected);
    test::renderPng(&builder, "filter_builder");

    QTemporaryDir dir;
    const QString file = dir.filePath("filter.txt");
    QVERIFY(builder.saveFile(file));
    builder.findChild<QPushButton*>("btnClear")->click();
    QCOMPARE(builder.filterText(), QString());
    QVERIFY(builder.openFile(file));
    QCOMPARE(builder.filterText(), expected);
  }

  void builtFilterGivesTheRowsOfTheSameHandWrittenWhere() {
    test::DataviewFixture f;
    f.settings->write(opt::UseLimit, false);
    TframeData* frame = f.open("products")->frameData();
    QTimer::singleShot(0, [] {
      Tformadvfilterbuilder* b = nullptr;
      QTRY_VERIFY((b = qobject_cast<Tformadvfilterbuilder*>(QApplication::activeModalWidget())) != nullptr);
      addCondition(b, "btnAdd", "price", ">", "Integer", "40");
      addCondition(b, "btnAnd", "category_id", "=", "Integer", "4");
      addCondition(b, "btnOr", "name", "LIKE", "String", "%it's%");
      addCondition(b, "btnOr", "weight_kg", "<", "Float", "0.5");
      b->findChild<QPushButton*>("btnOk")->click();
    });
    f.takeStatements();
    frame->AdvancedFilter();
    const std::string where = "price > 40 and category_id = 4 or name LIKE '%it\\'s%' or weight_kg < '0,5'";
    QCOMPARE(f.takeStatements().back(), "select * from `products`\n where  " + where);
    QCOMPARE(frame->findChild<QLineEdit*>("edtFilter")->text(), QString::fromStdString(where));

    frame->model()->fetchAll();
    std::vector<int> shown;
    for (int row = 0; row < frame->model()->rowCount(); ++row)
      shown.push_back(std::stoi(frame->model()->cell(row, 0).bytes));
    TMyQuery query(*f.session);
    query.SQL =
        "SELECT product_id FROM products WHERE price > 40 AND category_id = 4 OR name LIKE "
        "'%it''s%' OR weight_kg < 0";
    query.Open();
    std::vector<int> expected;
    while (query.Next()) expected.push_back(std::stoi(std::string(query.Value(0))));
    QVERIFY(!expected.empty());
    QCOMPARE(sortedIds(shown), sortedIds(expected));
  }
};

}  // namespace

LOMARIN_UI_TEST(FilterBuilderTest)
#include "filter_builder_test.moc"
