#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "datasync_fixture.h"
#include "engine/compare/compare_error.h"
#include "test_ssh_server.h"

namespace lomarin {
namespace {

using test::DataSyncTest;

const std::vector<std::string> kDemoTables = {"categories",    "customers",     "order_items", "orders",
                                              "price_history", "product_media", "products"};

// A column of every kind with the values most easily damaged on the way through a script.
const char* const kTypesTable =
    "CREATE TABLE types (id BIGINT PRIMARY KEY, i TINYINT, u BIGINT UNSIGNED, d DECIMAL(65,30), "
    "f FLOAT, g DOUBLE, fd FLOAT(10,4), bt BIT(12), y YEAR, dt DATE, tm TIME(6), dtm DATETIME(6), "
    "ts TIMESTAMP(3) NULL, c CHAR(5), vc VARCHAR(40), tx MEDIUMTEXT, bn BINARY(4), vb VARBINARY(10), "
    "bl LONGBLOB, e ENUM('x','y'), s SET('a','b','c'), j JSON, "
    "gen INT AS (i * 2) VIRTUAL)";

const char* const kTypesRows =
    "INSERT INTO types (id, i, u, d, f, g, fd, bt, y, dt, tm, dtm, ts, c, vc, tx, bn, vb, bl, e, s, j) "
    "VALUES "
    "(1, -128, 18446744073709551615, 12345678901234567890123456789012345.123456789012345678901234567891, "
    "3.4028234e38, 1.7976931348623157e308, 123456.7891, b'101010101010', 2155, '9999-12-31', "
    "'-838:59:59.999999', "
    "'2024-02-29 23:59:59.999999', '2038-01-19 03:14:07.999', 'ab', 'O''Brien \\\\ \\n', REPEAT('é', 1000), "
    "x'00000000', x'', x'00FF0080', 'y', 'a,c', '{\"k\": [1, 2.50, null]}'), "
    "(2, 0, 0, -0.000000000000000000000000000001, -1.17549435e-38, 4.9e-324, -0.0001, b'0', 1901, "
    "'1000-01-01', "
    "'00:00:00.000001', '1000-01-01 00:00:00.000001', NULL, '', '', '', x'FFFFFFFF', x'0D0A1A27', '', NULL, "
    "'', "
    "'[]'), "
    "(3, NULL, NULL, NULL, 0.1, 0.30000000000000004, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, "
    "NULL, "
    "NULL, NULL, NULL, NULL, NULL, NULL)";

class SyncRoundTripTest : public DataSyncTest {
 protected:
  void SetUp() override {
    DataSyncTest::SetUp();
    for (const std::string& table : kDemoTables) {
      for (const char* db : {"ds_master", "ds_target"})
        test::sideExec(std::string("CREATE TABLE ") + db + "." + table + " LIKE lomarin_demo." + table);
      test::sideExec("INSERT INTO ds_master." + table + " SELECT * FROM lomarin_demo." + table);
      test::sideExec("INSERT INTO ds_target." + table + " SELECT * FROM lomarin_demo." + table);
    }
    both(kTypesTable);
    exec(*master, kTypesRows);
  }
};

TEST_F(SyncRoundTripTest, AppliedScriptMakesEveryTableEqual) {
  // The target drifts in every way: missing, extra and changed rows, values of every type.
  exec(*target, "DELETE FROM order_items WHERE order_id % 97 = 0");
  exec(*target,
       "UPDATE order_items SET quantity = quantity + 1, unit_price = unit_price * 2 WHERE order_id % 89 = 0");
  exec(*target,
       "INSERT INTO order_items SELECT order_id, line_no + 100, product_id, 1, 0, 0 FROM order_items "
       "WHERE order_id % 83 = 0");
  exec(*target,
       "UPDATE customers SET email = UPPER(email), phone = NULL, birth_date = '2000-01-01', "
       "credit_limit = -credit_limit WHERE customer_id % 7 = 0");
  exec(*target,
       "UPDATE products SET weight_kg = weight_kg / 3, status = 'draft', tags = 'eco,gift', "
       "legacy_code = 'ÅÄÖ' WHERE product_id % 5 = 0");
  exec(*target, "UPDATE product_media SET content = REVERSE(content), caption = NULL WHERE media_id % 2 = 0");
  exec(*target, "DELETE FROM product_media WHERE media_id % 3 = 0");
  exec(*target, "DELETE FROM categories WHERE category_id = 10");
  exec(*target, "INSERT INTO categories VALUES (99, NULL, 'extra', NULL)");
  exec(*target, "UPDATE orders SET order_date = '1999-01-01', note = 'changed' WHERE order_id % 11 = 0");
  exec(*target, "DELETE FROM price_history WHERE history_id % 2 = 0");
  exec(*target,
       "INSERT INTO types (id, i, f, g, d, bl) VALUES (1, 1, 1, 1, 1, x'01'), (4, 4, 4, 4, 4, x'04')");

  test::TempFolder folder;
  comparer.BlobFileName = (folder.path() / "sync.LOB").string();
  comparer.ScriptFileName = (folder.path() / "sync.sql").string();
  comparer.ScriptOptions.UseDatabase = false;
  std::string script;
  for (const std::string& table : [] {
         auto all = kDemoTables;
         all.push_back("types");
         return all;
       }()) {
    sync(table);
    EXPECT_TRUE(comparer.Counters().Differences()) << table;
    std::ifstream in(comparer.ScriptFileName, std::ios::binary);
    script.assign(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(std::vector<std::string>{}, apply(script)) << table;
    expectSynchronised(table);
  }
  // The BLOB file carried the binary values of the last table: no hex literal in its script.
  EXPECT_EQ(0u, script.find("SET BLOBFILE '" + comparer.BlobFileName + "';\r\n"));
  EXPECT_EQ(std::string::npos, script.find("0x"));

  comparer.TableNameMaster = comparer.TableNameTarget = "raw_import";
  test::sideExec("CREATE TABLE ds_master.raw_import LIKE lomarin_demo.raw_import");
  test::sideExec("CREATE TABLE ds_target.raw_import LIKE lomarin_demo.raw_import");
  EXPECT_THROW(comparer.CompareData(), CompareError) << "a table without a key cannot be synchronised";
}

}  // namespace
}  // namespace lomarin
