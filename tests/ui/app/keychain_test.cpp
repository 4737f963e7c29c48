#include <QCheckBox>
#include <QLabel>
#include <QProcess>
#include <QTest>
#include <QTreeWidget>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/accounts_cipher.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/secret_vault.h"
#include "engine/connect/ssh_tunnel.h"
#include "keychain/keychain_vault.h"
#include "shell_test_support.h"
#include "sandbox_account.h"
#include "test_server.h"
#include "ui/app/options_dialog.h"
#include "ui/connect/form_connect.h"
#include "ui_test_registry.h"

using namespace lomarin;

namespace {

const std::string kSandbox = "Keychain sandbox";
const std::string kTunnelled = "Tunnelled";
const char* const kSecretNames[] = {"Password", "SSH Password", "PHP Proxy password", "PHP Secret"};

using test::sandboxAccount;

TAccount tunnelledAccount() {
  TAccount a;
  a.Login = "far";
  a.Password = "far pw";
  a.Server = "db.example";
  a.UseSSH = true;
  a.SSHServer = "gate.example";
  a.SSHPassword = "gate pw";
  a.UsePHP = true;
  a.PHPUrl = "http://web.example/tunnel.php";
  a.ProxyPassword = "proxy pw";
  a.PHPSecret = "tunnel secret";
  return a;
}

std::string raw(SettingsStore& store, const std::string& account, const char* value) {
  return store.readString(value, "<missing>", std::string(key::Accounts) + "\\" + account);
}

class KeychainTest : public QObject {
  Q_OBJECT

  KeychainVault keychain_;
  TSshTunnel tunnel_;
  TMyConnection session_;

  std::string kept(const std::string& account, const char* value) {
    return keychain_.read(account + "\\" + value).value_or("<unreadable>");
  }

  // Picks the account in the connect dialog and presses Enter, as a user does.
  void connectWith(SettingsStore& store, const std::string& account) {
    session_.Disconnect();
    ui::TformConnect form(store, session_, tunnel_, nullptr, &keychain_);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    auto* list = form.findChild<QTreeWidget*>("lvAccounts");
    const auto rows = list->findItems(QString::fromStdString(account), Qt::MatchFixedString);
    QCOMPARE(rows.size(), 1);
    list->setFocus();
    list->setCurrentItem(rows.first());
    QTest::keyClick(list, Qt::Key_Return);
    QVERIFY(session_.Connected());
    const std::string user = test::serverSettings().Username;
    QCOMPARE(test::scalar(session_, "SELECT CURRENT_USER()").substr(0, user.size() + 1), user + "@");
  }

  void switchKeychain(SettingsStore& store, bool on, const QString& render = QString()) {
    ui::TforOptions dialog(store, nullptr, &keychain_);
    auto* box = dialog.findChild<QCheckBox*>(QString::fromUtf8(opt::PasswordsInKeychain.name.data()));
    QVERIFY(box);
    QCOMPARE(box->isChecked(), !on);
    QVERIFY2(!dialog.findChild<QLabel*>("lblNoKeychain"), "a keychain answers");
    if (!render.isEmpty()) test::render(dialog, render);
    box->setChecked(on);
    QVERIFY(dialog.save());
  }

 private slots:
  void initTestCase() {
    if (qEnvironmentVariableIsEmpty("LOMARIN_TEST_SECRET_SERVICE"))
      QSKIP("needs a Secret Service of its own: ctest runs these as ui_app_keychain_tests");
    QVERIFY2(keychain_.available(), "the Secret Service started for this run does not answer");
    QVERIFY2(!sandboxAccount().Password.empty(), "the sandbox account needs a password to hide");
  }

  // Saved with the keychain on, the account keeps no password in the settings store, the values
  // older versions read keep their positions, and the program and lomarin-cli connect with it.
  void accountInTheKeychainConnects() {
    test::FreshSettings fresh;
    TAccountStore accounts(*fresh.store, &keychain_);
    QVERIFY(accounts.add(kSandbox, sandboxAccount()));
    QVERIFY(!accounts.keptOutOfKeychain());

    const auto names = fresh.store->valueNames(std::string(key::Accounts) + "\\" + kSandbox);
    QCOMPARE(names.size(), size_t(35));
    QCOMPARE(names[1], std::string("Password"));
    QCOMPARE(names[6], std::string("Use SSH"));
    QCOMPARE(names[33], std::string("PHP Secret"));
    QCOMPARE(names[34], std::string("Passwords in keychain"));
    QCOMPARE(raw(*fresh.store, kSandbox, "Password"), std::string());
    QCOMPARE(raw(*fresh.store, kSandbox, "Passwords in keychain"), std::string("-1"));
    QCOMPARE(kept(kSandbox, "Password"), sandboxAccount().Password);

    connectWith(*fresh.store, kSandbox);

    QProcess cli;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("LOMARIN_CONFIG_DIR", fresh.dir.path());
    cli.setProcessEnvironment(env);
    cli.start(LOMARIN_CLI_BINARY,
              {"query", "--account", QString::fromStdString(kSandbox), "SELECT CURRENT_USER()"});
    QVERIFY(cli.waitForFinished(30000));
    QCOMPARE(QString::fromUtf8(cli.readAllStandardError()), QString());
    QCOMPARE(cli.exitCode(), 0);
    const QString user = QString::fromStdString(test::serverSettings().Username);
    QVERIFY2(cli.readAllStandardOutput().contains((user + "@").toUtf8()), "lomarin-cli printed no user");
  }

  // The option moves every password of every account out and back in; none is lost on the way and
  // deleting an account takes its keychain entries along.
  void switchingMovesEveryPassword() {
    test::FreshSettings fresh;
    TAccountStore accounts(*fresh.store, &keychain_);
    QVERIFY(accounts.add(kSandbox, sandboxAccount()));
    QVERIFY(accounts.add(kTunnelled, tunnelledAccount()));
    for (const char* name : kSecretNames) QCOMPARE(raw(*fresh.store, kTunnelled, name), std::string());

    switchKeychain(*fresh.store, false, "options_keychain");
    const TAccount far = tunnelledAccount();
    QCOMPARE(raw(*fresh.store, kSandbox, "Password"), encipher(sandboxAccount().Password));
    QCOMPARE(raw(*fresh.store, kTunnelled, "SSH Password"), encipher(far.SSHPassword));
    QCOMPARE(raw(*fresh.store, kTunnelled, "PHP Secret"), encipher(far.PHPSecret));
    QCOMPARE(raw(*fresh.store, kTunnelled, "Passwords in keychain"), std::string("0"));
    for (const char* name : kSecretNames) QCOMPARE(kept(kTunnelled, name), std::string());
    QVERIFY(accounts.load(kTunnelled) == far);
    connectWith(*fresh.store, kSandbox);

    switchKeychain(*fresh.store, true);
    QCOMPARE(raw(*fresh.store, kTunnelled, "Password"), std::string());
    QCOMPARE(kept(kTunnelled, "PHP Proxy password"), far.ProxyPassword);
    QVERIFY(accounts.load(kTunnelled) == far);
    QCOMPARE(accounts.load(kSandbox)->Password, sandboxAccount().Password);

    QVERIFY(accounts.remove(kTunnelled));
    for (const char* name : kSecretNames) QCOMPARE(kept(kTunnelled, name), std::string());
    QCOMPARE(kept(kSandbox, "Password"), sandboxAccount().Password);
  }

  void cleanup() { session_.Disconnect(); }
};

}  // namespace

LOMARIN_UI_TEST(KeychainTest)
#include "keychain_test.moc"
