#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "engine/app/option_names.h"
#include "engine/connect/accounts.h"
#include "shell_test_support.h"
#include "sandbox_account.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/connect/form_connect.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using lomarin::ui::TformConnect;
using lomarin::ui::Tformppal;

constexpr const char* kReadRow = "SELECT v FROM tx_rows WHERE id = 1";

// What another client sees: a connection of its own for every look.
std::string storedValue() { return test::scalar(*test::connect(), kReadRow); }

void connectWithTheDialog(Tformppal& window, SettingsStore& store) {
  TAccountStore(store).add("sandbox", test::sandboxAccount("lomarin_test"));
  test::onNextModal<TformConnect>([](TformConnect* dialog) {
    auto* accounts = dialog->findChild<QTreeWidget*>("lvAccounts");
    accounts->setCurrentItem(accounts->topLevelItem(0));
    dialog->findChild<QPushButton*>("btnOk")->click();
  });
  window.actions().action("actConect")->trigger();
}

class TransactionTest : public QObject {
  Q_OBJECT
 private slots:
  void init() {
    test::sideExec("CREATE DATABASE IF NOT EXISTS lomarin_test");
    test::sideExec(
        "CREATE OR REPLACE TABLE lomarin_test.tx_rows (id INT PRIMARY KEY, v VARCHAR(20)) ENGINE=InnoDB");
    test::sideExec("INSERT INTO lomarin_test.tx_rows VALUES (1, 'stored')");
  }

  void autoCommitOffKeepsEditsUntilCommitOrRollback() {
    test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    window.show();
    connectWithTheDialog(window, *fresh.store);
    TMyConnection& session = window.MySqlSession;
    QVERIFY(session.Connected());
    QCOMPARE(test::scalar(session, "SELECT @@autocommit"), std::string("0"));
    auto* state = window.findChild<QLabel*>("lblTransaction");
    QVERIFY(state);

    QVERIFY(ExecSQLText(session, "UPDATE tx_rows SET v = 'rolled back' WHERE id = 1"));
    QTRY_COMPARE(state->text(), QString("Auto commit off, transaction open"));
    QCOMPARE(storedValue(), std::string("stored"));
    lomarin::test::render(window, "main_window_transaction_open");
    window.actions().action("actRollback")->trigger();
    QCOMPARE(state->text(), QString("Auto commit off"));
    QCOMPARE(storedValue(), std::string("stored"));
    QCOMPARE(test::scalar(session, kReadRow), std::string("stored"));

    QVERIFY(ExecSQLText(session, "UPDATE tx_rows SET v = 'committed' WHERE id = 1"));
    QCOMPARE(storedValue(), std::string("stored"));
    window.actions().action("actCommit")->trigger();
    QCOMPARE(state->text(), QString("Auto commit off"));
    QCOMPARE(storedValue(), std::string("committed"));

    const QStringList traced = window.findChild<QPlainTextEdit*>("memOutput")->toPlainText().split('\n');
    QStringList ends;
    for (const QString& line : traced)
      if (line.endsWith("] ROLLBACK") || line.endsWith("] COMMIT") || line.endsWith("] SET autocommit=0"))
        ends << line.mid(line.indexOf("] ") + 2);
    QCOMPARE(ends, QStringList({"SET autocommit=0", "ROLLBACK", "COMMIT"}));

    window.actions().action("actDisconect")->trigger();
    QCOMPARE(state->text(), QString());
  }

  void autoCommitOnWritesAtOnce() {
    test::FreshSettings fresh;
    fresh.store->write(opt::AutoCommit, true);
    Tformppal window(*fresh.store);
    window.show();
    connectWithTheDialog(window, *fresh.store);
    TMyConnection& session = window.MySqlSession;
    QVERIFY(session.Connected());
    QCOMPARE(test::scalar(session, "SELECT @@autocommit"), std::string("1"));
    QVERIFY(ExecSQLText(session, "UPDATE tx_rows SET v = 'at once' WHERE id = 1"));
    QCOMPARE(storedValue(), std::string("at once"));
    QTRY_COMPARE(window.findChild<QLabel*>("lblTransaction")->text(), QString("Auto commit on"));
  }
};

}  // namespace

LOMARIN_UI_TEST(TransactionTest)
#include "transaction_test.moc"
