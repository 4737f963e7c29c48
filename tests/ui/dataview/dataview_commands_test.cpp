#include "ui/dataview/dataview_commands.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "engine/app/settings_store.h"
#include "test_server.h"
#include "ui/app/exception_dialog.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/dataview/form_data.h"
#include "ui/dataview/frame_data.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

class DataviewCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void treeDoubleClickOpensOneWindowPerTable() {
    QTemporaryDir folder;
    SettingsStore settings(folder.filePath("settings.sqlite").toStdString());
    Tformppal window(settings);
    installDataviewCommands(window);
    window.MySqlSession.Settings = test::serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    window.show();

    TframeExplorer* explorer = window.explorer();
    emit explorer->objectActivated(explorer::NodeKind::Table, "lomarin_demo", "customers");
    emit explorer->objectActivated(explorer::NodeKind::View, "lomarin_demo", "v_order_totals");
    emit explorer->objectActivated(explorer::NodeKind::Table, "lomarin_demo", "customers");
    emit explorer->objectActivated(explorer::NodeKind::Procedure, "lomarin_demo", "get_customer_orders");
    const QList<QMdiSubWindow*> windows = window.mdiArea()->subWindowList();
    QCOMPARE(windows.size(), 2);
    QCOMPARE(windows[0]->widget()->windowTitle(), QString("TABLE [ `CUSTOMERS` ]"));
    QCOMPARE(windows[1]->widget()->windowTitle(), QString("VIEW [ `V_ORDER_TOTALS` ]"));
    QCOMPARE(window.mdiArea()->activeSubWindow(), windows[0]);
  }

  void focusIsInTheGridAndComesBackAfterAnErrorBox() {
    QTemporaryDir folder;
    SettingsStore settings(folder.filePath("settings.sqlite").toStdString());
    Tformppal window(settings);
    installDataviewCommands(window);
    window.MySqlSession.Settings = test::serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    emit window.explorer()->objectActivated(explorer::NodeKind::Table, "lomarin_demo", "categories");
    TframeData* frame = qobject_cast<TformData*>(window.mdiArea()->activeSubWindow()->widget())->frameData();
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(frame->grid()));

    QString shown;
    QTimer::singleShot(0, [&shown] {
      TExceptionDialog* box = nullptr;
      QTRY_VERIFY((box = qobject_cast<TExceptionDialog*>(QApplication::activeModalWidget())) != nullptr);
      shown = box->message();
      box->accept();
    });
    QVERIFY(!frame->ApplyFilter("no_such_column = 1"));
    QVERIFY(shown.contains("no_such_column"));
    QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(frame->grid()));
    // F5 works without a click first.
    QSignalSpy reopened(frame, &TframeData::opened);
    QTest::keyClick(frame->grid(), Qt::Key_F5);
    QCOMPARE(reopened.count(), 1);
  }
};

}  // namespace

LOMARIN_UI_TEST(DataviewCommandsTest)
#include "dataview_commands_test.moc"
