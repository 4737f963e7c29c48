#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "../app/shell_test_support.h"
#include "engine/connect/my_connection.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "test_web_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/connect/account_frame.h"
#include "ui/connect/form_connect.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/sqleditor_commands.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::TformConnect;
using lomarin::ui::Tformppal;
using lomarin::ui::TformSQLEditor;

class HttpConnectTest : public QObject {
  Q_OBJECT
 private slots:
  void stopInTheEditorEndsASleepThroughTheTunnel() {
    const lomarin::test::TunnelWebServer web;
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    lomarin::TAccount account = lomarin::test::httpTunnelAccount(web.url());
    account.Database = "lomarin_demo";
    lomarin::test::onNextModal<TformConnect>([&](TformConnect* dialog) {
      dialog->findChild<lomarin::ui::TframeAccount*>("frmAccount")->setAccount(account);
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    window.actions().action("actConect")->trigger();
    QVERIFY(window.MySqlSession.Connected());

    const qint64 stopMs = lomarin::test::runSleepAndStop(lomarin::test::openEditor(window));
    QVERIFY2(stopMs >= 0 && stopMs < 1000, qPrintable(QString::number(stopMs)));
    QVERIFY(lomarin::ExecSQLText(window.MySqlSession, "SELECT 1"));
    // The Stop's side connection went through the script too, and ended.
    QVERIFY(web.awaitOpened(1));
    window.actions().action("actDisconect")->trigger();
    QVERIFY(web.awaitOpened(2));
  }
};

}  // namespace

LOMARIN_UI_TEST(HttpConnectTest)
#include "http_connect_test.moc"
