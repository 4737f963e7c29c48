// The main window's trigger, view, function, event and routine commands and the tree's double-clicks.
#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/designers/designers_commands.h"
#include "ui/designers/form_event_manager.h"
#include "ui/designers/form_new_view.h"
#include "ui/designers/form_procedure_builder.h"
#include "ui/designers/form_trg_mgr.h"
#include "ui/designers/form_udf.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using lomarin::ui::TformNewView;
using lomarin::ui::Tformppal;
using lomarin::ui::TformProcedureBuilder;
using lomarin::ui::TformTrgMgr;
using lomarin::ui::TformUDF;
using lomarin::ui::TfrmEventManager;

QTreeWidgetItem* childNamed(QTreeWidgetItem* parent, const QString& text) {
  for (int i = 0; parent && i < parent->childCount(); ++i)
    if (parent->child(i)->text(0) == text) return parent->child(i);
  return nullptr;
}

// The folder of the test database, expanded so that it lists the objects.
QTreeWidgetItem* folder(Tformppal& window, const QString& name) {
  QTreeWidgetItem* database =
      childNamed(window.explorer()->tree()->topLevelItem(0), DesignersFixture::kDatabase);
  QTreeWidgetItem* item = childNamed(database, name);
  if (item) item->setExpanded(true);
  return item;
}

// A main window connected to the test database with the designers' commands.
struct ConnectedWindow {
  ConnectedWindow() : window(*fresh.store) {
    lomarin::ui::installDesignersCommands(window);
    window.MySqlSession.Settings = lomarin::test::serverSettings();
    window.MySqlSession.Settings.Database = DesignersFixture::kDatabase;
    window.MySqlSession.Connect();
  }
  ~ConnectedWindow() { window.MySqlSession.Disconnect(); }
  lomarin::test::FreshSettings fresh;
  Tformppal window;
};

class ProgramCommandsTest : public QObject {
  Q_OBJECT
 private slots:
  void newViewAppearsInTheTreeAndATriggerOpensFromIt() {
    DesignersFixture f(
        {"CREATE TABLE t (id INT)", "CREATE TRIGGER stamp BEFORE INSERT ON t FOR EACH ROW SET NEW.id = 1"});
    ConnectedWindow c;
    Tformppal& window = c.window;
    lomarin::test::onNextModal<TformNewView>([](TformNewView* dialog) {
      child<QLineEdit>(dialog, "edName")->setText("ids");
      dialog->fraWhere()->memo()->setText("select id from t");
      child<QPushButton>(dialog, "btnOk")->click();
    });
    window.actions().action("actNewView")->trigger();
    QVERIFY(childNamed(folder(window, "Views"), "ids"));

    lomarin::test::onNextModal<TformTrgMgr>([](TformTrgMgr* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("Trigger [designers_ui.stamp]"));
      QCOMPARE(dialog->fraWhere()->memo()->text(), QString("SET NEW.id = 1"));
    });
    emit window.explorer()->tree()->itemDoubleClicked(childNamed(folder(window, "Triggers"), "stamp"), 0);

    lomarin::test::onNextModal<TformTrgMgr>([](TformTrgMgr* dialog) {
      QCOMPARE(dialog->database(), QString(DesignersFixture::kDatabase));
      QVERIFY(!dialog->editMode());
    });
    window.actions().action("actNewTrigger")->trigger();
  }

  void eventsAndLibraryFunctionsOpenFromTheTreeAndTheirCommands() {
    DesignersFixture f({"CREATE EVENT tick ON SCHEDULE EVERY 1 HOUR DO SET @x = 1"});
    // A function row whose library the server never loaded: enough for the tree and the dialog.
    lomarin::test::sideExec(
        "INSERT INTO mysql.func (name, ret, dl, type) VALUES ('ui_fake', 2, 'fake.so', 'function')");
    ConnectedWindow c;
    Tformppal& window = c.window;
    lomarin::test::onNextModal<TfrmEventManager>([](TfrmEventManager* dialog) {
      QCOMPARE(dialog->windowTitle(), QString("EVENT [designers_ui.tick]"));
      QVERIFY(dialog->alterMode());
    });
    emit window.explorer()->tree()->itemDoubleClicked(childNamed(folder(window, "Events"), "tick"), 0);

    lomarin::test::onNextModal<TfrmEventManager>([](TfrmEventManager* dialog) {
      child<QLineEdit>(dialog, "cxEventName")->setText("made");
      dialog->fraDefinition()->memo()->setText("SET @y = 2");
      child<QPushButton>(dialog, "btnOk")->click();
    });
    window.actions().action("actNewEvent")->trigger();
    QVERIFY(childNamed(folder(window, "Events"), "made"));

    lomarin::test::onNextModal<TformUDF>([](TformUDF* dialog) {
      QCOMPARE(child<QLineEdit>(dialog, "edName")->text(), QString("ui_fake"));
      QCOMPARE(child<QLineEdit>(dialog, "rxFilename")->text(), QString("fake.so"));
      QCOMPARE(child<QComboBox>(dialog, "coboretuns")->currentText(), QString("Integer"));
    });
    emit window.explorer()->tree()->itemDoubleClicked(childNamed(folder(window, "UDFs"), "ui_fake"), 0);
    lomarin::test::sideExec("DELETE FROM mysql.func WHERE name = 'ui_fake'");

    lomarin::test::onNextModal<TformUDF>(
        [](TformUDF* dialog) { QVERIFY(dialog->state().ReplacedName.empty()); });
    window.actions().action("actNewUdf")->trigger();
  }

  void routineDocumentsOpenFromTheCommandsAndTheTree() {
    DesignersFixture f({"CREATE PROCEDURE listed(IN a INT) SELECT a"});
    ConnectedWindow c;
    Tformppal& window = c.window;
    auto active = [&window] {
      const QList<QMdiSubWindow*> documents = window.mdiArea()->subWindowList();
      return documents.isEmpty() ? nullptr : qobject_cast<TformProcedureBuilder*>(documents.last()->widget());
    };
    window.actions().action("actNewProc")->trigger();
    QVERIFY(active());
    QVERIFY(active()->frame()->memo()->text().contains("CREATE PROCEDURE new_procedure "));
    window.actions().action("actNewFunction")->trigger();
    QVERIFY(active()->frame()->memo()->text().contains("CREATE FUNCTION new_function "));
    window.actions().action("actProcBuilder")->trigger();
    QCOMPARE(active()->frame()->memo()->text(), QString());
    QCOMPARE(active()->windowTitle(), QString("Procedure Builder"));

    QTreeWidgetItem* listed = childNamed(folder(window, "Procedures"), "listed");
    QVERIFY(listed);
    emit window.explorer()->tree()->itemDoubleClicked(listed, 0);
    QCOMPARE(active()->routineName(), std::string("listed"));
    QCOMPARE(active()->parameters()->rowCount(), 1);
    window.mdiArea()->closeAllSubWindows();
  }
};

}  // namespace

LOMARIN_UI_TEST(ProgramCommandsTest)
#include "program_commands_test.moc"
