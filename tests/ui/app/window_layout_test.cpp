#include "ui/app/window_layout.h"

#include <QFile>
#include <QTest>
#include <QToolBar>

#include "engine/app/mru_list.h"
#include "shell_test_support.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/connect/connect_memory.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::WindowLayout;

QByteArray readAll(const QString& path) {
  QFile file(path);
  file.open(QIODevice::ReadOnly);
  return file.readAll();
}

class WindowLayoutTest : public QObject {
  Q_OBJECT
 private slots:
  void fileKeepsTheNamedProperties() {
    lomarin::test::FreshSettings fresh;
    const QString path = fresh.dir.filePath("data/ide_settings.xml");
    WindowLayout layout;
    layout.geometry = QRect(10, 20, 900, 600);
    layout.maximized = true;
    layout.sideBarWidth = 310;
    layout.mruList = "/a/one.txt\n/b/two.txt\n";
    layout.toolbars = {{"tbtDbBar", {Qt::LeftToolBarArea, 0, 0}}, {"tbtbarFile", {Qt::TopToolBarArea, 1, 2}}};
    QString error;
    QVERIFY2(lomarin::ui::saveWindowLayout(layout, path, &error), qPrintable(error));

    const QByteArray xml = readAll(path);
    QVERIFY(xml.contains("<Configuration>"));
    QVERIFY(xml.contains("<General>"));
    QVERIFY(xml.contains("<paneSideBar.Width>310</paneSideBar.Width>"));
    QVERIFY(xml.contains("<tbmMRU.MRUList>"));
    QVERIFY(xml.contains("<Tformppal.Maximized>TRUE</Tformppal.Maximized>"));
    QVERIFY(xml.contains("<tbtDbBar.CurrentDock>Left</tbtDbBar.CurrentDock>"));
    QVERIFY(xml.contains("<tbtDbBar.DefaultDock>"));
    QVERIFY(xml.contains("<tbtbarFile.DockRow>1</tbtbarFile.DockRow>"));
    QVERIFY(xml.contains("<tbtbarFile.DockPos>2</tbtbarFile.DockPos>"));
    QVERIFY(xml.contains("<tbtSchema.CurrentDock>"));
    QVERIFY(!xml.contains("<tbtSchema.DefaultDock>"));

    const auto back = lomarin::ui::loadWindowLayout(path, &error);
    QVERIFY(back);
    QCOMPARE(back->geometry, layout.geometry);
    QCOMPARE(back->maximized, true);
    QCOMPARE(back->sideBarWidth, 310);
    QCOMPARE(back->mruList, layout.mruList);
    QCOMPARE(back->toolbars.value("tbtDbBar").dock, Qt::LeftToolBarArea);
    QCOMPARE(back->toolbars.value("tbtbarFile").row, 1);
    QCOMPARE(back->toolbars.value("tbtbarFile").position, 2);
  }

