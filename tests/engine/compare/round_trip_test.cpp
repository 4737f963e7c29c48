#include <gtest/gtest.h>

#include <cstdio>
#include <map>

#include "compare_fixture.h"
#include "engine/connect/my_query.h"

namespace lomarin {
namespace {

using enum TCmpObjType;

void compareEverything(TDBComparer& comparer) {
  for (auto kind : {coProcedure, coFunction, coTrigger}) comparer.CompareObjects.add(kind);
}

// Per table: a checksum over the columns both databases have, in a fixed order.
std::map<std::string, std::string> keptColumnChecksums(const std::string& target, const TDBStructure& source,
                                                       const TDBStructure& before) {
  auto session = test::connect(target);
  std::map<std::string, std::string> sums;
  for (const auto& table : before.Tables) {
    const auto* kept = FindByName(source.Tables, table.Name, true);
    if (!kept) continue;
    std::string columns;
    for (const auto& column : table.Columns)
      if (kept->column(column.Name)) columns += (columns.empty() ? "`" : ", `") + column.Name + "`";
    sums[table.Name] =
        test::scalar(*session, "SELECT CONCAT(COUNT(*), '/', IFNULL(SUM(CRC32(CONCAT_WS('|', " + columns +
                                   "))), 0)) FROM `" + table.Name + "`");
  }
  return sums;
}

// The demo database, and a copy of it changed in every way the comparer knows.
TEST(CompareRoundTrip, ScriptTurnsAChangedCopyBackIntoTheSource) {
  test::CopyDemo("cmp_source");
  test::sideExec("ALTER TABLE cmp_source.products ADD CONSTRAINT chk_price CHECK (price >= 0)");
  test::sideExec(
      "CREATE TABLE cmp_source.suppliers (supplier_id INT UNSIGNED NOT NULL AUTO_INCREMENT, product_id INT "
      "UNSIGNED "
      "NOT NULL, code CHAR(8) NOT NULL, rating TINYINT NOT NULL DEFAULT 3, PRIMARY KEY (supplier_id), UNIQUE "
      "KEY "
      "uq_suppliers_code (code), KEY ix_suppliers_product (product_id), CONSTRAINT fk_suppliers_product "
      "FOREIGN KEY "
      "(product_id) REFERENCES products (product_id) ON DELETE CASCADE, CONSTRAINT chk_rating CHECK (rating "
      "BETWEEN 1 "
      "AND 5)) ENGINE=InnoDB COMMENT='Who delivers what'");
  test::CopyDemo("cmp_target");
  const std::vector<std::string> changes = {
      "ALTER TABLE customers MODIFY phone VARCHAR(20) NULL",               // type
      "ALTER TABLE customers ALTER is_active SET DEFAULT 0",               // default
      "ALTER TABLE orders MODIFY shipping_city VARCHAR(60) NULL",          // nullability
      "ALTER TABLE products MODIFY legacy_code VARCHAR(12) NULL",          // character set
      "ALTER TABLE orders RENAME INDEX ix_orders_date TO ix_orders_when",  // renamed index
      // renamed index a kept foreign key uses
      "ALTER TABLE categories RENAME INDEX ix_categories_parent TO ix_categories_up",
      "ALTER TABLE orders DROP FOREIGN KEY fk_orders_customer",  // foreign-key action
      "ALTER TABLE orders ADD CONSTRAINT fk_orders_customer FOREIGN KEY (customer_id) REFERENCES customers "
      "(customer_id) ON DELETE CASCADE",
      "CREATE OR REPLACE VIEW v_order_totals AS SELECT o.order_id, o.customer_id, o.order_date, o.status, "
      "COUNT(*) AS item_count, SUM(i.quantity * i.unit_price) AS total FROM orders o JOIN order_items i ON "
      "i.order_id = o.order_id GROUP BY o.order_id, o.customer_id, o.order_date, o.status",  // view body
      "ALTER TABLE raw_import ENGINE=MyISAM",                                                // engine
      "CREATE TABLE leftover (id INT NOT NULL PRIMARY KEY, note TEXT)",  // table only in the target
      "DROP TABLE product_media",                                        // table only in the source
      "ALTER TABLE categories ADD sort_order INT NULL AFTER name",       // column only in the target
      "ALTER TABLE customers DROP COLUMN birth_date",                    // column only in the source
      "ALTER TABLE customers MODIFY city VARCHAR(60) NOT NULL AFTER customer_id",  // column order
      "ALTER TABLE customers COMMENT = 'Customers'",                               // table comment
      "CREATE INDEX ix_products_name ON products (name)",                          // index only in the target
      "DROP INDEX ix_customers_name ON customers",                                 // index only in the source
      "ALTER TABLE categories DROP INDEX uq_categories_name, ADD UNIQUE KEY uq_categories_name (name, "
      "parent_id)",
      "ALTER TABLE products ADD CONSTRAINT chk_stock CHECK (stock >= 0)",  // check only in the target
      "DROP PROCEDURE get_customer_orders",                                // changed procedure
      "CREATE PROCEDURE get_customer_orders(IN p_customer_id INT UNSIGNED) SELECT * FROM orders",
      "DROP FUNCTION order_total",                // function only in the source
      "DROP TRIGGER trg_products_price_history",  // trigger only in the source
      "CREATE TRIGGER trg_orders_note BEFORE INSERT ON orders FOR EACH ROW SET NEW.note = 'x'",
      "ALTER EVENT ev_purge_price_history ON SCHEDULE EVERY 2 DAY STARTS '2024-01-01 03:00:00'",  // event
      "CREATE EVENT ev_leftover ON SCHEDULE EVERY 1 HOUR DO DELETE FROM leftover",
  };
  {
    auto target = test::connect("cmp_target");
    for (const auto& sql : changes) {
      TMyQuery query(*target);
      query.SQL = sql;
      query.Execute();
    }
  }
  const auto sourceShape = test::ShowCreateAll("cmp_source");
  ASSERT_NE(sourceShape, test::ShowCreateAll("cmp_target"));

  test::LiveCompare compare("cmp_source", "cmp_target");
  compareEverything(compare.comparer);
  const auto& script = compare.run();
  const auto before = keptColumnChecksums("cmp_target", compare.sourceStructure, compare.targetStructure);
  EXPECT_EQ(std::vector<std::string>{}, compare.apply()) << script;
  EXPECT_EQ(sourceShape, test::ShowCreateAll("cmp_target")) << script;
  EXPECT_EQ(before, keptColumnChecksums("cmp_target", compare.sourceStructure, compare.targetStructure));

  // A column change keeps the data: no column the two sides share is dropped and added again.
  for (const auto& statement : test::Statements(script)) {
    EXPECT_EQ(std::string::npos, statement.find("DROP `phone`")) << statement;
    EXPECT_EQ(std::string::npos, statement.find("DROP `city`")) << statement;
  }
  // Once applied, the two sides are equal.
  test::LiveCompare again("cmp_source", "cmp_target");
  compareEverything(again.comparer);
  again.run();
  EXPECT_EQ(0, again.comparer.StatementCount()) << again.comparer.Script();
}

std::string mariadbDump(const std::string& database) {
  const auto s = test::serverSettings();
  const std::string command = "mariadb-dump --no-data --routines --events --triggers -h " + s.Server +
                              " -P " + std::to_string(s.Port) + " -u " + s.Username + " -p'" + s.Password +
                              "' " + database;
  std::string out;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return out;
  char buffer[4096];
  while (size_t n = fread(buffer, 1, sizeof buffer, pipe)) out.append(buffer, n);
  EXPECT_EQ(0, pclose(pipe)) << command;
  return out;
}

TEST(CompareRoundTrip, ALiveDatabaseEqualsItsMariadbDump) {
  const std::string dump = mariadbDump("lomarin_demo");
  ASSERT_NE(std::string::npos, dump.find("CREATE TABLE `products`"));
  test::LiveCompare compare("lomarin_demo", "lomarin_demo");
  compareEverything(compare.comparer);
  compare.targetExtract.ExtractFrom = TExtractFromType::efScript;
  compare.targetExtract.Script = dump;
  compare.run();
  EXPECT_EQ(0, compare.comparer.StatementCount()) << compare.comparer.Script();
  const auto& dumped = compare.targetStructure;
  EXPECT_EQ(8u, dumped.Tables.size());
  EXPECT_EQ(2u, dumped.Views.size());
  EXPECT_EQ(1u, dumped.Procedures.size());
  EXPECT_EQ(1u, dumped.Functions.size());
  EXPECT_EQ(1u, dumped.Triggers.size());
  EXPECT_EQ(1u, dumped.Events.size());
}

}  // namespace
}  // namespace lomarin
