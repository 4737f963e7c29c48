#include "ui/dataview/dataview_commands.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTemporaryDir>
#include <QTest>

#include "engine/app/settings_store.h"
#include "test_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/dataview/form_data.h"
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
};

}  // namespace

LOMARIN_UI_TEST(DataviewCommandsTest)
#include "dataview_commands_test.moc"
