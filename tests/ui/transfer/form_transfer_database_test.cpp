#include "ui/transfer/form_transfer_database.h"

#include <QCheckBox>
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
#include "test_server.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using lomarin::ui::TfrmTransferdatabase;

class FormTransferDatabaseTest : public QObject {
  Q_OBJECT
 private slots:
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
