#include "ui/transfer/form_transfer_database.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include "../app/shell_test_support.h"
#include "connect/modal_helper.h"
#include "engine/app/data_folder.h"
#include "engine/app/option_names.h"
#include "engine/connect/accounts.h"
#include "engine/connect/ssh_key_store.h"
#include "test_server.h"
#include "test_web_server.h"
#include "ssh_test_key.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using lomarin::ui::TfrmTransferdatabase;

// The log lines of a run that sent one table without errors.
QString cleanRun(const QString& table, const QString& target) {
  return QString("Connected to database ....... %2\n"
                 "Init export current database ....... lomarin_demo\n"
                 "Export table ....... %1\nTransfer  ....... %1\n"
                 "Finish transfer database ....... lomarin_demo\n"
                 "Disconect to database ....... %2\n"
                 "process finished without errors")
      .arg(table, target);
}

class FormTransferDatabaseTest : public QObject {
  Q_OBJECT
 private slots:
  // A stored account's tunnel carries the target's connection, as it does the main window's.
  void aStoredAccountWithATunnelIsATarget() {
    if (const std::string missing = test::sshServerMissing(); !missing.empty()) QSKIP(missing.c_str());
    test::FreshSettings fresh;
    test::addAuthorizedKey(fresh, "xfer");
    test::TunnelWebServer web;
    TAccount ssh = test::sshAccount();  // its own port is closed: only the tunnel reaches the server
    ssh.SSHClientKey = "xfer";
    ssh.Database = "lomarin_xfer_ssh";
    TAccount http = test::httpTunnelAccount(web.url());
    http.Database = "lomarin_xfer_http";
    TAccount refused = test::sshAccount();
    refused.SSHPassword = "not the password";
    refused.Database = "lomarin_xfer_ssh";
    TAccountStore accounts(*fresh.store);
    QVERIFY(accounts.add("Through SSH", ssh));
    QVERIFY(accounts.add("Through HTTP", http));
    QVERIFY(accounts.add("SSH refused", refused));

    auto session = test::connect("lomarin_demo");
    TfrmTransferdatabase dialog(*session, *fresh.store);
    dialog.findChild<QCheckBox*>("chkCheckAllTables")->click();
    auto* tables = dialog.findChild<QListWidget*>("lstTables");
    tables->findItems("categories", Qt::MatchExactly).front()->setCheckState(Qt::Checked);
    auto* account = dialog.findChild<QComboBox*>("cboAccount");
    auto* log = dialog.findChild<QPlainTextEdit*>("memInfo");
    for (const QString& target : {QString("lomarin_xfer_ssh"), QString("lomarin_xfer_http")}) {
      test::sideExec("DROP DATABASE IF EXISTS " + target.toStdString());
      test::sideExec("CREATE DATABASE " + target.toStdString());
      account->setCurrentText(target.endsWith("ssh") ? "Through SSH" : "Through HTTP");
      dialog.btnOkClick();
      QCOMPARE(log->toPlainText(), cleanRun("categories", target));
      QCOMPARE(test::scalar(*session, "SELECT COUNT(*) FROM " + target.toStdString() + ".categories"),
               test::scalar(*session, "SELECT COUNT(*) FROM categories"));
    }
    QVERIFY(web.awaitOpened(1));

    // A refused SSH login is the target's connect error: logged, and the run ends there.
    account->setCurrentText("SSH refused");
    dialog.btnOkClick();
    const QStringList lines = log->toPlainText().split('\n');
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].startsWith("Error : The SSH server ") && lines[0].contains(" refused the password "),
             qPrintable(lines[0]));
    QCOMPARE(lines[1], QString("process finished with errors"));
    test::renderPng(&dialog, "transfer_database_refused_tunnel");
  }


  void transfersCheckedObjectsAndKeepsTheLog() {
    test::sideExec("DROP DATABASE IF EXISTS lomarin_xfer_ui");
    test::sideExec("CREATE DATABASE lomarin_xfer_ui");
    QFile::remove(QString::fromStdString((dataFolder() / "log.txt").string()));
    test::FreshSettings fresh;
    auto session = test::connect("lomarin_demo");
    TfrmTransferdatabase dialog(*session, *fresh.store);
    const auto find = [&](const char* name) { return dialog.findChild<QWidget*>(name); };
    auto* tables = dialog.findChild<QListWidget*>("lstTables");
    QCOMPARE(tables->item(tables->count() - 1)->text(), QString("v_customer_revenue"));
    QVERIFY(!dialog.findChild<QCheckBox*>("chkStoredProcs")->isChecked());

    // "Drop table  if exist" cleared after being checked still leaves the drops on.
    auto* drop = dialog.findChild<QCheckBox*>("chkDropTable");
    QCOMPARE(drop->text(), QString("Drop table  if exist"));
    drop->click();
    QVERIFY(dialog.dump().Options.AddDrop);
    dialog.findChild<QCheckBox*>("chkTransferViews")->click();
    QCOMPARE(dialog.dump().Objects.bits(), 8 + 16);

    dialog.findChild<QCheckBox*>("chkCheckAllTables")->click();
    for (const char* table : {"categories", "customers"})
      tables->findItems(table, Qt::MatchExactly).front()->setCheckState(Qt::Checked);
    dialog.findChild<QCheckBox*>("chkStoredProcs")->click();
    const TMySessionSettings server = test::serverSettings();
    qobject_cast<QLineEdit*>(find("edtLogin"))->setText(QString::fromStdString(server.Username));
    qobject_cast<QLineEdit*>(find("edtPassword"))->setText(QString::fromStdString(server.Password));
    qobject_cast<QLineEdit*>(find("edtServer"))->setText(QString::fromStdString(server.Server));
    qobject_cast<QLineEdit*>(find("edtPort"))->setText(QString::number(server.Port));
    qobject_cast<QLineEdit*>(find("edtDatabase"))->setText("lomarin_xfer_ui");
    dialog.show();
    dialog.btnOkClick();

    const QString log = dialog.findChild<QPlainTextEdit*>("memInfo")->toPlainText();
    QCOMPARE(log,
             QString("Connected to database ....... lomarin_xfer_ui\n"
                     "Init export current database ....... lomarin_demo\n"
                     "Export table ....... categories\nTransfer  ....... categories\n"
                     "Export table ....... customers\nTransfer  ....... customers\n"
                     "Export procedure ....... get_customer_orders\nTransfer  ....... get_customer_orders\n"
                     "Export procedure ....... order_total\nTransfer  ....... order_total\n"
                     "Finish transfer database ....... lomarin_demo\n"
                     "Disconect to database ....... lomarin_xfer_ui\n"
                     "process finished without errors"));
    QFile saved(QString::fromStdString((dataFolder() / "log.txt").string()));
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(saved.readAll()), log + "\n");
    QCOMPARE(dialog.findChild<QProgressBar*>("pbTransfer")->text(), QString("order_total 100%"));
    QCOMPARE(test::scalar(*session, "SELECT COUNT(*) FROM lomarin_xfer_ui.customers"), std::string("250"));
    QCOMPARE(test::scalar(*session,
                          "SELECT COUNT(*) FROM information_schema.TABLES "
                          "WHERE TABLE_SCHEMA = 'lomarin_xfer_ui'"),
             std::string("2"));
    QVERIFY(find("btnOk")->isEnabled());
    QVERIFY(!find("btnStop")->isEnabled());
    test::renderPng(&dialog, "transfer_database");
  }
};

}  // namespace

LOMARIN_UI_TEST(FormTransferDatabaseTest)
#include "form_transfer_database_test.moc"
