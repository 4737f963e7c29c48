#include <QElapsedTimer>
#include <QPushButton>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

#include "engine/connect/accounts.h"
#include "shell_test_support.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/connect/account_frame.h"
#include "ui/connect/form_connect.h"
#include "ui_test_registry.h"

namespace {

using lomarin::TAccount;
using lomarin::ui::TformConnect;
using lomarin::ui::Tformppal;
using lomarin::ui::TframeAccount;

class ConnectWaitTest : public QObject {
  Q_OBJECT
 private slots:
  void silentServerLeavesTheWindowAliveAndCancelReturnsAtOnce_data() {
    QTest::addColumn<bool>("ssh");
    QTest::newRow("MySQL server") << false;
    QTest::newRow("SSH server of the tunnel") << true;
  }
  void silentServerLeavesTheWindowAliveAndCancelReturnsAtOnce() {
    QFETCH(bool, ssh);
    // Takes the TCP connection and never sends the server's greeting.
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    int ticks = 0;
    QTimer heartbeat;
    connect(&heartbeat, &QTimer::timeout, this, [&] { ++ticks; });
    heartbeat.start(10);

    TAccount typed;
    typed.Login = "someone";
    typed.Server = "127.0.0.1";
    typed.Port = silent.serverPort();
    if (ssh) {
      typed.UseSSH = true;
      typed.SSHServer = "127.0.0.1";
      typed.SSHPort = silent.serverPort();
      typed.SSHLogin = "someone";
      typed.SSHPassword = "secret";
      typed.Port = 3306;
    }
    typed.Database = "shop";
    typed.Timeout = 0;
    qint64 cancelMs = -1;
    bool dialogKept = false;
    TAccount kept;
    lomarin::test::onNextModal<TformConnect>([&](TformConnect* dialog) {
      auto* frame = dialog->findChild<TframeAccount*>("frmAccount");
      frame->setAccount(typed);
      QElapsedTimer sinceCancel;
      QTimer::singleShot(0, [&] {
        QWidget* box = nullptr;
        QTRY_VERIFY((box = QApplication::activeModalWidget()) && box->objectName() == "TformConnectWait");
        QTRY_VERIFY(silent.hasPendingConnections());
        const int seen = ticks;
        QTRY_VERIFY(ticks > seen + 5);
        QVERIFY(!window.grab().isNull());
        lomarin::test::render(*box, ssh ? "connect_wait_ssh" : "connect_wait");
        sinceCancel.start();
        QTest::mouseClick(box->findChild<QPushButton*>("btnCancel"), Qt::LeftButton);
      });
      dialog->findChild<QPushButton*>("btnOk")->click();
      cancelMs = sinceCancel.isValid() ? sinceCancel.elapsed() : -1;
      dialogKept = dialog->isVisible();
      kept = frame->account();
    });
    window.actions().action("actConect")->trigger();
    QVERIFY2(cancelMs >= 0 && cancelMs < 1000, qPrintable(QString::number(cancelMs)));
    QVERIFY(dialogKept);
    QCOMPARE(kept.Server, typed.Server);
    QCOMPARE(kept.Port, typed.Port);
    QCOMPARE(kept.Login, typed.Login);
    QCOMPARE(kept.Database, typed.Database);
    QVERIFY(!window.MySqlSession.Connected());
    QVERIFY(window.actions().action("actConect")->isEnabled());
  }
};

}  // namespace

LOMARIN_UI_TEST(ConnectWaitTest)
#include "connect_wait_test.moc"
