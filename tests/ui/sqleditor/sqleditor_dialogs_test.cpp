#include <Qsci/qsciscintilla.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <filesystem>

#include "engine/app/settings_store.h"
#include "engine/connect/sql_monitor.h"
#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/query_params.h"
#include "engine/sqleditor/script_services.h"
#include "find_child.h"
#include "render_path.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "ui/sqleditor/form_exec_script.h"
#include "ui/sqleditor/form_parameters_monitor.h"
#include "ui/sqleditor/form_params_manager.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"
#include "ui/sqleditor/script_progress.h"
#include "ui_test_registry.h"

namespace {

using namespace lomarin;
using namespace lomarin::ui;

void snapshot(QWidget* widget, const char* name) {
  widget->grab().save(test::renderPath(QString(name) + ".png"));
}

using test::child;

// Runs check on the modal dialog once it is up.
void whenModal(std::function<void(QDialog*)> check) {
  QTimer::singleShot(0, [check] {
    QDialog* dialog = nullptr;
    QTRY_VERIFY((dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) != nullptr);
    check(dialog);
  });
}

class SqlEditorDialogsTest : public QObject {
  Q_OBJECT

  std::filesystem::path folder_;

 private slots:
  void init() {
    folder_ = std::filesystem::temp_directory_path() / "lomarin_ui_sqleditor";
    std::filesystem::remove_all(folder_);
  }
  void cleanup() { std::filesystem::remove_all(folder_); }

  void execScriptShowsTheTextReadOnlyAndRunsIt() {
    std::filesystem::create_directories(folder_);
    SettingsStore settings((folder_ / "settings.db").string());
    auto session = test::connect();
    TMySQLMonitor monitor;
    QStringList sent;
    test::recordStatements(monitor, sent);
    session->setMonitor(&monitor);
    QStringList shown;
    const QString faulty = "create table ui_exec (a int) engine = nosuch_engine_x";
    TformExecScript bad(*session, settings, faulty, [&](const QString& m) { shown << m; });
    QCOMPARE(bad.windowTitle(), QString("Exec SQL"));
    TframeecSQL* frame = child<TframeecSQL>(&bad, "frameSQL");
    QVERIFY(frame->isReadOnly());
    QCOMPARE(frame->memo()->text(), faulty);
    bad.show();
    snapshot(&bad, "exec_script");
    QTest::keyClicks(frame->memo(), "xy");
    QCOMPARE(frame->memo()->text(), faulty);
    child<QPushButton>(&bad, "btnExecute")->click();
    QCOMPARE(sent, QStringList{faulty});
    QCOMPARE(shown.size(), 1);
    QVERIFY(shown[0].contains("nosuch_engine_x"));
    QVERIFY(bad.isVisible());
    QVERIFY(!bad.Success());
    QCOMPARE(frame->memo()->text(), faulty);

    test::sideExec("DROP TABLE IF EXISTS lomarin_test.ui_exec");
    TformExecScript good(*session, settings, "create table ui_exec (a int)", {});
    good.show();
    QVERIFY(QTest::qWaitForWindowActive(&good));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);  // Enter runs, not the memo
    QVERIFY(good.Success());
    QVERIFY(!good.isVisible());
    QCOMPARE(good.result(), int(QDialog::Accepted));
    QCOMPARE(sent.last(), QString("create table ui_exec (a int)"));
    QCOMPARE(test::scalar(*session,
                          "SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_SCHEMA = "
                          "'lomarin_test' AND TABLE_NAME = 'ui_exec'"),
             std::string("1"));

    TformExecScript closed(*session, settings, "drop table ui_exec", {});
    closed.show();
    const qsizetype before = sent.size();
    child<QPushButton>(&closed, "btnClose")->click();
    QCOMPARE(closed.result(), int(QDialog::Rejected));
    QCOMPARE(sent.size(), before);
    test::sideExec("DROP TABLE IF EXISTS lomarin_test.ui_exec");
  }

