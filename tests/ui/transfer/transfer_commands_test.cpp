#include "ui/transfer/transfer_commands.h"

#include <QAction>
#include <QComboBox>
#include <QTest>

#include "../app/shell_test_support.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/transfer/form_export_db.h"
#include "ui/transfer/form_transfer_database.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::Tformppal;
using lomarin::ui::TfrmExportDb;

class TransferCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void exportCommandsOpenTheExportManagerWhileConnected() {
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installTransferCommands(window);
    QAction* full = window.actions().action("actExpDb");
    QVERIFY(!full->isEnabled());  // nothing to export without a server

    window.MySqlSession.Settings = lomarin::test::serverSettings();
    window.MySqlSession.Settings.Database = "lomarin_demo";
    window.MySqlSession.Connect();
    for (const char* name : {"actExpDb", "actExpTables", "actExportDB"}) {
      QAction* action = window.actions().action(name);
      QVERIFY2(action->isEnabled(), name);
      bool shown = false;
      lomarin::test::onNextModal<TfrmExportDb>([&](TfrmExportDb* dialog) {
        shown = true;
        QCOMPARE(dialog->windowTitle(), QString("Database export manager"));
        QCOMPARE(dialog->parentWidget(), &window);
      });
      action->trigger();
      QVERIFY2(shown, name);
    }
    bool transferShown = false;
    lomarin::test::onNextModal<lomarin::ui::TfrmTransferdatabase>(
        [&](lomarin::ui::TfrmTransferdatabase* dialog) {
          transferShown = true;
          QCOMPARE(dialog->windowTitle(), QString("Transfer database"));
        });
    window.actions().action("actTransfer")->trigger();
    QVERIFY(transferShown);
    window.MySqlSession.Disconnect();
  }
};

}  // namespace

LOMARIN_UI_TEST(TransferCommandsTest)
#include "transfer_commands_test.moc"
