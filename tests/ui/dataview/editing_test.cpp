#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDateTimeEdit>
#include <QFile>
#include <QMessageBox>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include "dataview_fixture.h"
#include "test_server.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

// The grid of a frame showing a statement, with the errors it shows collected.
struct Grid {
  explicit Grid(test::DataviewFixture& f) : frame(*f.session, *f.settings) {
    frame.ErrorDisplay = [this](const QString& message) { shown << message; };
    frame.resize(800, 400);
  }
  TDataModel& model() { return *frame.model(); }
  bool edit(int row, int column, const QString& text) {
    return model().setData(model().index(row, column), text, Qt::EditRole);
  }
  QString text(int row, int column) {
    return model().data(model().index(row, column), Qt::EditRole).toString();
  }

  TframeData frame;
  QStringList shown;
};

class EditingTest : public QObject {
  Q_OBJECT
 private slots:
  void cellEditsReachExactlyThatRow() {
    test::copyDemoTable("product_media");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(grid.frame.OpenSQL("select * from product_media order by media_id"));
    QVERIFY(grid.frame.statusText().isEmpty());
    f.takeStatements();

    QVERIFY(grid.edit(3, 3, "Émoji 🎉 o'k"));
    QCOMPARE(f.takeStatements(), (std::vector<std::string>{
                                     "UPDATE `lomarin_test`.`product_media` SET `caption` = 'Émoji 🎉 o\\'k' "
                                     "WHERE `media_id` = 4"}));
    // The BLOB column is edited as hex digits and written as bytes.
    QCOMPARE(grid.text(2, 6), QString("00275C220A0D1AFF0027"));
    QVERIFY(grid.edit(2, 6, "00ff5c27"));
    QCOMPARE(test::scalar(*f.session, "select caption from product_media where media_id = 4"),
             std::string("Émoji 🎉 o'k"));
    QCOMPARE(test::scalar(*f.session, "select hex(content) from product_media where media_id = 3"),
             std::string("00FF5C27"));
    QCOMPARE(test::scalar(
                 *f.session,
                 "select count(*) from product_media p join lomarin_demo.product_media d using (media_id) "
                 "where not (p.caption <=> d.caption and p.content <=> d.content)"),
             std::string("2"));
    QCOMPARE(grid.text(2, 6), QString("00FF5C27"));
    QVERIFY(!grid.edit(2, 6, "abc"));
    QCOMPARE(grid.shown.size(), 1);
  }

  void refusedUpdateKeepsTheEdit() {
    test::copyDemoTable("product_media");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(grid.frame.OpenSQL("select * from product_media order by media_id"));
    grid.frame.grid()->setCurrentIndex(grid.model().index(0, 2));
    grid.frame.ClearCell();  // file_name is NOT NULL
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QVERIFY(grid.model().data(grid.model().index(0, 2), Qt::EditRole).isNull());
    QVERIFY(grid.model().isPendingRow(0));
    QVERIFY(grid.frame.statusText().contains("file_name"));
    QCOMPARE(test::scalar(*f.session, "select file_name from product_media where media_id = 1"),
             std::string("espresso.png"));
    // Correcting the value posts the row with both changes.
    QVERIFY(grid.edit(0, 2, "fixed.png"));
    QVERIFY(!grid.model().isPendingRow(0));
    QCOMPARE(test::scalar(*f.session, "select file_name from product_media where media_id = 1"),
             std::string("fixed.png"));
  }

  void insertAndDeleteRows() {
    test::copyDemoTable("product_media");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(grid.frame.OpenSQL("select * from product_media order by media_id"));
    grid.frame.InsertRecord();
    const int row = grid.model().rowCount() - 1;
    QCOMPARE(row, 10);
    QVERIFY(grid.edit(row, 2, "added.txt"));
    QVERIFY(grid.edit(row, 6, "CAFE"));
    f.takeStatements();
    // Leaving the row posts it.
    grid.frame.grid()->setCurrentIndex(grid.model().index(0, 0));
    QCOMPARE(f.takeStatements(),
             (std::vector<std::string>{"INSERT INTO `lomarin_test`.`product_media` "
                                       "(`file_name`, `content`) VALUES ('added.txt', X'CAFE')"}));
    QCOMPARE(grid.text(row, 0), QString("11"));
    QCOMPARE(test::scalar(*f.session,
                          "select concat(file_name, hex(content)) from product_media where media_id = 11"),
             std::string("added.txtCAFE"));

    grid.frame.grid()->setCurrentIndex(grid.model().index(1, 0));
    grid.frame.grid()->selectionModel()->select(grid.model().index(row, 0), QItemSelectionModel::Select);
    QString question;
    QTimer::singleShot(0, [&question] {
      QMessageBox* box = nullptr;
      QTRY_VERIFY((box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) != nullptr);
      QCOMPARE(box->windowTitle(), QString("Deleting Confirmation"));
      question = box->text();
      box->button(QMessageBox::Yes)->click();
    });
    grid.frame.DeleteRecords();
    QCOMPARE(question, QString("Delete 2 records?"));
    QCOMPARE(grid.model().rowCount(), 9);
    QCOMPARE(test::scalar(*f.session, "select group_concat(media_id order by media_id) from product_media"),
             std::string("1,3,4,5,6,7,8,9,10"));
    QCOMPARE(grid.text(1, 0), QString("3"));
  }

