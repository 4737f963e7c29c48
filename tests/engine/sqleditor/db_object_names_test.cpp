#include "engine/sqleditor/db_object_names.h"

#include <gtest/gtest.h>

#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "session_watch.h"
#include "test_escaper.h"
#include "test_server.h"

namespace lomarin {
namespace {

using K = TDbObjectKind;

// The texts are the object explorer's folder statements.
TEST(DbObjectNames, OneStatementPerKindTheServerVersionHas) {
  // Tables and views share one; 5.0 has no events; 4.x only tables.
  EXPECT_EQ(DbObjectStatements("shop", 10, 110, test::marked).size(), 5u);
  EXPECT_EQ(DbObjectStatements("shop", 5, 50, test::marked).size(), 4u);
  EXPECT_EQ(DbObjectStatements("Sh`op", 5, 50, test::marked)[1],
            "SHOW PROCEDURE STATUS where lower(db) = '<sh`op>'");
  EXPECT_EQ(DbObjectStatements("Sh`op", 4, 41, test::marked),
            std::vector<std::string>{"show tables  from `Sh``op`"});
}

// A session on a database, with what it sent.
struct Watched {
  explicit Watched(const std::string& database) : session(test::connect(database)), log(*session) {}
  std::unique_ptr<TMyConnection> session;
  test::SentStatements log;
  std::vector<std::string>& sent = log.sent;
};

TEST(DbObjectNames, DemoDatabaseListsEveryKindInOrder) {
  Watched w("lomarin_demo");
  const std::vector<TDbObjectName> names = LoadDbObjectNames(*w.session);
  EXPECT_EQ(names, (std::vector<TDbObjectName>{{"categories", K::Table},
                                               {"customers", K::Table},
                                               {"order_items", K::Table},
                                               {"orders", K::Table},
                                               {"price_history", K::Table},
                                               {"product_media", K::Table},
                                               {"products", K::Table},
                                               {"raw_import", K::Table},
                                               {"v_customer_revenue", K::View},
                                               {"v_order_totals", K::View},
                                               {"get_customer_orders", K::Procedure},
                                               {"order_total", K::Function},
                                               {"trg_products_price_history", K::Trigger},
                                               {"ev_purge_price_history", K::Event}}));
  // One statement for tables and views together.
  EXPECT_EQ(w.sent, DbObjectStatements("lomarin_demo", w.session->ServerMajorVersion(),
                                       w.session->ServerVersionNumber(),
                                       [&](std::string_view value) { return EscapeString(*w.session, value); }));
  EXPECT_EQ(w.sent.size(), 5u);
}

TEST(DbObjectNames, ListsLoadOncePerDatabaseAndAfterRelease) {
  test::sideExec("DROP DATABASE IF EXISTS lomarin_names");
  test::sideExec("CREATE DATABASE lomarin_names");
  test::sideExec("CREATE TABLE lomarin_names.only_one (id INT)");
  Watched w("lomarin_demo");
  TDbNameLists lists;
  EXPECT_EQ(lists.objects(*w.session).size(), 14u);
  EXPECT_EQ(lists.loadedFor(), "lomarin_demo");
  w.sent.clear();
  lists.objects(*w.session);
  EXPECT_TRUE(w.sent.empty());

  // Another current database: loaded again, for it.
  TMyQuery use(*w.session);
  use.SQL = "USE lomarin_names";
  use.Execute();
  w.sent.clear();
  EXPECT_EQ(lists.objects(*w.session), (std::vector<TDbObjectName>{{"only_one", K::Table}}));
  EXPECT_EQ(w.sent.front(), "show full tables  from `lomarin_names`");

  lists.release();
  EXPECT_EQ(lists.loadedFor(), std::nullopt);
  w.sent.clear();
  lists.objects(*w.session);
  EXPECT_EQ(w.sent.size(), 5u);

  // Without a connection nothing is sent and there is nothing to offer.
  w.session->Disconnect();
  w.sent.clear();
  EXPECT_TRUE(lists.objects(*w.session).empty());
  EXPECT_TRUE(w.sent.empty());
  test::sideExec("DROP DATABASE lomarin_names");
}

TEST(DbObjectNames, RoutinesOfADatabaseWhoseNameHoldsAQuote) {
  test::sideExec("DROP DATABASE IF EXISTS `lomarin_it's`");
  test::sideExec("CREATE DATABASE `lomarin_it's`");
  test::sideExec("CREATE FUNCTION `lomarin_it's`.quoted_fn() RETURNS INT DETERMINISTIC RETURN 1");
  Watched w("lomarin_it's");
  EXPECT_EQ(LoadDbObjectNames(*w.session), (std::vector<TDbObjectName>{{"quoted_fn", K::Function}}));
  test::sideExec("DROP DATABASE `lomarin_it's`");
}

TEST(DbObjectNames, FailedLoadIsTriedAgain) {
  Watched w("lomarin_test");
  TMyQuery use(*w.session);
  use.SQL = "USE lomarin_gone";
  test::sideExec("CREATE DATABASE IF NOT EXISTS lomarin_gone");
  use.Execute();
  test::sideExec("DROP DATABASE lomarin_gone");
  TDbNameLists lists;
  EXPECT_THROW(lists.objects(*w.session), ServerError);
  EXPECT_EQ(lists.loadedFor(), std::nullopt);
}

}  // namespace
}  // namespace lomarin
