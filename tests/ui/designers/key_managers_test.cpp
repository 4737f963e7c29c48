#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <algorithm>

#include "../app/shell_test_support.h"
#include "designers_fixture.h"
#include "test_server.h"
#include "ui/designers/form_constraint_manager.h"
#include "ui/designers/form_index_manager.h"
#include "ui_test_registry.h"

namespace {

using lomarin::test::child;
using lomarin::test::DesignersFixture;
using namespace lomarin::ui;

QStringList column(QTreeWidget* grid, int c) {
  QStringList cells;
  for (int i = 0; i < grid->topLevelItemCount(); ++i) cells << grid->topLevelItem(i)->text(c);
  return cells;
}

void check(QTreeWidget* grid, const QStringList& names, int nameColumn = 1) {
  for (int i = 0; i < grid->topLevelItemCount(); ++i) {
    QTreeWidgetItem* item = grid->topLevelItem(i);
    item->setCheckState(0, names.contains(item->text(nameColumn)) ? Qt::Checked : Qt::Unchecked);
  }
}

bool sent(const std::vector<std::string>& statements, const std::string& sql) {
  return std::find(statements.begin(), statements.end(), sql) != statements.end();
}

// Clicks OK and returns the text of the information box it shows.
QString okWithInformation(QWidget* dialog) {
  QString shown;
  lomarin::test::onNextModal<QMessageBox>([&](QMessageBox* box) { shown = box->text(); });
  child<QPushButton>(dialog, "btnOk")->click();
  return shown;
}

class KeyManagersTest : public QObject {
  Q_OBJECT
 private slots:
  void indexManagerCreatesEveryKindAndDropsThem() {
    DesignersFixture f(
        {"CREATE TABLE p (id INT NOT NULL PRIMARY KEY, a INT, b INT, body TEXT, g POINT NOT NULL) "
         "ENGINE=InnoDB"});
    QStringList shown;
    TformIndexManager dialog(
        *f.session, [&](const QString& message) { shown << message; }, DesignersFixture::kDatabase, "p");
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Index Manager"));
    auto* columns = child<QTreeWidget>(&dialog, "grdColumns");
    auto* drops = child<QTreeWidget>(&dialog, "grdDrop");
    QCOMPARE(column(columns, 1), QStringList({"id", "a", "b", "body", "g"}));
    QCOMPARE(column(columns, 2).at(0), QString("int(11)"));
    QCOMPARE(drops->topLevelItemCount(), 0);  // the primary key is never listed
    lomarin::test::render(dialog, "TformIndexManager");

    child<QPushButton>(&dialog, "btnOk")->click();
    child<QLineEdit>(&dialog, "edtIndexName")->setText("ix_a");
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(shown, QStringList({"Missing index name.", "There is not an select column."}));

    struct Kind {
      const char* caption;
      const char* name;
      QStringList columns;
      const char* sql;
    };
    const Kind kinds[] = {{"Unique Index", "ix_a", {"a", "b"}, "CREATE UNIQUE INDEX ix_a  on p(a,b)"},
                          {"Normal Index", "ix_n", {"a"}, "CREATE INDEX ix_n  on p(a)"},
                          {"FullText Index", "ix_f", {"body"}, "CREATE FULLTEXT INDEX ix_f  on p(body)"},
                          {"Spatial", "ix_s", {"g"}, "CREATE SPATIAL INDEX ix_s  on p(g)"}};
    for (const Kind& kind : kinds) {
      child<QComboBox>(&dialog, "coboType")->setCurrentText(kind.caption);
      child<QLineEdit>(&dialog, "edtIndexName")->setText(kind.name);
      check(columns, kind.columns);
      f.takeStatements();
      QCOMPARE(okWithInformation(&dialog), QString("Index %1 created ").arg(kind.name));
      QVERIFY2(sent(f.takeStatements(), kind.sql), kind.sql);
      QVERIFY(child<QLineEdit>(&dialog, "edtIndexName")->text().isEmpty());
      QCOMPARE(columns->topLevelItem(1)->checkState(0), Qt::Unchecked);
    }
    // The server refuses a name in use: the dialog keeps the name and the checked columns.
    child<QLineEdit>(&dialog, "edtIndexName")->setText("ix_a");
    check(columns, {"b"});
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QCOMPARE(child<QLineEdit>(&dialog, "edtIndexName")->text(), QString("ix_a"));
    QCOMPARE(columns->topLevelItem(2)->checkState(0), Qt::Checked);
    f.serverErrors.clear();

    const std::string created = f.createText("p");
    for (const char* key : {"UNIQUE KEY `ix_a` (`a`,`b`)", "KEY `ix_n` (`a`)", "FULLTEXT KEY `ix_f` (`body`)",
                            "SPATIAL KEY `ix_s` (`g`)"})
      QVERIFY2(created.find(key) != std::string::npos, created.c_str());

    child<QTabWidget>(&dialog, "pgcKeys")->setCurrentIndex(1);
    // In the server's order, which puts the full-text index last.
    QCOMPARE(column(drops, 1), QStringList({"ix_a", "ix_n", "ix_s", "ix_f"}));
    lomarin::test::render(dialog, "TformIndexManager-drop");
    shown.clear();
    child<QPushButton>(&dialog, "btnOk")->click();
    QCOMPARE(shown, QStringList{"There is not an select index."});
    child<QCheckBox>(&dialog, "chkall")->setChecked(true);
    // One index goes behind the dialog's back: its drop fails and the others still go.
    lomarin::test::sideExec("DROP INDEX ix_n ON designers_ui.p");
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    const std::vector<std::string> statements = f.takeStatements();
    for (const char* name : {"ix_a", "ix_n", "ix_f", "ix_s"})
      QVERIFY(sent(statements, std::string(" DROP INDEX ") + name + " ON designers_ui.p"));
    QCOMPARE(f.serverErrors.size(), size_t(1));
    QCOMPARE(drops->topLevelItemCount(), 0);
    QVERIFY(f.createText("p").find("KEY `") == std::string::npos);
  }