  void pasteWritesCellsAcrossAndDown() {
    test::copyDemoTable("product_media");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(grid.frame.OpenSQL("select * from product_media order by media_id"));
    QApplication::clipboard()->setText("a.txt\tfirst\nb.txt\tsecond\n");
    grid.frame.grid()->setCurrentIndex(grid.model().index(8, 2));
    grid.frame.PasteCells();
    QCOMPARE(test::scalar(*f.session,
                          "select group_concat(file_name, ':', caption order by media_id) from "
                          "product_media where media_id >= 9"),
             std::string("a.txt:first,b.txt:second"));
    // Rows past the end are added.
    grid.frame.grid()->setCurrentIndex(grid.model().index(9, 2));
    grid.frame.PasteCells();
    QCOMPARE(grid.model().rowCount(), 11);
    QCOMPARE(test::scalar(*f.session,
                          "select group_concat(media_id, file_name, ':', caption order by media_id) from "
                          "product_media where media_id >= 9"),
             std::string("9a.txt:first,10a.txt:first,11b.txt:second"));
  }

  void selfJoinEditsOnlyThroughItsOwnAlias() {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test.tree");
    test::sideExec("CREATE TABLE lomarin_test.tree (id INT PRIMARY KEY, parent INT, name VARCHAR(20))");
    test::sideExec("INSERT INTO lomarin_test.tree VALUES (1, NULL, 'root'), (2, 1, 'child'), (3, 2, 'leaf')");
    const std::string rows = "select group_concat(id, name order by id) from tree";
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(
        grid.frame.OpenSQL("select a.id, b.name from tree a join tree b on b.id = a.parent order by a.id"));
    const QString reason = "Read-only: `b`.`name`: the result holds no key of `tree` under the alias `b`";
    QCOMPARE(grid.frame.statusText(), reason);
    QVERIFY(!(grid.model().flags(grid.model().index(0, 1)) & Qt::ItemIsEditable));
    f.takeStatements();
    QVERIFY(!grid.edit(0, 1, "renamed"));
    QVERIFY(f.takeStatements().empty());
    QCOMPARE(grid.shown, QStringList{reason});
    QCOMPARE(test::scalar(*f.session, rows), std::string("1root,2child,3leaf"));

    // With each alias's key in the result, a cell changes the row of its own alias.
    QVERIFY(grid.frame.OpenSQL(
        "select a.id, a.name, b.id as parent_id, b.name as parent_name from tree a join tree b on b.id = "
        "a.parent order by a.id"));
    QVERIFY(grid.frame.statusText().isEmpty());
    f.takeStatements();
    QVERIFY(grid.edit(1, 3, "middle"));
    QCOMPARE(f.takeStatements(),
             (std::vector<std::string>{"UPDATE `lomarin_test`.`tree` SET `name` = 'middle' WHERE `id` = 2"}));
    QCOMPARE(test::scalar(*f.session, rows), std::string("1root,2middle,3leaf"));
  }

