#include <Qsci/qsciscintilla.h>

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <filesystem>

#include "connect/modal_helper.h"
#include "dataview_fixture.h"
#include "engine/connect/my_query.h"
#include "test_server.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_blob_viewer.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui/dataview/hex_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

constexpr int kContent = 6;  // product_media.content

QByteArray fileBytes(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

QByteArray storedContent(TMyConnection& session, int mediaId) {
  TMyQuery query(session);
  query.SQL = "SELECT content FROM lomarin_test.product_media WHERE media_id = " + std::to_string(mediaId);
  query.Open();
  if (!query.Next()) return "<no row>";
  if (query.IsNull(0)) return "<NULL>";
  const std::string_view value = query.Value(0);
  return QByteArray(value.data(), static_cast<qsizetype>(value.size()));
}

struct Viewer {
  Viewer(test::DataviewFixture& f, int row) {
    f.settings->write(opt::UseLimit, false);
    frame = f.open("product_media")->frameData();
    frame->grid()->setCurrentIndex(frame->model()->index(row, kContent));
    form = std::make_unique<TformBlobViewer>(*frame, kContent, *f.settings);
    form->resize(720, 480);
  }
  template <class T>
  T* find(const char* name) {
    T* w = form->findChild<T*>(name);
    if (!w) qFatal("no widget %s", name);
    return w;
  }
  void click(const char* name) { find<QPushButton>(name)->click(); }
  THexEditor* hex() { return find<THexEditor>("HexEditor"); }
  QsciScintilla* memo() { return find<TframeecSQL>("frameText")->memo(); }
  QLabel* image() { return find<QLabel>("imgBlob"); }
  QTextBrowser* html() { return find<QTextBrowser>("HtmlView"); }
  void render(int tab, const QString& name) {
    find<QTabWidget>("pgcBlob")->setCurrentIndex(tab);
    test::renderPng(form.get(), name);
  }

  TframeData* frame = nullptr;
  std::unique_ptr<TformBlobViewer> form;
};

class BlobViewerTest : public QObject {
  Q_OBJECT
 private slots:
  void showsTheValueOnEveryTabAndMovesBetweenRecords() {
    test::DataviewFixture f;
    Viewer v(f, 0);
    QCOMPARE(v.form->windowTitle(), QString("Blob Viewer"));
    // The PNG row: a picture of 8 x 8 pixels, its bytes in the hex view and in the owner-only work file.
    QCOMPARE(v.image()->pixmap().size(), QSize(8, 8));
    QCOMPARE(v.hex()->bytes().left(8), QByteArray("\x89PNG\r\n\x1a\n"));
    QCOMPARE(fileBytes(TformBlobViewer::workFile()), v.hex()->bytes());
    QCOMPARE(std::filesystem::status(TformBlobViewer::workFile().toStdString()).permissions(),
             std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    v.render(1, "blob_viewer_image");
    v.render(3, "blob_viewer_hex");

    v.click("btnNext");
    QCOMPARE(v.frame->grid()->currentIndex().row(), 1);
    const QString russian = QString::fromUtf8("Сыр «Конте» — выдержка 18 месяцев");
    QCOMPARE(v.memo()->text(), russian);
    QVERIFY(v.memo()->isReadOnly());
    QCOMPARE(v.html()->toPlainText(), russian);
    QCOMPARE(v.image()->text(), QString("The value is not a picture."));
    QCOMPARE(fileBytes(TformBlobViewer::workFile()), russian.toUtf8());
    v.render(0, "blob_viewer_text");

    v.click("btnPrior");
    QCOMPARE(v.frame->grid()->currentIndex().row(), 0);
    QVERIFY(!v.image()->pixmap().isNull());

    // An empty value: a blank page, and nothing to show as a picture.
    for (int i = 0; i < 7; ++i) v.click("btnNext");
    QCOMPARE(v.frame->model()->cell(7, 0).bytes, std::string("8"));
    QCOMPARE(v.html()->toPlainText(), QString());
    QCOMPARE(v.image()->text(), QString("The value is empty."));

    // 64 KiB of bytes (after a NULL) scroll line by line in the hex view.
    v.click("btnNext");
    QCOMPARE(v.hex()->bytes(), QByteArray());
    v.click("btnNext");
    QCOMPARE(v.hex()->bytes().size(), 65536);
    v.hex()->setCursorByte(65535);
    QCOMPARE(v.hex()->verticalScrollBar()->value(), v.hex()->verticalScrollBar()->maximum());
    QVERIFY(v.hex()->verticalScrollBar()->maximum() > 4000);
  }

  void loadsEditsAndUnloadsTheFieldByteForByte() {
    test::copyDemoTable("product_media");
    test::DataviewFixture f("lomarin_test");
    Viewer v(f, 2);

    QByteArray every;
    for (int i = 0; i < 3 * 256; ++i) every += static_cast<char>(i % 256);
    const QString in = f.folder.filePath("in.bin");
    QFile file(in);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(every) == every.size());
    file.close();
    QVERIFY(v.form->loadFromFile(in));
    QCOMPARE(storedContent(*f.session, 3), every);

    QTimer::singleShot(0, [&] {
      QFileDialog* dialog = nullptr;
      QTRY_VERIFY((dialog = v.form->findChild<QFileDialog*>("dlgUnload")) != nullptr && dialog->isVisible());
      QCOMPARE(dialog->defaultSuffix(), QString("jpeg"));
      dialog->selectFile(f.folder.filePath("out"));
      QMetaObject::invokeMethod(dialog, "accept");
    });
    v.click("btnUnload");
    QTRY_VERIFY(QFile::exists(f.folder.filePath("out.jpeg")));
    QCOMPARE(fileBytes(f.folder.filePath("out.jpeg")), every);

    // Two hex digits overwrite the first byte.
    v.hex()->setCursorByte(0);
    QTest::keyClicks(v.hex(), "4a");
    QCOMPARE(v.hex()->bytes().left(2), QByteArray("\x4a\x01"));
    v.form->actSaveBytesClick();
    QCOMPARE(storedContent(*f.session, 3), QByteArray("\x4a") + every.mid(1));

    v.form->actEditTextClick();
    QVERIFY(!v.memo()->isReadOnly());
    v.memo()->setText(QString::fromUtf8("<h2>Kaffee</h2><p>Crème <i>brûlée</i> 🍮</p>"));
    v.form->actSaveTextClick();
    QCOMPARE(storedContent(*f.session, 3), QByteArray("<h2>Kaffee</h2><p>Crème <i>brûlée</i> 🍮</p>"));
    QCOMPARE(v.html()->toPlainText(), QString::fromUtf8("Kaffee\nCrème brûlée 🍮"));
    v.render(2, "blob_viewer_html");

    v.click("btnClear");
    QCOMPARE(storedContent(*f.session, 3), QByteArray(""));
  }

  void htmlNamesNoFileItFetches() {
    test::DataviewFixture f;
    Viewer v(f, 0);
    const QString picture = f.folder.filePath("local.png");
    QVERIFY(v.image()->pixmap().save(picture));
    const QUrl url = QUrl::fromLocalFile(picture);
    v.html()->setHtml("<img src=\"" + url.toString() + "\">");
    QCOMPARE(v.html()->document()->resource(QTextDocument::ImageResource, url).toByteArray(), QByteArray());
  }
};

}  // namespace

LOMARIN_UI_TEST(BlobViewerTest)
#include "blob_viewer_test.moc"
