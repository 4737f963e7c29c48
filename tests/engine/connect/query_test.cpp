#include <gtest/gtest.h>

#include <string>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "test_server.h"

namespace lomarin {
namespace {

class QueryTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    auto s = test::connect();
    for (const char* sql : {
             "DROP TABLE IF EXISTS q_rows",
             "CREATE TABLE q_rows (id INT UNSIGNED NOT NULL AUTO_INCREMENT PRIMARY KEY, "
             "name VARCHAR(20) NOT NULL, note TEXT NULL, data BLOB NULL, price DECIMAL(12,2))",
             "INSERT INTO q_rows (name, note, data, price) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
             "SELECT i+1 FROM n WHERE i < 250) SELECT CONCAT('row', i), IF(i % 2, NULL, ''), "
             "IF(i = 1, X'00270A5C', NULL), i * 1.25 FROM n"}) {
      ASSERT_TRUE(ExecSQLText(*s, sql)) << sql;
    }
  }

  std::unique_ptr<TMyConnection> session = test::connect();
};

TEST_F(QueryTest, FieldsCarryTypeFlagsAndSourceTable) {
  TMyQuery q(*session);
  q.SQL = "SELECT r.id AS ident, r.name, r.data, r.price, 1+1 AS calc FROM q_rows r LIMIT 1";
  q.Open();
  const auto& f = q.Fields();
  ASSERT_EQ(f.size(), 5u);
  EXPECT_EQ(f[0].Name, "ident");
  EXPECT_EQ(f[0].OrgName, "id");
  EXPECT_EQ(f[0].Table, "r");
  EXPECT_EQ(f[0].OrgTable, "q_rows");
  EXPECT_EQ(f[0].Database, "lomarin_test");
  EXPECT_EQ(f[0].Type, TMyFieldType::Long);
  EXPECT_TRUE(f[0].has(fieldflag::PrimaryKey) && f[0].has(fieldflag::Unsigned) &&
              f[0].has(fieldflag::AutoIncrement) && !f[0].isNullable());
  EXPECT_EQ(f[1].Type, TMyFieldType::VarString);
  EXPECT_FALSE(f[1].isBinary());
  EXPECT_EQ(f[2].Type, TMyFieldType::Blob);
  EXPECT_TRUE(f[2].isBinary() && f[2].isNullable());
  EXPECT_EQ(f[3].Type, TMyFieldType::NewDecimal);
  EXPECT_EQ(f[3].Decimals, 2u);
  EXPECT_TRUE(f[4].OrgTable.empty());
  EXPECT_EQ(q.FieldIndex("NAME"), 1);
  EXPECT_EQ(q.FieldIndex("missing"), -1);
}

TEST_F(QueryTest, ValuesKeepNullEmptyAndBinaryBytesApart) {
  TMyQuery q(*session);
  q.SQL = "SELECT note, data, price FROM q_rows WHERE id IN (1, 2) ORDER BY id";
  q.Open();
  ASSERT_TRUE(q.Next());
  EXPECT_TRUE(q.IsNull(0));
  EXPECT_EQ(q.Value(1), std::string_view("\0'\n\\", 4));
  EXPECT_EQ(q.Value(2), "1.25");
  ASSERT_TRUE(q.Next());
  EXPECT_FALSE(q.IsNull(0));
  EXPECT_EQ(q.Value(0), "");
  EXPECT_TRUE(q.IsNull(1));
  EXPECT_FALSE(q.Next());
}

TEST_F(QueryTest, FetchAllReadsEverythingAtOpenIncrementalOnDemand) {
  TMyQuery all(*session);
  all.SQL = "SELECT id FROM q_rows ORDER BY id";
  all.Open();
  EXPECT_EQ(all.RecordCount(), 250u);
  EXPECT_TRUE(all.Eof());

  TMyQuery some(*session);
  some.SQL = all.SQL;
  some.FetchAll = false;
  some.Open();
  EXPECT_EQ(some.RecordCount(), 0u);
  ASSERT_TRUE(some.MoveTo(99));
  EXPECT_EQ(some.Value(0), "100");
  EXPECT_EQ(some.RecordCount(), 100u);
  EXPECT_FALSE(some.Eof());
  ASSERT_TRUE(some.MoveTo(3));  // going back needs no server
  EXPECT_EQ(some.Value(0), "4");
  EXPECT_FALSE(some.MoveTo(250));
  EXPECT_EQ(some.RecordCount(), 250u);
  EXPECT_TRUE(some.Eof());
}

TEST_F(QueryTest, AnotherStatementWhileRowsAreUnreadKeepsTheSessionUsable) {
  TMyQuery buffered(*session);
  buffered.SQL = "SELECT id FROM q_rows ORDER BY id";
  buffered.FetchAll = false;
  buffered.Open();
  ASSERT_TRUE(buffered.Next());

  TMyQuery stream(*session);
  stream.SQL = "SELECT id FROM q_rows";
  stream.UniDirectional = true;
  stream.FetchAll = false;
  stream.Open();  // takes the connection: the buffered query reads its rest first
  EXPECT_EQ(buffered.RecordCount(), 250u);
  ASSERT_TRUE(buffered.MoveTo(249));
  EXPECT_EQ(buffered.Value(0), "250");
  ASSERT_TRUE(stream.Next());
  EXPECT_THROW(stream.MoveTo(0), std::logic_error);  // forward only

  EXPECT_EQ(test::scalar(*session, "SELECT COUNT(*) FROM q_rows"), "250");
  EXPECT_THROW(stream.Next(), ServerError);  // cut short, never silently short
}

TEST_F(QueryTest, ExecuteReportsAffectedRowsAndInsertId) {
  TMyQuery q(*session);
  q.SQL = "UPDATE q_rows SET note = note WHERE id <= 10";
  q.Execute();
  EXPECT_EQ(q.RowsAffected(), 0u);  // unchanged rows are not counted
  q.SQL = "CREATE TEMPORARY TABLE q_tmp (id INT AUTO_INCREMENT PRIMARY KEY, v INT)";
  q.Execute();
  q.SQL = "INSERT INTO q_tmp (v) VALUES (1), (2), (3)";
  q.Execute();
  EXPECT_EQ(q.RowsAffected(), 3u);
  EXPECT_EQ(q.LastInsertId(), 1u);
  q.SQL = "SELECT * FROM q_rows";  // a result set run as a command is read and dropped
  q.Execute();
  EXPECT_EQ(test::scalar(*session, "SELECT COUNT(*) FROM q_tmp"), "3");
}

}  // namespace
}  // namespace lomarin
