#include "ui/connect/form_connect.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/accounts_cipher.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_key_store.h"
#include "engine/connect/ssh_tunnel.h"
#include "find_child.h"
#include "modal_helper.h"
#include "sandbox_account.h"
#include "test_server.h"
#include "test_ssh_server.h"
#include "test_web_server.h"
#include "ui/connect/account_frame.h"
#include "ui/connect/connect_memory.h"
#include "ui/connect/connect_message.h"
#include "ui_test_registry.h"

using namespace lomarin;
using lomarin::test::whenModal;

namespace {

const std::string kAccountsKey = std::string(key::Accounts) + "\\";

using test::child;

// Queues a click on OK of the next connect message, keeping its text.
void noteMessage(QString* text) {
  test::whenModal(ui::kConnectMessageName, [text](QWidget* box) {
    *text = static_cast<QMessageBox*>(box)->text();
    static_cast<QMessageBox*>(box)->button(QMessageBox::Ok)->click();
  });
}

using test::sandboxAccount;

class FormConnectTest : public QObject {
  Q_OBJECT

  std::unique_ptr<QTemporaryDir> dir_;
  std::unique_ptr<SettingsStore> settings_;
  TSshTunnel tunnel_;
  TMyConnection session_;

  std::string raw(const std::string& account, const char* value) {
    return settings_->readString(value, "<missing>", kAccountsKey + account);
  }

 private slots:
  void init() {
    dir_ = std::make_unique<QTemporaryDir>();
    qputenv("LOMARIN_DATA_DIR", dir_->path().toUtf8());
    settings_ = std::make_unique<SettingsStore>(dir_->filePath("settings.sqlite").toStdString());
    session_.Disconnect();
  }

  void titleListsAndDefaults() {
    ui::TformConnect form(*settings_, session_, tunnel_);
    QCOMPARE(child<QLabel>(&form, "lblTitle")->text(), QString("Lomarin for MySQL 6.0"));
    QCOMPARE(child<QPushButton>(&form, "btnOk")->text(), QString("&Ok"));
    auto* charsets = child<QComboBox>(&form, "cboClientCharset");
    QCOMPARE(charsets->count(), 37);
    QCOMPARE(charsets->currentText(), QString("default"));
    QCOMPARE(charsets->itemText(36), QString("eucjpms"));
    QCOMPARE(child<QComboBox>(&form, "cboFontCharset")->itemText(14),
             QString("SHIFTJI  (Japanese shift-JIS characters)"));
    QCOMPARE(child<QSpinBox>(&form, "spnPort")->value(), 3306);
    QVERIFY(child<QCheckBox>(&form, "chkDirect")->isChecked());
    QVERIFY(!child<QCheckBox>(&form, "chkShowAllDatabases")->isChecked());
    QVERIFY(child<QPushButton>(&form, "btnOk")->isDefault());
  }

  void fieldsStartFromTheOptions() {
    settings_->write(opt::SavePassWord, true);
    settings_->write(opt::DefaultPassword, "remembered");
    settings_->write(opt::DefaultHostOption, true);
    settings_->write(opt::DefaultDatabaseHost, "db.lan");
    settings_->write(opt::DefaultDatabasePort, "3310");
    settings_->write(opt::ShowAllDatabase, true);
    {
      ui::TformConnect form(*settings_, session_, tunnel_);
      QCOMPARE(child<QLineEdit>(&form, "edtPassword")->text(), QString("remembered"));
      QCOMPARE(child<QComboBox>(&form, "cboServer")->currentText(), QString("db.lan"));
      QCOMPARE(child<QSpinBox>(&form, "spnPort")->value(), 3310);
      QVERIFY(child<QCheckBox>(&form, "chkShowAllDatabases")->isChecked());
    }
    settings_->write(opt::SavePassWord, false);
    settings_->write(opt::DefaultHostOption, false);
    ui::TformConnect form(*settings_, session_, tunnel_);
    QCOMPARE(child<QLineEdit>(&form, "edtPassword")->text(), QString());
    QCOMPARE(child<QComboBox>(&form, "cboServer")->currentText(), QString());
  }

