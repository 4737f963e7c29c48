#include <QAction>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

#include "engine/app/settings_store.h"
#include "test_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/dataview/dataview_commands.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

class OneMeaningPerKeyTest : public QObject {
  Q_OBJECT
 private slots:
  // A key two enabled commands share does neither: Qt calls the shortcut ambiguous.
  void tableWindowAndMainWindowShareNoKey() {
    QTemporaryDir folder;
    SettingsStore settings(folder.filePath("settings.sqlite").toStdString());
    Tformppal window(settings);
    installDataviewCommands(window);
    window.MySqlSession.Settings = test::serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    window.show();
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

LOMARIN_UI_TEST(OneMeaningPerKeyTest)
#include "one_meaning_per_key_test.moc"
