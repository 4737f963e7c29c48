#include "ui/compare/form_schema_compare.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>

#include "../app/shell_test_support.h"
#include "engine/app/option_names.h"
#include "engine/connect/my_query.h"
#include "engine/connect/ssh_key_store.h"
#include "test_server.h"
#include "test_ssh_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/compare/schema_compare_commands.h"
#include "ssh_test_key.h"
#include "ui_test_registry.h"

using lomarin::ui::TformSchemaCompare;

namespace {

template <class T>
T* child(QWidget* parent, const char* name) {
  auto* widget = parent->findChild<T*>(name);
  if (!widget) qFatal("no widget %s", name);
  return widget;
}

void render(QWidget* widget, const QString& name) {
  widget->grab().save(lomarin::test::renderPath("schema_compare_" + name + ".png"));
}

const QString kTail = "/* Create event... */\r\n/* Alter event... */\r\n/* Drop event... */\r\n";

class FormSchemaCompareTest : public QObject {
  Q_OBJECT
 private slots:
  void init() {
    for (const char* db : {"wiz_source", "wiz_target"}) {
      lomarin::test::sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
      lomarin::test::sideExec(std::string("CREATE DATABASE ") + db);
    }
    lomarin::test::sideExec("CREATE TABLE wiz_source.t (id INT NOT NULL PRIMARY KEY, note VARCHAR(20) NULL)");
    lomarin::test::sideExec("CREATE TABLE wiz_target.t (id INT NOT NULL PRIMARY KEY)");
    lomarin::test::sideExec("INSERT INTO wiz_target.t VALUES (7)");
    session.Settings = lomarin::test::serverSettings();
    session.Connect();
  }
  void cleanup() { session.Disconnect(); }

  void pagesHoldTheirNamedWidgets() {
    TformSchemaCompare wizard(session);
    QCOMPARE(wizard.windowTitle(), QString("Structure synchronization wizard "));
    QVERIFY(child<QRadioButton>(&wizard, "rbOnline2Online")->isChecked());
    QCOMPARE(child<QLineEdit>(&wizard, "edtPort")->text(), QString("3306"));
    for (const char* on : {"chkTable", "chkView", "chkIndex", "chkPrimaryKey", "chkForeignKey", "chkUnique",
                           "chkCheck", "chkCaseSensitive"})
      QVERIFY2(child<QCheckBox>(&wizard, on)->isChecked(), on);
    for (const char* off : {"chkProcedure", "chkFunction", "chkTrigger"})
      QVERIFY2(!child<QCheckBox>(&wizard, off)->isChecked(), off);
    QVERIFY(child<QRadioButton>(&wizard, "rbVersion5")->isChecked());
    auto* charset = child<QComboBox>(&wizard, "cobCharSet");
    QCOMPARE(charset->count(), 37);
    QCOMPARE(charset->currentText(), QString("default"));
  }