  void booleanTextsAndDamagedFiles() {
    lomarin::test::FreshSettings fresh;
    const QString path = fresh.dir.filePath("ide_settings.xml");
    QString error;
    QVERIFY(!lomarin::ui::loadWindowLayout(path, &error));
    QVERIFY(error.isEmpty());  // missing: nothing to restore, nothing to report

    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "<Configuration><General><Tformppal.Maximized>y</Tformppal.Maximized></General></Configuration>");
    file.close();
    QVERIFY(lomarin::ui::loadWindowLayout(path, &error)->maximized);

    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("<Configuration><General><paneSideBar.Width>3");
    file.close();
    QVERIFY(!lomarin::ui::loadWindowLayout(path, &error));
    QVERIFY(!error.isEmpty());
    // Reported, and the damaged file is left as it was, also by a save.
    QVERIFY(!lomarin::ui::saveWindowLayout(WindowLayout{}, path, &error));
    QCOMPARE(readAll(path), QByteArray("<Configuration><General><paneSideBar.Width>3"));
  }

  void layoutAndConnectDialogKeepEachOthersSection() {
    lomarin::test::FreshSettings fresh;
    const QString path = fresh.dir.filePath("ide_settings.xml");
    lomarin::ui::ConnectMemory memory{
        "3307", "utf8mb4", "Default", "shop", "db & co", "alice", "http://x/t.php?a=1&b=2"};
    QVERIFY(lomarin::ui::writeConnectMemory(path, memory));
    WindowLayout layout;
    layout.sideBarWidth = 222;
    layout.mruList = "/w/a.sql\n";
    QString error;
    // Every exit saves the layout; the connect dialog's last inputs survive each one.
    for (int exit = 0; exit < 2; ++exit) {
      QVERIFY2(lomarin::ui::saveWindowLayout(layout, path, &error), qPrintable(error));
      QCOMPARE(lomarin::ui::readConnectMemory(path), std::optional(memory));
    }
    QCOMPARE(readAll(path).count("<Connect>"), 1);
    QCOMPARE(readAll(path).count("<General>"), 1);

    memory.login = "bob";
    QVERIFY(lomarin::ui::writeConnectMemory(path, memory));
    const auto back = lomarin::ui::loadWindowLayout(path, &error);
    QVERIFY(back);
    QCOMPARE(back->sideBarWidth, 222);
    QCOMPARE(back->mruList, layout.mruList);
    QCOMPARE(lomarin::ui::readConnectMemory(path)->login, QString("bob"));

    // A damaged file is never replaced.
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("<Configuration><General>");
    file.close();
    QVERIFY(!lomarin::ui::readConnectMemory(path));
    QVERIFY(!lomarin::ui::writeConnectMemory(path, memory));
    QCOMPARE(readAll(path), QByteArray("<Configuration><General>"));
  }

  void mainWindowRestoresRecentFilesAndToolbars() {
    lomarin::test::FreshSettings fresh;
    WindowLayout saved;
    {
      lomarin::ui::Tformppal window(*fresh.store);
      WindowLayout layout = window.layout();
      layout.mruList = "/x/1.txt\n/x/2.txt\n";
      layout.toolbars["tbtDbaBar"] = {Qt::BottomToolBarArea, -1, -1};
      window.applyLayout(layout);
      saved = window.layout();
    }
    lomarin::ui::Tformppal window(*fresh.store);
    window.applyLayout(saved);
    QCOMPARE(window.recentFiles().items(), (std::vector<std::string>{"/x/1.txt", "/x/2.txt"}));
    QCOMPARE(window.toolBarArea(window.actions().toolbar("tbtDbaBar")), Qt::BottomToolBarArea);
  }

  // Second start, maximised: the file is read before the window shows, as at start-up.
  void toolbarRowsAndOrderSurviveAMaximisedRoundTrip() {
    lomarin::test::FreshSettings fresh;
    const QString path = fresh.dir.filePath("data/ide_settings.xml");
    QMap<QString, lomarin::ui::ToolbarPlace> before;
    {
      lomarin::ui::Tformppal window(*fresh.store);
      window.showMaximized();
      QTRY_VERIFY(window.isMaximized());
      window.addToolBar(Qt::BottomToolBarArea, window.actions().toolbar("tbtProjects"));
      QTRY_VERIFY(window.actions().toolbar("tbtProjects")->y() > window.actions().toolbar("tbtDbBar")->y());
      before = window.layout().toolbars;
      QString error;
      QVERIFY2(lomarin::ui::saveWindowLayout(window.layout(), path, &error), qPrintable(error));
    }
    QCOMPARE(before.value("tbtbarFile").row, 0);
    QCOMPARE(before.value("tbtbarFile").position, 0);
    QCOMPARE(before.value("tbtDbBar").row, 1);
    QCOMPARE(before.value("tbtSchema").position, 2);
    QCOMPARE(before.value("tbtProjects").dock, Qt::BottomToolBarArea);
    for (int start = 0; start < 2; ++start) {
      lomarin::ui::Tformppal window(*fresh.store);
      QString error;
      const auto layout = lomarin::ui::loadWindowLayout(path, &error);
      QVERIFY2(layout, qPrintable(error));
      window.applyLayout(*layout);
      window.show();
      QTRY_VERIFY(window.isMaximized());
      QTRY_COMPARE(window.actions().toolbar("tbtDbBar")->y(), window.actions().toolbar("tbtSchema")->y());
      const auto after = window.layout().toolbars;
      for (auto it = before.begin(); it != before.end(); ++it) {
        const auto& place = after.value(it.key());
        QVERIFY2(
            place.dock == it->dock && place.row == it->row && place.position == it->position,
            qPrintable(QString("%1: row %2 position %3").arg(it.key()).arg(place.row).arg(place.position)));
      }
      QVERIFY2(lomarin::ui::saveWindowLayout(window.layout(), path, &error), qPrintable(error));
    }
  }
};

}  // namespace

LOMARIN_UI_TEST(WindowLayoutTest)
#include "window_layout_test.moc"
