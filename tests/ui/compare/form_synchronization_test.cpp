#include "ui/compare/form_synchronization.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include "../app/shell_test_support.h"
#include "engine/connect/my_query.h"
#include "test_server.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/compare/datasync_commands.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::TformSynchronization;

template <typename T>
T* child(QWidget& parent, const char* name) {
  T* widget = parent.findChild<T*>(name);
  if (!widget) qFatal("no widget %s", name);
  return widget;
}

void click(QWidget& wizard, const char* button) {
  QTest::mouseClick(child<QPushButton>(wizard, button), Qt::LeftButton);
}

std::string checksum(const std::string& table) {
  auto session = lomarin::test::connect("wiz_source");
  lomarin::TMyQuery query(*session);
  query.SQL = "CHECKSUM TABLE wiz_source." + table + ", wiz_target." + table + " EXTENDED";
  query.Open();
  query.Next();
  const std::string source(query.Value(1));
  query.Next();
  return source == query.Value(1) ? "equal" : "differs";
}

class FormSynchronizationTest : public QObject {
  Q_OBJECT
 private slots:
  void init() {
    using lomarin::test::sideExec;
    for (const char* db : {"wiz_source", "wiz_target"}) {
      sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
      sideExec(std::string("CREATE DATABASE ") + db);
      sideExec(std::string("CREATE TABLE ") + db +
               ".orders (id INT PRIMARY KEY, note VARCHAR(20), amount DECIMAL(8,2))");
      sideExec(std::string("CREATE TABLE ") + db + ".files (name VARCHAR(20) PRIMARY KEY, content BLOB)");
      sideExec(std::string("CREATE TABLE ") + db + ".loose (a INT)");
    }
    sideExec("CREATE TABLE wiz_source.only_here (id INT PRIMARY KEY, v INT)");
    sideExec("INSERT INTO wiz_source.orders VALUES (1, 'one', 1.5), (2, 'two', 2.25), (3, NULL, 0)");
    sideExec("INSERT INTO wiz_target.orders VALUES (2, 'TWO', 2.25), (4, 'four', 4)");
    sideExec("INSERT INTO wiz_source.files VALUES ('a.bin', x'00FF10'), ('b.bin', NULL)");
    sideExec("INSERT INTO wiz_target.files VALUES ('a.bin', x'00')");
  }

  void secondServerFieldsAreRequired() {
    QStringList shown;
    TformSynchronization wizard(lomarin::test::serverSettings(), dir.path(), nullptr,
                                [&](const QString& message) { shown << message; });
    wizard.show();
    lomarin::test::render(wizard, "synchronization_server_page");
    child<QLineEdit>(wizard, "edtPort")->clear();
    const std::vector<std::pair<const char*, QString>> fields = {
        {"edtUserName", "root"}, {"edtPassword", "secret"}, {"edtServer", "127.0.0.1"}, {"edtPort", "x"}};
    for (const auto& [name, value] : fields) {
      click(wizard, "btnNext");
      QCOMPARE(wizard.pageIndex(), 0);
      child<QLineEdit>(wizard, name)->setText(value);
    }
    QCOMPARE(shown, QStringList({"Missing username", "Missing password", "Missing server", "Missing port"}));
  }

