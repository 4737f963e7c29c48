#include "ui/users/form_set_password.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "../app/shell_test_support.h"
#include "engine/connect/my_query.h"
#include "test_server.h"
#include "ui_test_registry.h"
#include "users_fixture.h"

namespace {

using lomarin::test::UsersFixture;
using lomarin::ui::TformSetPassword;

void enter(TformSetPassword& dialog, const QString& password, const QString& again) {
  dialog.findChild<QLineEdit*>("edPassword")->setText(password);
  dialog.findChild<QLineEdit*>("edRePassword")->setText(again);
  dialog.findChild<QPushButton*>("btnOk")->click();
}

class FormSetPasswordTest : public QObject {
  Q_OBJECT
 private slots:
  void hostSpecificAccountAfterEntriesThatDiffer() {
    UsersFixture f;
    const std::string user = f.userName("pwh");
    lomarin::test::sideExec("CREATE USER `" + user + "`@`127.0.0.1` IDENTIFIED BY 'old'");
    TformSetPassword dialog(*f.session, f.reporter(), QString::fromStdString(user), "127.0.0.1");
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Change Database Password"));
    QVERIFY(dialog.findChild<QPushButton*>("btnCancel"));
    enter(dialog, "first", "First");
    QCOMPARE(f.shown, QStringList{"Passwords don't match"});
    QVERIFY(f.takeStatements().empty());
    QVERIFY(dialog.isVisible());
    lomarin::test::render(dialog, "set_password");

    enter(dialog, "it's new", "it's new");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(f.takeStatements(),
             std::vector<std::string>{"set password for " + user + "@127.0.0.1 = PASSWORD('********')"});
    QVERIFY(!f.logsIn(user, "old"));
    QVERIFY(f.logsIn(user, "it's new"));
  }

  void theSessionsOwnAccount() {
    UsersFixture f;
    const std::string user = f.userName("pwo");
    lomarin::test::sideExec("CREATE USER `" + user + "`@`127.0.0.1` IDENTIFIED BY 'old'");
    lomarin::TMyConnection own;
    own.Settings = lomarin::test::serverSettings();
    own.Settings.Username = user;
    own.Settings.Password = "old";
    own.Connect();
    own.setMonitor(&f.monitor);
    TformSetPassword dialog(own, f.reporter());
    dialog.show();
    enter(dialog, "mine", "mine");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(f.takeStatements(), std::vector<std::string>{"set password  = PASSWORD('********')"});
    QVERIFY(f.logsIn(user, "mine"));
  }
};

}  // namespace

LOMARIN_UI_TEST(FormSetPasswordTest)
#include "form_set_password_test.moc"