  void addingAccountsThroughTheEditor() {
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    const auto addAccount = [&](const QString& name, bool ssh, QString* message) {
      whenModal("TformAccount", [=](QWidget* editor) {
        child<QLineEdit>(editor, "edtName")->setText(name);
        child<QLineEdit>(editor, "edtLogin")->setText("alice");
        child<QLineEdit>(editor, "edtPassword")->setText("pw-alice");
        child<QComboBox>(editor, "cboServer")->setEditText("db.example");
        child<QComboBox>(editor, "cboDatabase")->setEditText("shop");
        child<QCheckBox>(editor, "chkSSH")->setChecked(ssh);
        child<QLineEdit>(editor, "edtSSHPassword")->setText("pw-ssh");
        if (message) {
          whenModal(ui::kConnectMessageName, [=](QWidget* box) {
            *message = static_cast<QMessageBox*>(box)->text();
            static_cast<QMessageBox*>(box)->button(QMessageBox::Ok)->click();
            QTimer::singleShot(0, editor, [editor] {
              QVERIFY2(editor->isVisible(), "a refused name leaves the editor open");
              child<QPushButton>(editor, "btnCancel")->click();
            });
          });
        }
        child<QPushButton>(editor, "btnOk")->click();
      });
      child<QPushButton>(&form, "btnAdd")->click();
    };
    addAccount("plain", false, nullptr);
    addAccount("tunnelled", true, nullptr);

    QCOMPARE(raw("plain", "SSH Port"), std::string("22"));
    QCOMPARE(raw("plain", "PHP Proxy port"), std::string("808"));
    QCOMPARE(raw("plain", "SSH Password"), std::string());
    QCOMPARE(raw("plain", "Password"), encipher("pw-alice"));
    QCOMPARE(raw("tunnelled", "SSH Password"), encipher("pw-ssh"));
    for (const auto& name : settings_->valueNames(kAccountsKey + "tunnelled"))
      QVERIFY2(raw("tunnelled", name.c_str()).find("pw-") == std::string::npos, name.c_str());

    auto* list = child<QTreeWidget>(&form, "lvAccounts");
    QCOMPARE(list->topLevelItemCount(), 2);
    const QStringList shown{list->topLevelItem(0)->text(0), list->topLevelItem(0)->text(1),
                            list->topLevelItem(0)->text(2), list->topLevelItem(0)->text(3)};
    QCOMPARE(shown, QStringList({"plain", "alice", "db.example", "shop"}));
    QCOMPARE(list->topLevelItem(0)->data(0, Qt::UserRole).toBool(), false);
    QCOMPARE(list->topLevelItem(1)->data(0, Qt::UserRole).toBool(), true);
    QVERIFY(list->topLevelItem(0)->icon(0).cacheKey() != list->topLevelItem(1)->icon(0).cacheKey());

    auto* servers = child<QComboBox>(&form, "cboServer");
    QCOMPARE(servers->count(), 1);
    QCOMPARE(servers->itemText(0), QString("db.example"));

    QString refused;
    addAccount("Plain", false, &refused);
    QCOMPARE(refused, QString("The name already exists "));
    QCOMPARE(list->topLevelItemCount(), 2);
    test::renderPng(&form, "connect_accounts");
  }

  void choosingAnAccountFillsTheFields() {
    TAccount a = sandboxAccount();
    a.Timeout = 20;
    a.ClientCharset = "latin1";
    a.UseSSL = true;
    a.SSLCACert = "/ca.pem";
    TAccountStore(*settings_).add("stored", a);
    ui::TformConnect form(*settings_, session_, tunnel_);
    auto* list = child<QTreeWidget>(&form, "lvAccounts");
    list->setCurrentItem(list->topLevelItem(0));
    QCOMPARE(child<QLineEdit>(&form, "edtPassword")->text(), QString::fromStdString(a.Password));
    QCOMPARE(child<QSpinBox>(&form, "spnPort")->value(), a.Port);
    QCOMPARE(child<QComboBox>(&form, "cboDatabase")->currentText(), QString("lomarin_demo"));
    QCOMPARE(child<QComboBox>(&form, "cboClientCharset")->currentText(), QString("latin1"));
    QCOMPARE(child<QSpinBox>(&form, "spnTimeout")->value(), 20);
    QCOMPARE(child<QLineEdit>(&form, "edtCACert")->text(), QString("/ca.pem"));
    QVERIFY(child<QCheckBox>(&form, "chkSSL")->isChecked());
  }