  void onlineToOnlineAppliesSavesAndLogs() {
    QTemporaryDir dir;
    TformSchemaCompare wizard(session);
    wizard.show();
    render(&wizard, "1_mode");
    auto* next = child<QPushButton>(&wizard, "btnNext");
    next->click();
    QCOMPARE(wizard.currentPage(), int(TformSchemaCompare::pgServer));
    child<QPushButton>(&wizard, "btnCopyConnection")->click();
    QCOMPARE(child<QLineEdit>(&wizard, "edtServer")->text(), QString::fromStdString(session.Settings.Server));
    QCOMPARE(child<QLineEdit>(&wizard, "edtPort")->text(), QString::number(session.Settings.Port));
    render(&wizard, "2_server");
    next->click();
    QCOMPARE(wizard.currentPage(), int(TformSchemaCompare::pgDatabases));
    child<QComboBox>(&wizard, "cobSourceDb")->setCurrentText("wiz_source");
    child<QComboBox>(&wizard, "cobTargetDb")->setCurrentText("wiz_target");
    QCOMPARE(child<QComboBox>(&wizard, "cobTargetDb")->currentText(), QString("wiz_target"));
    render(&wizard, "3_databases");
    next->click();
    QCOMPARE(wizard.currentPage(), int(TformSchemaCompare::pgOptions));
    render(&wizard, "4_options");
    next->click();
    QTRY_COMPARE(wizard.currentPage(), int(TformSchemaCompare::pgResult));
    const QString script = child<QPlainTextEdit>(&wizard, "memResult")->toPlainText();
    QVERIFY2(script.startsWith(
                 "USE `wiz_target`;\n/* Drop Index... */\nALTER TABLE `t` ADD `note` varchar(20) AFTER "
                 "`id`;\n"),
             qPrintable(script));
    QVERIFY(child<QPlainTextEdit>(&wizard, "memSource")->toPlainText().contains("CREATE TABLE `t`"));
    render(&wizard, "5_result");

    child<QCheckBox>(&wizard, "chkApply")->setChecked(true);
    child<QCheckBox>(&wizard, "chkSave")->setChecked(true);
    child<QLineEdit>(&wizard, "edtResultFile")->setText(dir.filePath("result.sql"));
    child<QLineEdit>(&wizard, "edtLogFile")->setText(dir.filePath("result.log"));
    child<QPushButton>(&wizard, "btnFinish")->click();
    QTRY_VERIFY(!wizard.isVisible());
    QCOMPARE(wizard.result(), int(QDialog::Accepted));

    auto target = lomarin::test::connect("wiz_target");
    QCOMPARE(lomarin::test::scalar(*target,
                                   "SELECT COUNT(*) FROM information_schema.COLUMNS WHERE TABLE_SCHEMA = "
                                   "'wiz_target' AND COLUMN_NAME = 'note'"),
             std::string("1"));
    QCOMPARE(lomarin::test::scalar(*target, "SELECT id FROM t"), std::string("7"));
    std::ifstream saved(dir.filePath("result.sql").toStdString(), std::ios::binary);
    const std::string written((std::istreambuf_iterator<char>(saved)), std::istreambuf_iterator<char>());
    QVERIFY(written.starts_with("USE `wiz_target`;\r\n"));
    QVERIFY(wizard.log().contains("Comparing databases..."));
    QVERIFY(wizard.log().contains("Updating target database..."));
    QCOMPARE(wizard.log().last(), QString("< Script executed succesfully! >"));
    QVERIFY(QFile(dir.filePath("result.log")).size() > 0);
  }

  // The account's direct port leads nowhere: only its SSH tunnel reaches the server.
  void aStoredAccountReachesTheSecondServerThroughItsTunnel() {
    if (const std::string missing = lomarin::test::sshServerMissing(); !missing.empty())
      QSKIP(missing.c_str());
    lomarin::test::FreshSettings fresh;
    const lomarin::TSshKeyStore keys = lomarin::test::addAuthorizedKey(fresh, "cmp");
    lomarin::TAccount account = lomarin::test::sshAccount();
    account.SSHClientKey = "cmp";
    QVERIFY(lomarin::TAccountStore(*fresh.store).add("Through SSH", account));

    TformSchemaCompare wizard(session, fresh.store.get());
    wizard.show();
    auto* next = child<QPushButton>(&wizard, "btnNext");
    next->click();
    auto* accounts = child<QComboBox>(&wizard, "cobAccount");
    QCOMPARE(accounts->count(), 2);
    accounts->setCurrentText("Through SSH");
    QCOMPARE(child<QLineEdit>(&wizard, "edtUser")->text(), QString::fromStdString(account.Login));
    QCOMPARE(child<QLineEdit>(&wizard, "edtPort")->text(), QString("1"));
    render(&wizard, "2_server_account");
    next->click();
    QCOMPARE(wizard.currentPage(), int(TformSchemaCompare::pgDatabases));
    child<QComboBox>(&wizard, "cobSourceDb")->setCurrentText("wiz_source");
    child<QComboBox>(&wizard, "cobTargetDb")->setCurrentText("wiz_target");
    QCOMPARE(child<QComboBox>(&wizard, "cobTargetDb")->currentText(), QString("wiz_target"));
    next->click();
    next->click();
    QTRY_COMPARE(wizard.currentPage(), int(TformSchemaCompare::pgResult));
    QVERIFY2(child<QPlainTextEdit>(&wizard, "memResult")
                 ->toPlainText()
                 .contains("ALTER TABLE `t` ADD `note` varchar(20) AFTER `id`;\n"),
             qPrintable(wizard.log().join('\n')));
    child<QCheckBox>(&wizard, "chkApply")->setChecked(true);
    child<QPushButton>(&wizard, "btnFinish")->click();
    QTRY_VERIFY(!wizard.isVisible());
    QCOMPARE(wizard.log().last(), QString("< Script executed succesfully! >"));
    keys.deleteClientKey("cmp");
  }