  void askMacroValuesFormatsStoresAndStopsAtCancel() {
    TMyParams params(folder_);
    TMacros macros = MacrosOf("select * from t where price > &price and name = &name");
    QStringList shown;
    whenModal([this](QDialog* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("Parameter Manager"));
      QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QString("price"));
      QVERIFY(child<QCheckBox>(dialog, "chkSaveVariable")->isChecked());
      QVERIFY(!child<QCheckBox>(dialog, "chkUseOldParam")->isChecked());
      child<QComboBox>(dialog, "cboDataType")->setCurrentText("Float");
      child<QLineEdit>(dialog, "edtValue")->setText("3.5");
      snapshot(dialog, "params_manager");
      child<QPushButton>(dialog, "btnOk")->click();
      whenModal([](QDialog* second) {
        QCOMPARE(child<QLineEdit>(second, "edtName")->text(), QString("name"));
        child<QPushButton>(second, "btnCancel")->click();
      });
    });
    const auto escape = [](std::string_view value) { return "<" + std::string(value) + ">"; };
    QVERIFY(!AskMacroValues(
        macros, params, escape, [&](const QString& m) { shown << m; }, nullptr));
    QCOMPARE(macros[0].Value, std::string("'<3,5>'"));
    QCOMPARE(macros[1].Value, std::string());
    QVERIFY(shown.isEmpty());
    params.LoadFile();
    QCOMPARE(params.Table().RecordCount(), size_t(1));
    QCOMPARE(params.Table().Records()[0], (TVirtualTable::Record{"price", "3.5", "Float"}));
  }

  void oldParamIsUsedOrReportedMissing() {
    TMyParams params(folder_);
    params.addRecToParamas("id", "7", "Integer");
    QStringList shown;
    TformParamsManager missing(params, "other", true, {}, [&](const QString& m) { shown << m; });
    missing.show();
    child<QCheckBox>(&missing, "chkUseOldParam")->setChecked(true);
    child<QPushButton>(&missing, "btnOk")->click();
    QCOMPARE(shown, QStringList{"Variable not found in  the old values."});
    QVERIFY(missing.isVisible());

    TformParamsManager found(params, "id", true, {}, {});
    found.show();
    QCOMPARE(child<QTableView>(&found, "grdOldValues")->currentIndex().row(), 0);
    child<QCheckBox>(&found, "chkUseOldParam")->setChecked(true);
    child<QPushButton>(&found, "btnOk")->click();
    QCOMPARE(found.result(), int(QDialog::Accepted));
    QCOMPARE(found.Result(), QString("7"));
  }

  void scriptRunsBesideTheWindowAndStops() {
    auto session = test::connect();
    TMyScript script(*session);
    script.SQL = "select 1; select * from no_such_table; select sleep(5); select 2;";
    std::string errors;
    bool errorsOnGuiThread = false;
    script.OnError = [&](const ServerError& error, const std::string& statement, TErrorAction& action) {
      errorsOnGuiThread = QThread::currentThread() == qApp->thread();
      ScriptError(errors, error, statement, action);
    };
    TSessionActivity activity(*session);
    TWaitPanel panel;
    std::chrono::steady_clock::time_point stopAsked;
    bool panelShown = false;
    // Polled without waiting inside: the run's own event loop must get on meanwhile.
    QTimer poll;
    poll.setInterval(50);
    QObject::connect(&poll, &QTimer::timeout, [&] {
      if (!panel.isVisible() || QApplication::activeModalWidget()) return;
      poll.stop();
      panelShown = true;
      snapshot(&panel, "script_progress");
      stopAsked = std::chrono::steady_clock::now();
      child<QPushButton>(&panel, "btnStop")->click();
    });
    poll.start();
    RunScriptWithProgress(activity, script, &panel, "Running script");
    QVERIFY(panelShown);
    QVERIFY(!panel.isVisible());
    QVERIFY(std::chrono::steady_clock::now() - stopAsked < std::chrono::seconds(1));
    QVERIFY(script.Stopped());
    QVERIFY(errorsOnGuiThread);
    QCOMPARE(errors,
             std::string("select * from no_such_table\rTable 'lomarin_test.no_such_table' doesn't exist\n"));

    // A quick run shows no dialog, and a failure without a handler comes back here.
    script.OnError = nullptr;
    script.SQL = "select 1; select * from no_such_table";
    bool thrown = false;
    try {
      RunScriptWithProgress(activity, script, nullptr, "Running script");
    } catch (const ServerError& error) {
      thrown = error.number() == 1146;
    }
    QVERIFY(thrown);
  }

  void parametersMonitorRefreshesFromTheFile() {
    TMyParams params(folder_);
    params.addRecToParamas("id", "7", "Integer");
    TformParametersMonitor monitor(params, {});
    auto* grid = child<QTableView>(&monitor, "grdParams");
    QCOMPARE(grid->model()->rowCount(), 1);
    TMyParams(folder_).addRecToParamas("name", "abc", "String");
    child<QPushButton>(&monitor, "btnRefresh")->click();
    QCOMPARE(grid->model()->rowCount(), 2);
    QCOMPARE(grid->model()->headerData(1, Qt::Horizontal).toString(), QString("VarValue"));
    monitor.show();
    snapshot(&monitor, "parameters_monitor");
  }
};

}  // namespace

LOMARIN_UI_TEST(SqlEditorDialogsTest)
#include "sqleditor_dialogs_test.moc"