  void connectingWithAStoredAccount() {
    TAccountStore(*settings_).add("Local sandbox", sandboxAccount());
    ui::TformConnect form(*settings_, session_, tunnel_);
    QString filterSeen;
    connect(&form, &ui::TformConnect::aboutToConnect, this, [&](const QString& f) { filterSeen = f; });
    int connects = 0;
    session_.Events.AfterConnect = [&] { ++connects; };
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    auto* list = child<QTreeWidget>(&form, "lvAccounts");
    list->setFocus();
    list->setCurrentItem(list->topLevelItem(0));
    QTest::keyClick(list, Qt::Key_Return);
    session_.Events.AfterConnect = nullptr;

    QVERIFY(session_.Connected());
    QCOMPARE(connects, 1);
    QCOMPARE(form.result(), int(QDialog::Accepted));
    const auto server = test::serverSettings();
    QCOMPARE(test::scalar(session_, "SELECT CURRENT_USER()").substr(0, server.Username.size() + 1),
             server.Username + "@");
    QCOMPARE(test::scalar(session_, "SELECT DATABASE()"), std::string("lomarin_demo"));
    QCOMPARE(form.accountName(), QString("Local sandbox"));
    QCOMPARE(form.databaseFilter(), QString("'lomarin_demo'"));
    QCOMPARE(filterSeen, QString("'lomarin_demo'"));
    QCOMPARE(settings_->read(opt::DefaultDatabasePort), std::to_string(server.Port));

    const auto memory = ui::readConnectMemory(ui::layoutFile());
    QVERIFY(memory);
    QCOMPARE(memory->port, QString::number(server.Port));
    QCOMPARE(memory->database, QString("lomarin_demo"));
    QCOMPARE(memory->login, QString::fromStdString(server.Username));
    QCOMPARE(memory->clientCharset, QString("default"));

    // The next opening starts from what was used last.
    ui::TformConnect again(*settings_, session_, tunnel_);
    QCOMPARE(child<QComboBox>(&again, "cboServer")->currentText(), QString::fromStdString(server.Server));
    QCOMPARE(child<QLineEdit>(&again, "edtLogin")->text(), QString::fromStdString(server.Username));
  }

  void connectingOverSsl() {
    // The sandbox's certificate names "localhost", which the client reaches by the socket.
    TAccount ssl = sandboxAccount();
    ssl.Server = "localhost";
    ssl.UseSSL = true;
    ssl.SSLCACert = test::sslDir() + "/ca.pem";
    TAccountStore(*settings_).add("Encrypted", ssl);
    session_.Settings.SocketPath = qEnvironmentVariable("LOMARIN_TEST_SOCKET").toStdString();
    QVERIFY(!session_.Settings.SocketPath.empty());
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    auto* list = child<QTreeWidget>(&form, "lvAccounts");
    QString refused;
    QTimer::singleShot(5000, &form, [&] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
        refused = box->text();
        box->button(QMessageBox::Ok)->click();
      }
    });
    // A double-click chooses the account and connects with it.
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    const QRect row = list->visualItemRect(list->topLevelItem(0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, row.center());
    QVERIFY(child<QCheckBox>(&form, "chkSSL")->isChecked());
    QVERIFY2(refused.isEmpty(), qPrintable(refused));
    QVERIFY(session_.Connected());
    const std::string cipher = test::scalar(
        session_,
        "SELECT VARIABLE_VALUE FROM information_schema.SESSION_STATUS WHERE VARIABLE_NAME = 'Ssl_cipher'");
    QVERIFY(!cipher.empty());
    QCOMPARE(cipher, session_.SslCipher());
  }

