#include "ui/app/explorer/frame_explorer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"
#include "render_path.h"
#include "test_server.h"
#include "ui_test_registry.h"

using namespace lomarin;
namespace ex = lomarin::explorer;
using Explorer = lomarin::ui::TframeExplorer;

namespace {

QTreeWidgetItem* childNamed(QTreeWidgetItem* parent, const QString& text) {
  for (int i = 0; i < parent->childCount(); ++i)
    if (parent->child(i)->text(0) == text) return parent->child(i);
  qFatal("no node %s under %s", qPrintable(text), qPrintable(parent->text(0)));
}

QStringList texts(QTreeWidgetItem* parent) {
  QStringList out;
  for (int i = 0; i < parent->childCount(); ++i) out << parent->child(i)->text(0);
  return out;
}

int image(QTreeWidgetItem* item) { return item->data(0, Explorer::ImageRole).toInt(); }
int tag(QTreeWidgetItem* item) { return item->data(0, Explorer::TagRole).toInt(); }

class FrameExplorerTest : public QObject {
  Q_OBJECT

  std::unique_ptr<TMyConnection> session_;
  std::unique_ptr<TMySQLMonitor> monitor_;
  QStringList sent_;
  std::unique_ptr<Explorer> explorer_;

  // What expanding (or another step) sent to the server, statement texts only.
  QStringList sentBy(const std::function<void()>& step) {
    sent_.clear();
    step();
    return sent_;
  }

  QTreeWidgetItem* root() { return explorer_->tree()->topLevelItem(0); }
  QTreeWidgetItem* demo() { return childNamed(root(), "lomarin_demo"); }

  // Expands the folder, checks the one statement it sent, and gives its children.
  QTreeWidgetItem* expand(QTreeWidgetItem* folder, const std::string& statement) {
    const QStringList sent = sentBy([&] { folder->setExpanded(true); });
    QTest::qCompare(sent, QStringList{QString::fromStdString(statement)}, "sent", "statement", __FILE__,
                    __LINE__);
    return folder;
  }

  void checkChildren(QTreeWidgetItem* folder, const QStringList& names, int imageIndex) {
    for (const auto& name : names) {
      auto* node = childNamed(folder, name);
      QCOMPARE(image(node), imageIndex);
      QCOMPARE(tag(node), ex::kObjectTag);
    }
  }

 private slots:
  void init() {
    session_ = test::connect("lomarin_demo");
    monitor_ = std::make_unique<TMySQLMonitor>();
    session_->setMonitor(monitor_.get());
    monitor_->addListener([this](const std::string& line) {
      sent_ << QString::fromStdString(line.substr(line.find(" ] ") + 3));
    });
    explorer_ = std::make_unique<Explorer>(*session_);
    explorer_->resize(320, 720);
  }

  void cleanup() {
    explorer_.reset();
    session_.reset();
    monitor_.reset();
  }

  void rootListsTheFilteredDatabaseWithItsFolders() {
    explorer_->setDatabaseFilter("'lomarin_demo'");
    const auto sent = sentBy([&] { explorer_->buildRoot(); });
    QCOMPARE(sent, QStringList{"Show databases like 'lomarin_demo'"});
    QCOMPARE(root()->text(0), "MySQL Server[" + QString::fromStdString(test::serverSettings().Server) + "]");
    QVERIFY(root()->isExpanded());
    QCOMPARE(texts(root()), QStringList({"lomarin_demo", "Users"}));
    QCOMPARE(image(demo()), ex::image::CurrentDatabase);
    auto* users = childNamed(root(), "Users");
    QCOMPARE(image(users), ex::image::UsersFolder);
    QCOMPARE(tag(users), ex::kFolderTag);
    QCOMPARE(texts(demo()),
             QStringList({"Tables", "Views", "Procedures", "Functions", "Triggers", "Events", "UDFs"}));
    for (int i = 0; i < demo()->childCount(); ++i) {
      auto* folder = demo()->child(i);
      QCOMPARE(image(folder), ex::image::Folder);
      QCOMPARE(tag(folder), ex::kFolderTag);
      QCOMPARE(texts(folder), QStringList({"/-1"}));
    }
  }

