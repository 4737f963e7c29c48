#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMessageBox>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include "dataview_fixture.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

class FrameCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void loadingEverythingAsksFirst() {
    test::DataviewFixture f;
    f.settings->write(opt::UseLimit, false);
    TframeData* frame = f.open("order_items")->frameData();
    QCOMPARE(frame->model()->rowCount(), 1000);
    QApplication::clipboard()->setText("before");
    QString warning;
    test::answerNextBox(QMessageBox::Cancel, &warning);
    frame->CopyGrid();
    QCOMPARE(warning,
             QString("All table records will be loaded in memory, this operation may \r\ntake some time"));
    QCOMPARE(QApplication::clipboard()->text(), QString("before"));
    QCOMPARE(frame->model()->rowCount(), 1000);

    test::answerNextBox(QMessageBox::Ok, &warning);
    frame->LoadAllRecords();
    QCOMPARE(frame->model()->rowCount(), 100000);

    QString message;
    test::answerNextBox(QMessageBox::Ok, &message);
    frame->ShowRecordCount();
    QCOMPARE(message, QString("Records for table `order_items` : 100000"));
  }

  void copiesCellsAndRowsAndExportsTheStatement() {
    test::DataviewFixture f;
    TframeData* frame = f.open("categories")->frameData();
    frame->grid()->setCurrentIndex(frame->model()->index(3, 2));
    frame->CopyCell();
    QCOMPARE(QApplication::clipboard()->text(), QString("Coffee & Tea"));
    frame->grid()->selectionModel()->select(frame->model()->index(0, 0), QItemSelectionModel::Select);
    frame->CopySelectedRows();
    QCOMPARE(QApplication::clipboard()->text(),
             QString("1\t\tFood\tGroceries and delicatessen\n4\t1\tCoffee & Tea\t"
                     "Beans, leaves and capsules"));

    const QString file = f.folder.filePath("categories.csv");
    QVERIFY(frame->ExportTo(dataview::TExportFormat::Csv, file));
    QFile csv(file);
    QVERIFY(csv.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = csv.readAll().split('\n');
    QCOMPARE(lines.first(), QByteArray("category_id,parent_id,name,description\r"));
    QCOMPARE(lines[4], QByteArray("4,1,Coffee & Tea,\"Beans, leaves and capsules\"\r"));
  }
};

}  // namespace

LOMARIN_UI_TEST(FrameCommandsTest)
#include "frame_commands_test.moc"
