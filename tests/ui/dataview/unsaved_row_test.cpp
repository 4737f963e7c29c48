#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "dataview_fixture.h"
#include "render_path.h"
#include "test_server.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

class UnsavedRowTest : public QObject {
  Q_OBJECT
 private slots:
  void refusedEditIsMarkedRevertableAndAskedAbout() {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test.short_names");
    test::sideExec("CREATE TABLE lomarin_test.short_names (id INT PRIMARY KEY, name VARCHAR(5) NOT NULL)");
    test::sideExec(
        "INSERT INTO lomarin_test.short_names WITH RECURSIVE s(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM s "
        "WHERE n < 150) SELECT n, concat('n', n) FROM s");
    test::DataviewFixture f("lomarin_test");
    f.area.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&f.area));
    TformData* window = f.open("short_names");
    TframeData* frame = window->frameData();
    TDataModel* model = frame->model();
    QTableView* view = frame->grid();
    auto text = [model](int row) { return model->data(model->index(row, 1), Qt::EditRole).toString(); };
    auto stored = [&f](int id) {
      return test::scalar(*f.session, "select name from short_names where id = " + std::to_string(id));
    };

    view->setCurrentIndex(model->index(0, 1));
    QVERIFY(!model->setData(model->index(0, 1), "far too long", Qt::EditRole));
    QCOMPARE(f.serverErrors.size(), size_t(1));
    const QString refusal = QString::fromStdString(f.serverErrors[0]);
    QVERIFY(refusal.startsWith("Data too long for column 'name'"));
    // Kept for a retry, and marked as not saved.
    QCOMPARE(text(0), QString("far too long"));
    QVERIFY(model->isPendingRow(0));
    QVERIFY(!model->headerData(0, Qt::Vertical, Qt::DecorationRole).isNull());
    QCOMPARE(model->headerData(0, Qt::Vertical, Qt::ToolTipRole).toString(), "Not saved: " + refusal);
    QVERIFY(model->data(model->index(0, 0), Qt::BackgroundRole).isValid());
    QVERIFY(!model->data(model->index(1, 0), Qt::BackgroundRole).isValid());
    QVERIFY(!model->headerData(1, Qt::Vertical, Qt::DecorationRole).isValid());
    window->parentWidget()->showMaximized();
    QVERIFY(f.area.grab().save(lomarin::test::renderPath("dataview_unsaved_row.png")));

    // Leaving the row asks; No stays on it with the change.
    QString question;
    test::answerNextBox(QMessageBox::No, &question);
    view->setCurrentIndex(model->index(2, 1));
    QCOMPARE(question,
             "Row 1 was not saved: " + refusal + "\n\nDiscard the change and show the stored values?");
    QCOMPARE(view->currentIndex().row(), 0);
    QCOMPARE(text(0), QString("far too long"));

    // Escape restores what the server holds.
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(view));
    QTest::keyClick(view, Qt::Key_Escape);
    QCOMPARE(text(0), QString("n1"));
    QVERIFY(!model->isPendingRow(0));
    QVERIFY(!model->headerData(0, Qt::Vertical, Qt::DecorationRole).isValid());
    view->setCurrentIndex(model->index(2, 1));
    QCOMPARE(view->currentIndex().row(), 2);

    // Paging asks too: No keeps the page and the change, Yes drops the change and pages on.
    QVERIFY(!model->setData(model->index(2, 1), "also too long", Qt::EditRole));
    f.takeStatements();
    auto* next = frame->findChild<QToolButton*>("spright");
    test::answerNextBox(QMessageBox::No, &question);
    next->click();
    QVERIFY(question.startsWith("Row 3 was not saved: Data too long"));
    QVERIFY(f.takeStatements().empty());
    QCOMPARE(text(2), QString("also too long"));
    QCOMPARE(frame->Paging().PageEnd(), int64_t(100));
    test::answerNextBox(QMessageBox::Yes, &question);
    next->click();
    QCOMPARE(f.takeStatements().front(), std::string("select * from `short_names`\nLIMIT 100,100"));
    QCOMPARE(model->rowCount(), 50);
    QCOMPARE(stored(1), std::string("n1"));
    QCOMPARE(stored(3), std::string("n3"));
  }
};

}  // namespace

LOMARIN_UI_TEST(UnsavedRowTest)
#include "unsaved_row_test.moc"