  void nullDateStaysNullUnlessTheUserSetsOne() {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test.dates");
    test::sideExec("CREATE TABLE lomarin_test.dates (id INT PRIMARY KEY, d DATE NULL, t DATETIME NULL)");
    test::sideExec("INSERT INTO lomarin_test.dates VALUES (1, NULL, NULL)");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    grid.frame.show();
    QVERIFY(grid.frame.OpenSQL("select * from dates"));
    QTableView* view = grid.frame.grid();
    auto editorOf = [&](int column) {
      const QModelIndex index = grid.model().index(0, column);
      view->setCurrentIndex(index);
      view->edit(index);
      return view->viewport()->findChild<QDateTimeEdit*>();
    };
    f.takeStatements();
    for (int column : {1, 2}) {
      QDateTimeEdit* editor = editorOf(column);
      QVERIFY(editor);
      QTest::keyClick(editor, Qt::Key_Return);
      QTRY_VERIFY(!view->viewport()->findChild<QDateTimeEdit*>());
    }
    QVERIFY(f.takeStatements().empty());
    QCOMPARE(test::scalar(*f.session, "select concat_ws(',', id, d, t) from dates"), std::string("1"));
    QCOMPARE(grid.model().data(grid.model().index(0, 1), Qt::DisplayRole).toString(), QString("(NULL)"));
    f.takeStatements();

    QDateTimeEdit* editor = editorOf(1);
    editor->setDate(QDate(2024, 2, 29));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!f.statements.empty());
    QCOMPARE(
        f.takeStatements(),
        (std::vector<std::string>{"UPDATE `lomarin_test`.`dates` SET `d` = '2024-02-29' WHERE `id` = 1"}));
  }

  // FLOAT keeps every digit in the grid, through an edit keyed on it and in an export; the
  // server's own text has six.
  void floatsAreShownWrittenAndExportedExactly() {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test.gauges");
    test::sideExec(
        "CREATE TABLE lomarin_test.gauges (id INT, reading FLOAT NOT NULL, note VARCHAR(10), "
        "PRIMARY KEY (id, reading))");
    test::sideExec(
        "INSERT INTO lomarin_test.gauges VALUES (1, 1234567, 'a'), (2, 0.1, 'b'), "
        "(3, 3.4028234663852886e38, 'c'), (4, -1e-7, NULL)");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(grid.frame.OpenSQL("select * from gauges order by id"));
    const QStringList exact{"1234567", "0.1", "3.4028234663852886e+38", "-1e-07"};
    for (int row = 0; row < 4; ++row) QCOMPARE(grid.text(row, 1), exact[row]);
    f.takeStatements();
    for (int row = 0; row < 4; ++row) QVERIFY(grid.edit(row, 2, "new"));
    QCOMPARE(
        f.takeStatements(),
        (std::vector<std::string>{
            "UPDATE `lomarin_test`.`gauges` SET `note` = 'new' WHERE `id` = 1 AND `reading` = 1.234567e+06",
            "UPDATE `lomarin_test`.`gauges` SET `note` = 'new' WHERE `id` = 2 AND `reading` = "
            "1.0000000149011612e-01",
            "UPDATE `lomarin_test`.`gauges` SET `note` = 'new' WHERE `id` = 3 AND `reading` = "
            "3.4028234663852886e+38",
            "UPDATE `lomarin_test`.`gauges` SET `note` = 'new' WHERE `id` = 4 AND `reading` = "
            "-1.0000000116860974e-07"}));
    const auto stored = [&] {
      return test::scalar(*f.session,
                          "select group_concat(concat(reading * 1e0, ' ', note) order by id separator ';') "
                          "from gauges");
    };
    QCOMPARE(stored(), std::string("1234567 new;0.10000000149011612 new;3.4028234663852886e38 new;"
                                   "-0.00000010000000116860974 new"));
    // A value written from the grid's text stores the same value.
    QVERIFY(grid.edit(1, 1, grid.text(2, 1)));
    QVERIFY(grid.edit(1, 1, exact[1]));
    QCOMPARE(stored(), std::string("1234567 new;0.10000000149011612 new;3.4028234663852886e38 new;"
                                   "-0.00000010000000116860974 new"));

    const QString file = f.folder.filePath("gauges.csv");
    QVERIFY(grid.frame.ExportTo(dataview::TExportFormat::Csv, file));
    QFile csv(file);
    QVERIFY(csv.open(QIODevice::ReadOnly));
    QCOMPARE(csv.readAll(), QByteArray("id,reading,note\r\n1,1234567,new\r\n2,0.1,new\r\n"
                                       "3,3.4028234663852886e+38,new\r\n4,-1e-07,new\r\n"));
    QVERIFY(grid.shown.isEmpty());
  }

  void keylessTableIsReadOnlyWithItsReason() {
    test::copyDemoTable("raw_import");
    test::DataviewFixture f("lomarin_test");
    Grid grid(f);
    QVERIFY(grid.frame.OpenSQL("select * from raw_import"));
    const QString reason =
        "Read-only: `raw_import` has no primary key or unique key over NOT NULL columns in this result";
    QCOMPARE(grid.frame.statusText(), reason);
    QVERIFY(!(grid.model().flags(grid.model().index(0, 0)) & Qt::ItemIsEditable));
    f.takeStatements();
    QVERIFY(!grid.edit(0, 0, "x"));
    grid.frame.InsertRecord();
    QCOMPARE(grid.model().rowCount(), 6);
    QVERIFY(f.takeStatements().empty());
    QCOMPARE(grid.shown, (QStringList{reason, reason}));
  }
};

}  // namespace

LOMARIN_UI_TEST(EditingTest)
#include "editing_test.moc"