  void editingAndDeletingAccounts() {
    TAccountStore store(*settings_);
    store.add("keep", sandboxAccount());
    store.add("work", sandboxAccount());
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    auto* list = child<QTreeWidget>(&form, "lvAccounts");
    list->setCurrentItem(list->topLevelItem(1));
    whenModal("TformAccount", [](QWidget* editor) {
      QVERIFY(child<QLineEdit>(editor, "edtName")->isReadOnly());
      QCOMPARE(child<QLineEdit>(editor, "edtName")->text(), QString("work"));
      child<QLineEdit>(editor, "edtLogin")->setText("changed");
      child<QPushButton>(editor, "btnOk")->click();
    });
    child<QPushButton>(&form, "btnEdit")->click();
    QCOMPARE(store.load("work")->Login, std::string("changed"));
    QCOMPARE(list->currentItem()->text(1), QString("changed"));

    whenModal("DeleteAccountQuestion", [](QWidget* box) {
      QVERIFY(static_cast<QMessageBox*>(box)->text().contains("work"));
      static_cast<QMessageBox*>(box)->button(QMessageBox::Yes)->click();
    });
    child<QPushButton>(&form, "btnDelete")->click();
    QCOMPARE(store.names(), std::vector<std::string>{"keep"});
    QCOMPARE(list->topLevelItemCount(), 1);
    QVERIFY(settings_->valueNames(kAccountsKey + "work").empty());
  }

  void aFailedConnectKeepsTheDialogAndItsInput() {
    TAccount wrong = sandboxAccount();
    wrong.Password = "not the password";
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    child<ui::TframeAccount>(&form, "frmAccount")->setAccount(wrong);
    QString shown;
    noteMessage(&shown);
    child<QPushButton>(&form, "btnOk")->click();
    QVERIFY(shown.startsWith("1045\n"));
    QVERIFY(!session_.Connected());
    QVERIFY(form.isVisible());
    QCOMPARE(form.result(), 0);
    QCOMPARE(child<QLineEdit>(&form, "edtPassword")->text(), QString("not the password"));
    QVERIFY(!settings_->read(opt::DefaultDatabasePort, "").size());
  }

  void testConnectionReportsAndKeepsNoSession() {
    const auto server = test::serverSettings();
    auto counter = test::connect();
    const std::string countSql =
        "SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE USER = '" + server.Username + "'";
    const std::string before = test::scalar(*counter, countSql);
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    QString refused, reported;
    bool editorKept = false;
    whenModal("TformAccount", [&](QWidget* editor) {
      auto* frame = child<ui::TframeAccount>(editor, "frmAccount");
      TAccount wrong = sandboxAccount();
      wrong.Password = "not the password";
      frame->setAccount(wrong);
      noteMessage(&refused);
      child<QPushButton>(editor, "btnTest")->click();
      frame->setAccount(sandboxAccount());
      noteMessage(&reported);
      child<QPushButton>(editor, "btnTest")->click();
      editorKept = editor->isVisible();
      child<QPushButton>(editor, "btnCancel")->click();
    });
    child<QPushButton>(&form, "btnAdd")->click();
    QVERIFY2(refused.startsWith("1045\n"), qPrintable(refused));
    QVERIFY2(reported.startsWith("Connection successful.\nServer version 5.5.5-"), qPrintable(reported));
    QVERIFY(editorKept);
    QVERIFY(!session_.Connected());
    QVERIFY(TAccountStore(*settings_).names().empty());
    QTRY_COMPARE(test::scalar(*counter, countSql), before);
  }