  void expandingEachFolderSendsItsStatement() {
    explorer_->setDatabaseFilter("'lomarin_demo'");
    explorer_->buildRoot();
    auto* tables = expand(childNamed(demo(), "Tables"), "show full tables  from `lomarin_demo`");
    QCOMPARE(texts(tables), QStringList({"categories", "customers", "order_items", "orders", "price_history",
                                         "product_media", "products", "raw_import"}));
    checkChildren(tables, texts(tables), ex::image::Table);
    checkChildren(expand(childNamed(demo(), "Views"), "show full tables  from `lomarin_demo`"),
                  {"v_customer_revenue", "v_order_totals"}, ex::image::View);
    QCOMPARE(childNamed(demo(), "Views")->childCount(), 2);
    checkChildren(
        expand(childNamed(demo(), "Procedures"), "SHOW PROCEDURE STATUS where lower(db) = 'lomarin_demo'"),
        {"get_customer_orders"}, ex::image::Procedure);
    checkChildren(
        expand(childNamed(demo(), "Functions"), "SHOW FUNCTION STATUS where lower(db) = 'lomarin_demo'"),
        {"order_total"}, ex::image::Function);
    checkChildren(expand(childNamed(demo(), "Triggers"), "SHOW TRIGGERS FROM `lomarin_demo`"),
                  {"trg_products_price_history"}, ex::image::Trigger);
    checkChildren(expand(childNamed(demo(), "Events"), "show events from `lomarin_demo`"),
                  {"ev_purge_price_history"}, ex::image::Event);
    expand(childNamed(demo(), "UDFs"), "SELECT * FROM mysql.func ");
    QVERIFY(!texts(childNamed(demo(), "UDFs")).contains("/-1"));
    checkChildren(
        expand(childNamed(root(), "Users"), " SELECT distinct user FROM mysql.user WHERE LENGTH(user)> 0"),
        {"lomarin_demo", QString::fromStdString(test::serverSettings().Username)}, ex::image::User);

    auto* orders = childNamed(tables, "orders");
    QCOMPARE(texts(orders), QStringList({"Index", "Columns"}));
    auto* index = expand(childNamed(orders, "Index"), "show index from `orders` from `lomarin_demo`");
    QCOMPARE(texts(index), QStringList({"PRIMARY", "ix_orders_customer", "ix_orders_date"}));
    QCOMPARE(image(index->child(0)), ex::image::Primary);
    QCOMPARE(image(index->child(1)), ex::image::MultipleKey);
    auto* columns = expand(childNamed(orders, "Columns"), "DESC `lomarin_demo`.`orders`");
    QCOMPARE(image(childNamed(columns, "order_id")), ex::image::Primary);
    QCOMPARE(image(childNamed(columns, "customer_id")), ex::image::MultipleKey);
    QCOMPARE(image(childNamed(columns, "status")), ex::image::PlainColumn);
    // A key over two columns is one index node.
    auto* items = expand(childNamed(childNamed(tables, "order_items"), "Index"),
                         "show index from `order_items` from `lomarin_demo`");
    QCOMPARE(texts(items), QStringList({"PRIMARY", "ix_order_items_product"}));

    for (auto* item : {tables, orders, index, columns}) item->setExpanded(true);
    for (const char* name : {"categories", "customers", "order_items"})
      childNamed(tables, name)->setExpanded(false);
    explorer_->tree()->setCurrentItem(orders);
    explorer_->resize(320, 1040);
    explorer_->show();
    explorer_->grab().save(test::renderPath("explorer_demo.png"));
  }

  void treeFilterAndRefresh() {
    explorer_->setDatabaseFilter("'lomarin_demo'");
    explorer_->buildRoot();
    auto* tables = childNamed(demo(), "Tables");
    tables->setExpanded(true);
    explorer_->filterBox()->setText("order%");
    const auto sent = sentBy([&] { QTest::keyClick(explorer_->filterBox(), Qt::Key_Return); });
    QCOMPARE(sent, QStringList{"show full tables  from `lomarin_demo` like 'order%'"});
    QCOMPARE(texts(tables), QStringList({"order_items", "orders"}));

    explorer_->tree()->setCurrentItem(tables);
    QCOMPARE(sentBy([&] { explorer_->refresh(); }),
             QStringList{"show full tables  from `lomarin_demo` like 'order%'"});
    explorer_->tree()->setCurrentItem(childNamed(tables, "orders"));
    QVERIFY(sentBy([&] { explorer_->refresh(); }).empty());
    explorer_->tree()->setCurrentItem(demo());
    explorer_->refresh();
    QCOMPARE(texts(childNamed(demo(), "Tables")), QStringList({"/-1"}));
    explorer_->tree()->setCurrentItem(root());
    QCOMPARE(sentBy([&] { explorer_->refresh(); }), QStringList{"Show databases like 'lomarin_demo'"});

    explorer_->clearObjects();
    QCOMPARE(root()->childCount(), 0);
  }