  void synchronisesTheAutoSelectedPairsAndAppliesThem() {
    QStringList shown;
    TformSynchronization wizard(lomarin::test::serverSettings(), dir.path(), nullptr,
                                [&](const QString& message) { shown << message; });
    wizard.show();
    child<QCheckBox>(wizard, "chkCopyConnection")->click();
    QCOMPARE(child<QLineEdit>(wizard, "edtPort")->text(),
             QString::number(lomarin::test::serverSettings().Port));
    click(wizard, "btnNext");
    QCOMPARE(wizard.pageIndex(), 1);
    child<QComboBox>(wizard, "cboSourceDatabase")->setCurrentText("wiz_source");
    child<QComboBox>(wizard, "cboTargetDatabase")->setCurrentText("wiz_target");
    QVERIFY(child<QLabel>(wizard, "lblTargetVersion")->text().startsWith("Server version: "));
    lomarin::test::render(wizard, "synchronization_databases_page");
    click(wizard, "btnNext");

    auto* grid = child<QTableWidget>(wizard, "gridTables");
    QStringList pairs;
    for (int r = 0; r < grid->rowCount(); ++r)
      pairs << grid->item(r, 0)->text() + ":" + grid->item(r, 1)->text();
    QCOMPARE(pairs, QStringList({"files:files", "loose:loose", "orders:orders"}));
    lomarin::test::render(wizard, "synchronization_tables_page");
    click(wizard, "btnNext");

    child<QCheckBox>(wizard, "chkApply")->setChecked(true);
    child<QCheckBox>(wizard, "chkLogFile")->setChecked(true);
    QSignalSpy finished(&wizard, &TformSynchronization::runFinished);
    click(wizard, "btnFinish");
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
    lomarin::test::render(wizard, "synchronization_result_page");

    const QStringList& log = wizard.log();
    QVERIFY(log.contains("Compare tables files : files finalized with out errors"));
    QVERIFY(log.contains("Compare tables orders : orders finalized with out errors"));
    QVERIFY(log.contains(
        "Error compare tables loose : loose There are no key-fields for comparison. Table: loose"));
    QVERIFY(log.contains("< Script executed succesfully! >"));
    QCOMPARE(checksum("orders"), std::string("equal"));
    QCOMPARE(checksum("files"), std::string("equal"));
    QVERIFY(shown.isEmpty());

    QFile script(dir.filePath("resultscript.sql"));
    QVERIFY(script.open(QIODevice::ReadOnly));
    QVERIFY(script.readAll().startsWith("USE `wiz_target`;\r\nSET BLOBFILE '" +
                                        dir.filePath("resultscript.LOB").toUtf8()));
    QFile logFile(dir.filePath("result.log"));
    QVERIFY(logFile.open(QIODevice::ReadOnly));
    QVERIFY(logFile.readAll().contains("Compare tables orders : orders finalized with out errors\r\n"));
  }

  void stopEndsARunningComparison() {
    lomarin::test::sideExec(
        "INSERT INTO wiz_source.orders SELECT seq + 10, 'row', seq FROM wiz_source.seq_1_to_300000");
    TformSynchronization wizard(lomarin::test::serverSettings(), dir.path(), nullptr, [](const QString&) {});
    child<QCheckBox>(wizard, "chkCopyConnection")->click();
    click(wizard, "btnNext");
    child<QComboBox>(wizard, "cboSourceDatabase")->setCurrentText("wiz_source");
    child<QComboBox>(wizard, "cboTargetDatabase")->setCurrentText("wiz_target");
    child<QCheckBox>(wizard, "chkAutoSelect")->setChecked(false);
    click(wizard, "btnNext");
    auto* grid = child<QTableWidget>(wizard, "gridTables");
    QCOMPARE(grid->rowCount(), 4);  // every source table, none checked
    QCOMPARE(grid->item(2, 0)->text(), QString("only_here"));
    QCOMPARE(grid->item(2, 1)->text(), QString());
    QCOMPARE(grid->item(3, 1)->text(), QString("orders"));
    grid->item(3, 0)->setCheckState(Qt::Checked);
    click(wizard, "btnNext");
    QSignalSpy finished(&wizard, &TformSynchronization::runFinished);
    click(wizard, "btnFinish");
    QVERIFY(wizard.running());
    QVERIFY(!child<QPushButton>(wizard, "btnCancel")->isEnabled());
    click(wizard, "btnStop");
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
    QVERIFY(wizard.log().contains("Error compare tables orders : orders Stopped."));
    QVERIFY(child<QPushButton>(wizard, "btnCancel")->isEnabled());
  }

  void theMainWindowOpensTheWizard() {
    lomarin::test::FreshSettings fresh;
    lomarin::ui::Tformppal window(*fresh.store);
    lomarin::ui::installDataSyncCommands(window);
    bool shown = false;
    lomarin::test::onNextModal<TformSynchronization>([&](TformSynchronization* wizard) {
      shown = true;
      QCOMPARE(wizard->windowTitle(), QString("Database synchronization wizard"));
    });
    window.actions().action("actdbdatasyn")->trigger();
    QVERIFY(shown);
  }

 private:
  QTemporaryDir dir;
};

}  // namespace

LOMARIN_UI_TEST(FormSynchronizationTest)
#include "form_synchronization_test.moc"