  // Neither a refused SSH login nor a refused MySQL login behind a working tunnel leaves the
  // tunnel open; each says why and keeps the dialog.
  void aFailedConnectThroughTheSshPageClosesTheTunnel() {
    settings_->write(opt::CertificatesPath, dir_->filePath("keys").toStdString());
    const TSshKeyStore keys(dir_->filePath("keys").toStdString());
    keys.newClientKey("dialog", TSshKeyType::Ed25519);
    test::authorizeKey(keys.publicLine("dialog"));
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    auto* frame = child<ui::TframeAccount>(&form, "frmAccount");
    TAccount account = test::sshAccount();
    account.SSHPassword = "not the password";
    const auto connectShowing = [&](const TAccount& a, const QString& key) {
      frame->setAccount(a);
      child<QComboBox>(&form, "cboSSHKey")->setCurrentText(key);
      QString shown;
      noteMessage(&shown);
      child<QPushButton>(&form, "btnOk")->click();
      return shown;
    };
    const QString refused = connectShowing(account, {});
    QVERIFY2(
        refused.contains("refused the password of the user \"" + QString::fromStdString(account.SSHLogin)),
        qPrintable(refused));
    QVERIFY(!tunnel_.IsOpen());

    account.Password = "not the password";
    QVERIFY(connectShowing(account, "dialog").startsWith("1045\n"));
    QVERIFY(!tunnel_.IsOpen());
    QCOMPARE(session_.Settings.TunnelPort, 0);
    QVERIFY(form.isVisible());
  }

  // A refused secret is named and keeps the dialog with its input; the right one connects.
  void phpTunnelPageConnectsThroughTheScript() {
    const test::TunnelWebServer web;
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    child<ui::TframeAccount>(&form, "frmAccount")->setAccount(sandboxAccount());
    child<QTabWidget>(&form, "pgcConnection")->setCurrentWidget(child<QWidget>(&form, "tabPHP"));
    child<QCheckBox>(&form, "chkPHP")->setChecked(true);
    child<QLineEdit>(&form, "edtPHPUrl")->setText(QString::fromStdString(web.url()));
    auto* secret = child<QLineEdit>(&form, "edtPHPSecret");
    QVERIFY(secret->echoMode() == QLineEdit::Password);
    secret->setText("guess");
    test::renderPng(&form, "connect_php_page");
    QString shown;
    noteMessage(&shown);
    child<QPushButton>(&form, "btnOk")->click();
    QVERIFY2(shown.endsWith("\nThe HTTP tunnel failed: the tunnel script at " +
                            QString::fromStdString(web.url()) + " refused the secret (403 Forbidden)"),
             qPrintable(shown));
    QVERIFY(form.isVisible());
    QVERIFY(!session_.Connected());
    QCOMPARE(secret->text(), QString("guess"));

    secret->setText(QString::fromUtf8(test::kTunnelSecret));
    child<QPushButton>(&form, "btnOk")->click();
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QVERIFY(session_.Connected());
    QCOMPARE(test::scalar(session_, "SELECT @@port"), std::to_string(test::serverSettings().Port));
    session_.Disconnect();
  }

  void savedTunnelScriptCarriesThePagesSecret() {
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    child<QLineEdit>(&form, "edtPHPSecret")->setText("it's mine");
    const QString file = dir_->filePath("tunnel.php");
    QTimer::singleShot(0, [file] {
      QFileDialog* dialog = nullptr;
      QTRY_VERIFY((dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())));
      dialog->selectFile(file);
      QMetaObject::invokeMethod(dialog, &QDialog::accept);
    });
    child<QPushButton>(&form, "btnSaveTunnelScript")->click();
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray script = saved.readAll();
    QVERIFY(script.startsWith("<?php"));
    QVERIFY(script.contains("\n$secret = 'it\\'s mine';\n"));
  }

  void renderPages() {
    TAccountStore(*settings_).add("Local sandbox", sandboxAccount());
    TAccount ssh = sandboxAccount();
    ssh.UseSSH = true;
    TAccountStore(*settings_).add("Through SSH", ssh);
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.resize(820, 480);
    form.show();
    auto* tabs = child<QTabWidget>(&form, "pgcConnection");
    for (int i = 0; i < tabs->count(); ++i) {
      tabs->setCurrentIndex(i);
      test::renderPng(&form, "connect_" + tabs->widget(i)->objectName());
    }
    whenModal("TformAccount", [](QWidget* editor) {
      test::renderPng(editor, "account_editor");
      child<QPushButton>(editor, "btnCancel")->click();
    });
    child<QPushButton>(&form, "btnAdd")->click();
  }

  void cleanup() {
    session_.Disconnect();
    session_.Settings.SocketPath.clear();
  }
};

}  // namespace

LOMARIN_UI_TEST(FormConnectTest)
#include "form_connect_test.moc"