  void aDatabaseTheServerDoesNotListIsStillShown() {
    explorer_->setDatabaseFilter("'no_such_database'");
    explorer_->buildRoot();
    QCOMPARE(texts(root()), QStringList({"lomarin_demo", "Users"}));
    QCOMPARE(texts(demo()).size(), 7);
  }

  void quotesInTheAccountDatabaseAndTheTreeFilterAreEscaped() {
    test::sideExec("DROP DATABASE IF EXISTS `lomarin_o'q`");
    test::sideExec("CREATE DATABASE `lomarin_o'q`");
    test::sideExec("CREATE TABLE `lomarin_o'q`.`it's` (a INT)");
    test::sideExec("CREATE TABLE `lomarin_o'q`.`its` (a INT)");
    // A refused statement is counted here instead of opening a message box.
    QStringList errors;
    session_->Events.OnError = [&](const ServerError& e) { errors << QString::fromStdString(e.message()); };
    explorer_->setDatabaseFilter("'lomarin_o'q'");
    QCOMPARE(sentBy([&] { explorer_->buildRoot(); }), QStringList{"Show databases like 'lomarin_o\\'q'"});
    QCOMPARE(texts(root()), QStringList({"lomarin_o'q", "Users"}));
    auto* tables = childNamed(childNamed(root(), "lomarin_o'q"), "Tables");
    tables->setExpanded(true);
    explorer_->filterBox()->setText("it'%");
    const auto sent = sentBy([&] { QTest::keyClick(explorer_->filterBox(), Qt::Key_Return); });
    QCOMPARE(sent, QStringList{"show full tables  from `lomarin_o'q` like 'it\\'%'"});
    QCOMPARE(texts(tables), QStringList({"it's"}));
    QCOMPARE(errors, QStringList());
    test::sideExec("DROP DATABASE `lomarin_o'q`");
  }

  void aFailedFetchLeavesTheFolderToTryAgain() {
    TMyConnection limited;
    limited.Settings = test::serverSettings();
    limited.Settings.Username = "lomarin_demo";
    limited.Settings.Password = "lomarin_demo";
    limited.Settings.Database = "lomarin_demo";
    limited.Connect();
    Explorer explorer(limited);
    explorer.buildRoot();
    auto* users = explorer.tree()->topLevelItem(0)->child(explorer.tree()->topLevelItem(0)->childCount() - 1);
    QCOMPARE(users->text(0), QString("Users"));
    QString shown;
    QTimer::singleShot(0, [&] {
      QMessageBox* box = nullptr;
      QTRY_VERIFY((box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) != nullptr);
      shown = box->text();
      box->button(QMessageBox::Ok)->click();
    });
    users->setExpanded(true);
    QVERIFY2(shown.startsWith("1142\n"), qPrintable(shown));
    QVERIFY(!users->isExpanded());
    QCOMPARE(texts(users), QStringList({"/-1"}));
  }

  void doubleClicksTellWhatWasChosen() {
    explorer_->buildRoot();
    QVERIFY(texts(root()).contains("mysql"));
    QSignalSpy databases(explorer_.get(), &Explorer::databaseActivated);
    QSignalSpy objects(explorer_.get(), &Explorer::objectActivated);
    auto* mysql = childNamed(root(), "mysql");
    QCOMPARE(image(mysql), ex::image::Database);
    emit explorer_->tree()->itemDoubleClicked(mysql, 0);
    QCOMPARE(databases.count(), 1);
    QCOMPARE(databases[0][0].toString(), QString("mysql"));
    explorer_->markCurrentDatabase("mysql");
    QCOMPARE(image(mysql), ex::image::CurrentDatabase);
    QCOMPARE(image(demo()), ex::image::Database);

    auto* tables = childNamed(demo(), "Tables");
    tables->setExpanded(true);
    emit explorer_->tree()->itemDoubleClicked(childNamed(tables, "customers"), 0);
    emit explorer_->tree()->itemDoubleClicked(tables, 0);
    auto* users = childNamed(root(), "Users");
    users->setExpanded(true);
    emit explorer_->tree()->itemDoubleClicked(childNamed(users, "lomarin_demo"), 0);
    QCOMPARE(objects.count(), 2);
    QCOMPARE(objects[0][0].value<ex::NodeKind>(), ex::NodeKind::Table);
    QCOMPARE(objects[0][1].toString(), QString("lomarin_demo"));
    QCOMPARE(objects[0][2].toString(), QString("customers"));
    QCOMPARE(objects[1][0].value<ex::NodeKind>(), ex::NodeKind::User);
    QCOMPARE(objects[1][1].toString(), QString());
  }
};

}  // namespace

LOMARIN_UI_TEST(FrameExplorerTest)
#include "frame_explorer_test.moc"
