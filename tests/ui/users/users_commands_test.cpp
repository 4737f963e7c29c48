#include "ui/users/users_commands.h"

#include <QAction>
#include <QCheckBox>
#include <QDirIterator>
#include <QDockWidget>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "../app/shell_test_support.h"
#include "test_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/sqleditor_commands.h"
#include "ui/users/form_set_password.h"
#include "ui/users/form_user_manager.h"
#include "ui_test_registry.h"
#include "users_fixture.h"

namespace {

using lomarin::test::UsersFixture;
using lomarin::ui::Tformppal;
using lomarin::ui::TformSetPassword;
using lomarin::ui::TformUserManager;

QTreeWidgetItem* childNamed(QTreeWidgetItem* parent, const QString& text) {
  for (int i = 0; parent && i < parent->childCount(); ++i)
    if (parent->child(i)->text(0) == text) return parent->child(i);
  return nullptr;
}

QString outputText(Tformppal& window) {
  return window.paneOut()->findChild<QPlainTextEdit*>("memOutput")->toPlainText();
}

// Every file the program wrote into its data folder (the SQL history among them).
QString dataFiles(const QString& folder) {
  QString all;
  for (QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
    QFile file(it.next());
    if (file.open(QIODevice::ReadOnly)) all += QString::fromLatin1(file.readAll());
  }
  return all;
}

class UsersCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void newUserTreeDoubleClickAndPasswordNeverShowThePassword() {
    UsersFixture f;
    QTemporaryDir data;
    qputenv("LOMARIN_DATA_DIR", data.path().toUtf8());
    lomarin::test::FreshSettings fresh;
    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    lomarin::ui::installUsersCommands(window);
    QVERIFY(!window.actions().action("actaddUser")->isEnabled());
    window.MySqlSession.Settings = lomarin::test::serverSettings();
    window.MySqlSession.Connect();
    for (const char* name : {"actaddUser", "actChangeCurrentPass", "actSetPasswd"})
      QVERIFY2(window.actions().action(name)->isEnabled(), name);

    const QString user = QString::fromStdString(f.userName("cmd"));
    QString info;
    lomarin::test::onNextModal<TformUserManager>([&](TformUserManager* dialog) {
      dialog->findChild<QLineEdit*>("cxedUser")->setText(user);
      dialog->findChild<QCheckBox*>("cxchkAnyHost")->click();
      dialog->findChild<QLineEdit*>("cxedPassword")->setText("Cmd pw1");
      dialog->findChild<QLineEdit*>("cxedPasswordre")->setText("Cmd pw1");
      lomarin::test::acceptNextMessageBox(&info);
      dialog->findChild<QPushButton*>("cxbtnOk")->click();
    });
    window.actions().action("actaddUser")->trigger();
    QCOMPARE(info, "User successfully created");
    QVERIFY(f.logsIn(user.toStdString(), "Cmd pw1"));
    QTRY_VERIFY(outputText(window).contains("`" + user + "`@`%` IDENTIFIED BY '********';"));

    QTreeWidget* tree = window.explorer()->tree();
    QTreeWidgetItem* users = childNamed(tree->topLevelItem(0), "Users");
    QVERIFY(users);
    users->setExpanded(true);
    QTreeWidgetItem* node = childNamed(users, user);
    QVERIFY(node);
    QString loadedHost;
    lomarin::test::onNextModal<TformUserManager>([&](TformUserManager* dialog) {
      QCOMPARE(dialog->findChild<QLineEdit*>("cxedUser")->text(), user);
      loadedHost = dialog->findChild<QLineEdit*>("cxedHost")->text();
    });
    emit tree->itemDoubleClicked(node, 0);
    QCOMPARE(loadedHost, "%");

    tree->setCurrentItem(node);
    lomarin::test::onNextModal<TformSetPassword>([](TformSetPassword* dialog) {
      dialog->findChild<QLineEdit*>("edPassword")->setText("Cmd pw2");
      dialog->findChild<QLineEdit*>("edRePassword")->setText("Cmd pw2");
      dialog->findChild<QPushButton*>("btnOk")->click();
    });
    window.actions().action("actSetPasswd")->trigger();
    QVERIFY(f.logsIn(user.toStdString(), "Cmd pw2"));
    QTRY_VERIFY(outputText(window).contains("set password for " + user + " = PASSWORD('********')"));

    window.MySqlSession.Disconnect();
    for (const char* password : {"Cmd pw1", "Cmd pw2"}) {
      QVERIFY(!outputText(window).contains(password));
      QVERIFY(!dataFiles(data.path()).contains(password));
    }
    qunsetenv("LOMARIN_DATA_DIR");
  }
};

}  // namespace

LOMARIN_UI_TEST(UsersCommandsTest)
#include "users_commands_test.moc"