  void constraintManagerAddsAndDropsKeys() {
    DesignersFixture f({"CREATE TABLE customers (id INT NOT NULL, code VARCHAR(5)) ENGINE=InnoDB",
                        "CREATE TABLE orders (oid INT NOT NULL PRIMARY KEY, cid INT) ENGINE=InnoDB"});
    TformConstraintManager dialog(*f.session, {}, DesignersFixture::kDatabase, "customers");
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QString("Constraint Manager"));
    auto* columns = child<QTreeWidget>(&dialog, "grdColumns");
    auto* type = child<QComboBox>(&dialog, "coboConstraintType");
    QVERIFY(!child<QGroupBox>(&dialog, "grpReferences")->isEnabled());
    QCOMPARE(child<QComboBox>(&dialog, "coboOnDelete")->toolTip(), QString("ON DELETE"));

    check(columns, {"id"});
    f.takeStatements();
    QCOMPARE(okWithInformation(&dialog), QString("Constraint created "));
    QVERIFY(sent(f.takeStatements(), "ALTER TABLE designers_ui.customers ADD PRIMARY KEY ( id)"));
    type->setCurrentText("Unique Key");
    check(columns, {"code"});
    QCOMPARE(okWithInformation(&dialog), QString("Constraint created "));
    QVERIFY(sent(f.takeStatements(), "ALTER TABLE designers_ui.customers ADD UNIQUE ( code)"));

    type->setCurrentText("Foreign Key");
    QVERIFY(child<QGroupBox>(&dialog, "grpReferences")->isEnabled());
    check(columns, {"id"});
    child<QComboBox>(&dialog, "coboRefers")->setCurrentText("orders");
    QCOMPARE(child<QComboBox>(&dialog, "coboColumnRefered")->count(), 2);
    child<QComboBox>(&dialog, "coboColumnRefered")->setCurrentText("cid");
    child<QComboBox>(&dialog, "coboOnDelete")->setCurrentText("cascade");
    lomarin::test::render(dialog, "TformConstraintManager");
    QCOMPARE(okWithInformation(&dialog), QString("Constraint created "));
    const std::vector<std::string> statements = f.takeStatements();
    QVERIFY(sent(statements, "show index from `designers_ui`.orders"));
    QVERIFY(sent(statements, "CREATE INDEX cid on orders(cid)"));
    const std::string orders = f.createText("orders");
    QVERIFY2(orders.find("KEY `cid` (`cid`)") != std::string::npos, orders.c_str());
    QVERIFY2(orders.find("FOREIGN KEY (`cid`) REFERENCES `customers` (`id`) ON DELETE CASCADE") !=
                 std::string::npos,
             orders.c_str());

    // On the drop page a unique key is listed but sends nothing.
    auto* drops = child<QTreeWidget>(&dialog, "grdDrop");
    child<QTabWidget>(&dialog, "pgcKeys")->setCurrentIndex(1);
    QCOMPARE(column(drops, 2), QStringList({"PRIMARY", "UNIQUE KEY"}));
    check(drops, {"UNIQUE KEY"}, 2);
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    for (const std::string& sql : f.takeStatements())
      QVERIFY2(sql.find("ALTER") == std::string::npos, sql.c_str());
    QCOMPARE(drops->topLevelItemCount(), 2);

    child<QComboBox>(&dialog, "coboTable")->setCurrentText("orders");
    QCOMPARE(column(drops, 2), QStringList({"PRIMARY", "FOREING KEY"}));
    lomarin::test::render(dialog, "TformConstraintManager-drop");
    child<QCheckBox>(&dialog, "chkall")->setChecked(true);
    f.takeStatements();
    child<QPushButton>(&dialog, "btnOk")->click();
    const std::vector<std::string> drops_sent = f.takeStatements();
    QVERIFY(sent(drops_sent, "ALTER TABLE  `designers_ui`.orders DROP PRIMARY KEY "));
    QVERIFY(sent(drops_sent, " ALTER TABLE `designers_ui`.orders DROP FOREIGN KEY orders_ibfk_1"));
    QCOMPARE(drops->topLevelItemCount(), 0);
  }
};

}  // namespace

LOMARIN_UI_TEST(KeyManagersTest)
#include "key_managers_test.moc"
