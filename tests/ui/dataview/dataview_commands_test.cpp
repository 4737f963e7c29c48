#include "ui/dataview/dataview_commands.h"

#include <QAction>
#include <QMap>
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

// The main window with the table commands, connected to the demo database and shown.
struct DemoMainWindow {
  DemoMainWindow() : settings(folder.filePath("settings.sqlite").toStdString()), window(settings) {
    installDataviewCommands(window);
    window.MySqlSession.Settings = test::serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    window.show();
  }
  QTemporaryDir folder;
  SettingsStore settings;
  Tformppal window;
};

class DataviewCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void treeDoubleClickOpensOneWindowPerTable() {
    DemoMainWindow demo;
    Tformppal& window = demo.window;

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
    DemoMainWindow demo;
    Tformppal& window = demo.window;
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

  // A key two enabled commands share does neither: Qt calls the shortcut ambiguous.
  void tableWindowAndMainWindowShareNoKey() {
    DemoMainWindow demo;
    Tformppal& window = demo.window;
    emit window.explorer()->objectActivated(explorer::NodeKind::Table, "lomarin_demo", "customers");

    QMap<QString, QStringList> commandsOfKey;
    for (QAction* action : window.findChildren<QAction*>()) {
      if (!action->isEnabled() || action->objectName().isEmpty()) continue;
      for (const QKeySequence& key : action->shortcuts())
        commandsOfKey[key.toString()] << action->objectName();
    }
    QVERIFY(!commandsOfKey.value("F5").isEmpty());
    for (auto it = commandsOfKey.begin(); it != commandsOfKey.end(); ++it)
      QVERIFY2(it.value().size() == 1, qPrintable(it.key() + ": " + it.value().join(", ")));
  }
};

}  // namespace

LOMARIN_UI_TEST(DataviewCommandsTest)
#include "dataview_commands_test.moc"