  void onlineToOfflineReadsTheTargetFile() {
    QTemporaryDir dir;
    const QString file = dir.filePath("target.sql");
    std::ofstream(file.toStdString()) << "CREATE TABLE `T` (`id` int(11) NOT NULL, PRIMARY KEY (`id`));\n";
    TformSchemaCompare wizard(session);
    wizard.show();
    child<QRadioButton>(&wizard, "rbOnline2Offline")->setChecked(true);
    auto* next = child<QPushButton>(&wizard, "btnNext");
    next->click();
    QCOMPARE(wizard.currentPage(), int(TformSchemaCompare::pgDatabases));
    QVERIFY(!child<QComboBox>(&wizard, "cobTargetDb")->isVisible());
    child<QComboBox>(&wizard, "cobSourceDb")->setCurrentText("wiz_source");
    child<QLineEdit>(&wizard, "edtTargetFile")->setText(file);
    render(&wizard, "3_databases_offline");
    next->click();
    child<QCheckBox>(&wizard, "chkCaseSensitive")->setChecked(false);
    for (const char* kind :
         {"chkView", "chkIndex", "chkPrimaryKey", "chkForeignKey", "chkUnique", "chkCheck"})
      child<QCheckBox>(&wizard, kind)->setChecked(false);
    next->click();
    QTRY_COMPARE(wizard.currentPage(), int(TformSchemaCompare::pgResult));
    QVERIFY(!child<QCheckBox>(&wizard, "chkApply")->isEnabled());
    QCOMPARE(child<QPlainTextEdit>(&wizard, "memTarget")->toPlainText(),
             QString("CREATE TABLE `T` (`id` int(11) NOT NULL, PRIMARY KEY (`id`));\n"));
    // "T" and "t" are one table: it takes the source's options and the missing column.
    const QString expected =
        "ALTER TABLE `t` ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;\r\n"
        "ALTER TABLE `t` ADD `note` varchar(20) AFTER `id`;\r\n" +
        kTail;
    child<QCheckBox>(&wizard, "chkCopy")->setChecked(true);
    child<QPushButton>(&wizard, "btnFinish")->click();
    QTRY_VERIFY(!wizard.isVisible());
    QCOMPARE(QGuiApplication::clipboard()->text(), expected);
  }

  void stopEndsTheComparisonAndKeepsTheOptions() {
    QTemporaryDir dir;
    const QString file = dir.filePath("target.sql");
    std::ofstream(file.toStdString()) << "CREATE TABLE t (id INT);\n";
    TformSchemaCompare wizard(session);
    wizard.show();
    child<QRadioButton>(&wizard, "rbOnline2Offline")->setChecked(true);
    auto* next = child<QPushButton>(&wizard, "btnNext");
    next->click();
    child<QComboBox>(&wizard, "cobSourceDb")->setCurrentText("lomarin_demo");
    child<QLineEdit>(&wizard, "edtTargetFile")->setText(file);
    next->click();
    next->click();
    QVERIFY(wizard.running());
    auto* stop = child<QPushButton>(&wizard, "btnStop");
    QVERIFY(stop->isEnabled());
    QVERIFY(!next->isEnabled());
    stop->click();
    QTRY_VERIFY(!wizard.running());
    QCOMPARE(wizard.currentPage(), int(TformSchemaCompare::pgOptions));
    QCOMPARE(wizard.log().last(), QString("Stopped by the user"));
    QVERIFY(next->isEnabled());
  }

  void mainWindowActionOpensTheWizard() {
    lomarin::test::FreshSettings fresh;
    lomarin::ui::Tformppal window(*fresh.store);
    lomarin::ui::installSchemaCompareCommands(window);
    bool shown = false;
    lomarin::test::onNextModal<TformSchemaCompare>([&](TformSchemaCompare* wizard) {
      shown = true;
      QCOMPARE(wizard->parentWidget(), &window);
    });
    window.actions().action("actdbstructureSyn")->trigger();
    QVERIFY(shown);
  }

 private:
  lomarin::TMyConnection session;
};

}  // namespace

LOMARIN_UI_TEST(FormSchemaCompareTest)
#include "form_schema_compare_test.moc"
