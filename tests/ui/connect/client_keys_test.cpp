#include <sys/stat.h>

#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_key_store.h"
#include "engine/connect/ssh_tunnel.h"
#include "find_child.h"
#include "modal_helper.h"
#include "ui/connect/connect_message.h"
#include "ui/connect/form_connect.h"
#include "ui/connect/form_key_manager.h"
#include "ui_test_registry.h"

using namespace lomarin;

namespace {

using test::child;

QStringList itemsOf(QComboBox* box) {
  QStringList items;
  for (int i = 0; i < box->count(); ++i) items << box->itemText(i);
  return items;
}

// Runs `answer` on the modal window named `objectName` once it is the active one. It polls
// instead of waiting, so answers to windows that open from within each other do not block; it
// gives up when `owner` goes.
void answerModal(const QString& objectName, std::function<void(QWidget*)> answer, QObject* owner = qApp) {
  auto* poll = new QTimer(owner);
  QObject::connect(poll, &QTimer::timeout, poll, [=] {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || modal->objectName() != objectName) return;
    poll->stop();
    poll->deleteLater();
    answer(modal);
  });
  poll->start(10);
}

// Answers the key dialog that `button` opens with a name (for an import, a file and the
// passphrase it is asked for). Returns the message shown when the store refused the key.
QString keyDialog(QPushButton* button, const QString& name, const QString& file = {},
                  const QString& passphrase = {}) {
  QString refused;
  answerModal("TformClientKey", [&](QWidget* dialog) {
    child<QLineEdit>(dialog, "edtKeyName")->setText(name);
    if (!file.isEmpty()) child<QLineEdit>(dialog, "edtKeyFile")->setText(file);
    test::renderPng(dialog, dialog->windowTitle());
    if (!passphrase.isEmpty()) {
      answerModal("KeyPassphrase", [passphrase](QWidget* box) {
        static_cast<QInputDialog*>(box)->setTextValue(passphrase);
        static_cast<QInputDialog*>(box)->accept();
      });
    }
    answerModal(
        ui::kConnectMessageName,
        [&, dialog](QWidget* box) {
          refused = static_cast<QMessageBox*>(box)->text();
          box->close();
          child<QPushButton>(dialog, "btnCancel")->click();
        },
        dialog);
    child<QPushButton>(dialog, "btnOk")->click();
  });
  button->click();
  return refused;
}

class ClientKeysTest : public QObject {
  Q_OBJECT

  std::unique_ptr<QTemporaryDir> dir_;
  std::unique_ptr<SettingsStore> settings_;
  std::unique_ptr<TSshKeyStore> keys_;
  TSshTunnel tunnel_;
  TMyConnection session_;

 private slots:
  void init() {
    dir_ = std::make_unique<QTemporaryDir>();
    settings_ = std::make_unique<SettingsStore>(dir_->filePath("settings.sqlite").toStdString());
    const std::string folder = dir_->filePath("keys").toStdString();
    settings_->write(opt::CertificatesPath, folder);
    keys_ = std::make_unique<TSshKeyStore>(folder);
  }

