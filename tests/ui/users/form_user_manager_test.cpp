#include "ui/users/form_user_manager.h"

#include <Qsci/qsciscintilla.h>

#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

#include "../app/shell_test_support.h"
#include "find_child.h"
#include "test_server.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"
#include "users_fixture.h"

namespace {

using lomarin::test::UsersFixture;
using lomarin::ui::TformUserManager;

using lomarin::test::child;

void setText(QWidget* dialog, const char* name, const QString& text) {
  child<QLineEdit>(dialog, name)->setText(text);
}

// Typed, so the dialog sees the edit as the user's.
void typePassword(QWidget* dialog, const QString& password) {
  for (const char* name : {"cxedPassword", "cxedPasswordre"}) {
    child<QLineEdit>(dialog, name)->clear();
    QTest::keyClicks(child<QLineEdit>(dialog, name), password);
  }
}

QListWidgetItem* globalItem(QWidget* dialog, const QString& text) {
  const auto found = child<QListWidget>(dialog, "cxchkPrivs")->findItems(text, Qt::MatchExactly);
  return found.isEmpty() ? nullptr : found.front();
}

void setGlobal(QWidget* dialog, const QString& text, bool checked) {
  globalItem(dialog, text)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

QTableWidgetItem* cell(QWidget* dialog, const QString& database, const QString& caption) {
  auto* grid = child<QTableWidget>(dialog, "fraSchemaPrivs");
  for (int r = 0; r < grid->rowCount(); ++r)
    for (int c = 0; r < grid->rowCount() && c < grid->columnCount(); ++c)
      if (grid->item(r, 0)->text() == database && grid->horizontalHeaderItem(c)->text() == caption)
        return grid->item(r, c);
  qWarning("no cell %s/%s", qPrintable(database), qPrintable(caption));
  return nullptr;
}

QString sqlPage(TformUserManager& dialog) { return dialog.sqlFrame()->memo()->text(); }

std::string hashOf(UsersFixture& f, const std::string& password) {
  return lomarin::test::scalar(*f.session, "SELECT PASSWORD('" + password + "')");
}

std::string scalarOf(UsersFixture& f, const std::string& sql) {
  return lomarin::test::scalar(*f.session, sql);
}

class FormUserManagerTest : public QObject {
  Q_OBJECT
 private slots:
  void defaultsListsAndTheGridColumnsOfTheServer() {
    UsersFixture f;
    TformUserManager dialog(*f.session, *f.settings, f.reporter());
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("User Manager"));
    for (const char* name : {"cxqueries", "cxupdates", "cxConnections"})
      QCOMPARE(child<QLineEdit>(&dialog, name)->text(), "0");
    auto* list = child<QListWidget>(&dialog, "cxchkPrivs");
    QCOMPARE(list->count(), 27);
    QCOMPARE(list->item(13)->text(), "Show databases");
    QCOMPARE(list->item(26)->text(), "Trigger");
    QCOMPARE(f.takeStatements(),
             (std::vector<std::string>{"SELECT * FROM mysql.db LIMIT 0", "Show databases "}));

    auto* grid = child<QTableWidget>(&dialog, "fraSchemaPrivs");
    QCOMPARE(grid->columnCount(), 19);
    QCOMPARE(grid->horizontalHeaderItem(0)->text(), "Database");
    QCOMPARE(grid->horizontalHeaderItem(1)->text(), "Enabled");
    QCOMPARE(grid->horizontalHeaderItem(8)->text(), "grant");
    QCOMPARE(grid->horizontalHeaderItem(18)->text(), "trigger");
    QVERIFY(cell(&dialog, UsersFixture::kDatabaseA, "select"));
    QVERIFY(cell(&dialog, "information_schema", "select"));

    child<QCheckBox>(&dialog, "cxchkallprivs")->click();
    for (int i = 0; i < list->count(); ++i) QCOMPARE(list->item(i)->checkState(), Qt::Checked);
    child<QCheckBox>(&dialog, "cxchkallprivs")->click();
    for (int i = 0; i < list->count(); ++i) QCOMPARE(list->item(i)->checkState(), Qt::Unchecked);

    cell(&dialog, UsersFixture::kDatabaseB, "Enabled")->setCheckState(Qt::Checked);
    QCOMPARE(cell(&dialog, UsersFixture::kDatabaseB, "trigger")->checkState(), Qt::Checked);
    cell(&dialog, UsersFixture::kDatabaseB, "Enabled")->setCheckState(Qt::Unchecked);
    QCOMPARE(cell(&dialog, UsersFixture::kDatabaseB, "select")->checkState(), Qt::Unchecked);
    cell(&dialog, UsersFixture::kDatabaseB, "drop")->setCheckState(Qt::Checked);
    QCOMPARE(cell(&dialog, UsersFixture::kDatabaseB, "Enabled")->checkState(), Qt::Checked);
  }

  void createdAccountLogsInWithExactlyItsGrants() {
    UsersFixture f;
    const std::string user = f.userName("new");
    const QString password = "pa'ss w0rd";
    TformUserManager dialog(*f.session, *f.settings, f.reporter());
    dialog.show();
    setText(&dialog, "cxedUser", QString::fromStdString(user));
    child<QCheckBox>(&dialog, "cxchkAnyHost")->click();
    QCOMPARE(child<QLineEdit>(&dialog, "cxedHost")->text(), "%");
    typePassword(&dialog, password);
    setText(&dialog, "cxqueries", "50");
    setText(&dialog, "cxConnections", "3");
    for (const char* privilege : {"Select", "Process", "Show databases"}) setGlobal(&dialog, privilege, true);
    cell(&dialog, UsersFixture::kDatabaseA, "select")->setCheckState(Qt::Checked);
    cell(&dialog, UsersFixture::kDatabaseA, "insert")->setCheckState(Qt::Checked);
    cell(&dialog, UsersFixture::kDatabaseB, "grant")->setCheckState(Qt::Checked);
    lomarin::test::render(dialog, "user_manager_create");
    f.takeStatements();

    QString info;
    lomarin::test::acceptNextMessageBox(&info);
    child<QPushButton>(&dialog, "cxbtnOk")->click();
    QCOMPARE(info, "User successfully created");
    QCOMPARE(dialog.result(), int(QDialog::Accepted));

    const std::string account = "`" + user + "`@`%`";
    // %1 the password, %2 the account.
    const QString script = QString(
        "GRANT USAGE ON *.* TO %2 IDENTIFIED BY '%1' WITH  MAX_QUERIES_PER_HOUR 50 MAX_CONNECTIONS_PER_HOUR "
        "50;\n"
        "GRANT Select ON *.* TO  %2;\n"
        "GRANT Process ON *.* TO  %2;\n"
        "GRANT Show databases ON *.* TO  %2;\n"
        "GRANT select ON users_ui_a.* TO  %2;\n"
        "GRANT insert ON users_ui_a.* TO  %2;\n"
        "GRANT grant option ON users_ui_b.* TO  %2;");
    const QString shown = QString::fromStdString(account);
    QCOMPARE(f.takeStatements(), std::vector<std::string>{script.arg("********", shown).toStdString()});
    QCOMPARE(sqlPage(dialog), script.arg("pa\\'ss w0rd", shown));

    QVERIFY(f.logsIn(user, password.toStdString()));
    auto grants = f.grants(user, "%");
    QCOMPARE(grants.size(), size_t(3));
    std::sort(grants.begin() + 1, grants.end());
    QCOMPARE(grants[0], "GRANT SELECT, PROCESS, SHOW DATABASES ON *.* TO " + account +
                            " IDENTIFIED BY PASSWORD '" + hashOf(f, "pa''ss w0rd") +
                            "' WITH MAX_QUERIES_PER_HOUR 50 MAX_CONNECTIONS_PER_HOUR 50");
    QCOMPARE(grants[1], "GRANT SELECT, INSERT ON `users_ui_a`.* TO " + account);
    QCOMPARE(grants[2], "GRANT USAGE ON `users_ui_b`.* TO " + account + " WITH GRANT OPTION");
    QCOMPARE(scalarOf(f,
                      "SELECT CONCAT(max_questions, ' ', max_updates, ' ', max_connections) FROM mysql.user "
                      "WHERE User = '" +
                          user + "'"),
             std::string("50 0 50"));
  }

  void changeModeSendsOnlyWhatChangedAndANewPassword() {
    UsersFixture f;
    const std::string user = f.userName("chg");
    const std::string account = "`" + user + "`@`127.0.0.1`";
    lomarin::test::sideExec(
        "GRANT SELECT, INSERT ON *.* TO " + account +
        " IDENTIFIED BY 'old' WITH MAX_QUERIES_PER_HOUR 10 MAX_CONNECTIONS_PER_HOUR 4294967295");
    lomarin::test::sideExec("GRANT DELETE ON users_ui_b.* TO " + account);
    {
      TformUserManager dialog(*f.session, *f.settings, f.reporter(), QString::fromStdString(user));
      dialog.show();
      QCOMPARE(child<QLineEdit>(&dialog, "cxedUser")->text(), QString::fromStdString(user));
      QCOMPARE(child<QLineEdit>(&dialog, "cxedHost")->text(), "127.0.0.1");
      QCOMPARE(child<QLineEdit>(&dialog, "cxqueries")->text(), "10");
      QCOMPARE(globalItem(&dialog, "Insert")->checkState(), Qt::Checked);
      QCOMPARE(globalItem(&dialog, "Update")->checkState(), Qt::Unchecked);
      QCOMPARE(cell(&dialog, UsersFixture::kDatabaseB, "delete")->checkState(), Qt::Checked);
      QCOMPARE(cell(&dialog, UsersFixture::kDatabaseB, "Enabled")->checkState(), Qt::Checked);
      QCOMPARE(cell(&dialog, UsersFixture::kDatabaseA, "Enabled")->checkState(), Qt::Unchecked);
      child<QTabWidget>(&dialog, "pgcUser")->setCurrentIndex(1);
      lomarin::test::render(dialog, "user_manager_schema");
      setGlobal(&dialog, "Insert", false);
      setGlobal(&dialog, "Update", true);
      typePassword(&dialog, "new pw");
      f.takeStatements();
      QString info;
      lomarin::test::acceptNextMessageBox(&info);
      child<QPushButton>(&dialog, "cxbtnOk")->click();
      QCOMPARE(info, "User successfully altered");
      QCOMPARE(f.takeStatements(),
               std::vector<std::string>{QString("GRANT USAGE ON *.* TO %1 IDENTIFIED BY '********' WITH  "
                                                "MAX_QUERIES_PER_HOUR 10 MAX_UPDATES_PER_HOUR 10 "
                                                "MAX_CONNECTIONS_PER_HOUR 4294967295;\n"
                                                "REVOKE Insert ON *.* FROM  %1;\nGRANT Update ON *.* TO  %1;")
                                            .arg(QString::fromStdString(account))
                                            .toStdString()});
    }
    QVERIFY(!f.logsIn(user, "old"));
    QVERIFY(f.logsIn(user, "new pw"));
    QCOMPARE(f.grants(user, "127.0.0.1"),
             (std::vector<std::string>{"GRANT SELECT, UPDATE ON *.* TO " + account +
                                           " IDENTIFIED BY PASSWORD '" + hashOf(f, "new pw") +
                                           "' WITH MAX_QUERIES_PER_HOUR 10 MAX_UPDATES_PER_HOUR 10 "
                                           "MAX_CONNECTIONS_PER_HOUR 4294967295",
                                       "GRANT DELETE ON `users_ui_b`.* TO " + account}));

    // Untouched, the stored hash in the password boxes is never sent.
    TformUserManager again(*f.session, *f.settings, f.reporter(), QString::fromStdString(user));
    again.show();
    f.takeStatements();
    QString info;
    lomarin::test::acceptNextMessageBox(&info);
    child<QPushButton>(&again, "cxbtnOk")->click();
    QCOMPARE(f.takeStatements(),
             std::vector<std::string>{"GRANT USAGE ON *.* TO " + account +
                                      " WITH  MAX_QUERIES_PER_HOUR 10 MAX_UPDATES_PER_HOUR 10 "
                                      "MAX_CONNECTIONS_PER_HOUR 4294967295 ;"});
    QVERIFY(f.logsIn(user, "new pw"));
  }

  void validationInOrderAndARefusedScriptKeepsTheDialogOpen() {
    UsersFixture f;
    const std::string user = f.userName("bad");
    TformUserManager dialog(*f.session, *f.settings, f.reporter());
    dialog.show();
    f.takeStatements();
    auto* ok = child<QPushButton>(&dialog, "cxbtnOk");
    ok->click();
    setText(&dialog, "cxedUser", QString::fromStdString(user));
    ok->click();
    setText(&dialog, "cxedHost", "127.0.0.1");
    ok->click();
    setText(&dialog, "cxedPassword", "one");
    setText(&dialog, "cxedPasswordre", "two");
    ok->click();
    QCOMPARE(f.shown,
             QStringList({"Missing name.", "Missing host.", "Missing password.", "Passwords don't match"}));
    QVERIFY(f.takeStatements().empty());

    setText(&dialog, "cxedPasswordre", "one");
    cell(&dialog, "information_schema", "select")->setCheckState(Qt::Checked);
    ok->click();
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(child<QTabWidget>(&dialog, "pgcUser")->currentWidget()->objectName(), "tsSQL");
    QVERIFY(sqlPage(dialog).endsWith(
        QString::fromStdString("GRANT select ON information_schema.* TO  `" + user + "`@`127.0.0.1`;")));
    QCOMPARE(f.shown.size(), 5);
    QVERIFY2(f.shown.last().contains("information_schema"), qPrintable(f.shown.last()));
    QCOMPARE(child<QLineEdit>(&dialog, "cxedUser")->text(), QString::fromStdString(user));
    lomarin::test::render(dialog, "user_manager_sql_refused");
  }
};

}  // namespace

LOMARIN_UI_TEST(FormUserManagerTest)
#include "form_user_manager_test.moc"