  void theSshPageMakesImportsAndDeletesKeys() {
    keys_->newClientKey("existing", TSshKeyType::Ed25519);
    ui::TformConnect form(*settings_, session_, tunnel_);
    form.show();
    auto* list = child<QComboBox>(&form, "cboSSHKey");
    auto* remove = child<QPushButton>(&form, "btnDeleteKey");
    QCOMPARE(itemsOf(list), QStringList{"existing"});
    QCOMPARE(list->currentIndex(), -1);
    QVERIFY(!remove->isEnabled());

    // A new key is stored privately and chosen; a taken name is refused and stores nothing.
    QCOMPARE(keyDialog(child<QPushButton>(&form, "btnNewKey"), "laptop"), QString());
    QCOMPARE(itemsOf(list), (QStringList{"existing", "laptop"}));
    QCOMPARE(list->currentText(), QString("laptop"));
    QVERIFY(remove->isEnabled());
    struct stat info {};
    QCOMPARE(::stat(keys_->clientKeyFile("laptop").c_str(), &info), 0);
    QCOMPARE(info.st_mode & 0777, 0600u);
    const std::string laptop = keys_->publicLine("laptop");
    QVERIFY2(laptop.starts_with("ssh-ed25519 ") && laptop.ends_with(" laptop"), laptop.c_str());
    const QString taken = keyDialog(child<QPushButton>(&form, "btnNewKey"), "laptop");
    QVERIFY2(taken.contains("exists already"), qPrintable(taken));
    QCOMPARE(keys_->publicLine("laptop"), laptop);

    // An imported protected key asks for its passphrase; a wrong one stores nothing.
    const QString file = dir_->filePath("id_protected");
    QCOMPARE(QProcess::execute("ssh-keygen", {"-q", "-t", "ed25519", "-N", "s3cret", "-f", file}), 0);
    const QString wrong = keyDialog(child<QPushButton>(&form, "btnImportKey"), "server", file, "wrong");
    QVERIFY2(wrong.contains("passphrase does not open"), qPrintable(wrong));
    QVERIFY(!keys_->hasClientKey("server"));
    QCOMPARE(keyDialog(child<QPushButton>(&form, "btnImportKey"), "server", file, "s3cret"), QString());
    QCOMPARE(list->currentText(), QString("server"));
    QProcess publicPart;
    publicPart.start("ssh-keygen", {"-y", "-P", "s3cret", "-f", file});
    QVERIFY(publicPart.waitForFinished());
    QCOMPARE(QString::fromStdString(keys_->publicLine("server")).section(' ', 0, 1),
             QString(publicPart.readAllStandardOutput()).trimmed().section(' ', 0, 1));

    // Deleting asks first: "No" keeps the key.
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
      answerModal("ConfirmDeleteKey", [answer](QWidget* box) {
        QVERIFY(static_cast<QMessageBox*>(box)->text().contains("\"server\""));
        static_cast<QMessageBox*>(box)->button(answer)->click();
      });
      remove->click();
      QCOMPARE(keys_->hasClientKey("server"), answer == QMessageBox::No);
    }
    QCOMPARE(itemsOf(list), (QStringList{"existing", "laptop"}));
    QCOMPARE(list->currentIndex(), -1);
    QVERIFY(!remove->isEnabled());

    child<QTabWidget>(&form, "pgcConnection")->setCurrentWidget(form.findChild<QWidget*>("tabSSH"));
    list->setCurrentText("laptop");
    test::renderPng(&form, "connect_ssh_keys");
  }

  void theKeyManagerListsKeysAndCopiesThePublicLine() {
    keys_->newClientKey("deploy", TSshKeyType::Rsa3072);
    keys_->newClientKey("laptop", TSshKeyType::Ed25519);
    ui::TformKeyManager manager(*keys_);
    manager.show();
    auto* list = child<QTreeWidget>(&manager, "lvKeys");
    QCOMPARE(list->topLevelItemCount(), 2);
    const QTreeWidgetItem* rsa = list->topLevelItem(0);
    QCOMPARE(rsa->text(0), QString("deploy"));
    QCOMPARE(rsa->text(1), QString("ssh-rsa"));
    QCOMPARE(rsa->text(2), QString::fromStdString(keys_->fingerprint("deploy")));
    QVERIFY(rsa->text(2).startsWith("SHA256:"));
    QCOMPARE(list->topLevelItem(1)->text(1), QString("ssh-ed25519"));

    list->setCurrentItem(list->topLevelItem(1));
    QCOMPARE(child<QLineEdit>(&manager, "edtPublicKey")->text(),
             QString::fromStdString(keys_->publicLine("laptop")));
    child<QPushButton>(&manager, "btnCopyPublicKey")->click();
    QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromStdString(keys_->publicLine("laptop")));

    QCOMPARE(keyDialog(child<QPushButton>(&manager, "btnNewKey"), "build"), QString());
    QCOMPARE(list->currentItem()->text(0), QString("build"));
    QCOMPARE(list->topLevelItemCount(), 3);
    test::renderPng(&manager, "key_manager");

    answerModal("ConfirmDeleteKey",
                [](QWidget* box) { static_cast<QMessageBox*>(box)->button(QMessageBox::Yes)->click(); });
    child<QPushButton>(&manager, "btnDeleteKey")->click();
    QCOMPARE(list->topLevelItemCount(), 2);
    QVERIFY(!keys_->hasClientKey("build"));
  }
};

}  // namespace

LOMARIN_UI_TEST(ClientKeysTest)
#include "client_keys_test.moc"
