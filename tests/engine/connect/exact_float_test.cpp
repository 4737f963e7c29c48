// FLOAT read through a prepared statement, every other type as the text protocol gives it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/connect/my_query.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin {
namespace {

using Cells = std::vector<std::vector<std::string>>;

Cells readAll(TMyConnection& session, const std::string& sql, bool exact, bool uniDirectional) {
  TMyQuery query(session);
  query.SQL = sql;
  query.ExactFloats = exact;
  query.UniDirectional = uniDirectional;
  query.Open();
  Cells cells;
  while (query.Next()) {
    auto& row = cells.emplace_back();
    for (size_t c = 0; c < query.Fields().size(); ++c)
      row.push_back(query.IsNull(c) ? "(null)" : std::string(query.Value(c)));
  }
  return cells;
}

class ExactFloatTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    auto s = test::connect();
    for (const char* sql :
         {"DROP TABLE IF EXISTS q_types",
          "CREATE TABLE q_types (id INT PRIMARY KEY, f FLOAT, d DOUBLE, n DECIMAL(30,10), "
          "z INT(6) UNSIGNED ZEROFILL, b BIGINT UNSIGNED, t TINYINT, bit BIT(10), y YEAR, dt DATE, "
          "ts DATETIME(3), tm TIME(2), ts0 TIMESTAMP NULL, e ENUM('x','y'), j JSON, s VARCHAR(300), "
          "bl LONGBLOB, g POINT)",
          "INSERT INTO q_types VALUES (1, 1234567, 0.30000000000000004, -12345678901234567890.0123456789, "
          "42, 18446744073709551615, -128, b'1010000001', 2024, '2024-02-29', '2024-06-01 12:34:56.789', "
          "'-838:59:59.99', '2038-01-19 03:14:07', 'y', '{\"a\": [1, 2]}', REPEAT('é', 300), "
          "REPEAT(X'00FF5C27', 1000), POINT(1.5, -2))",
          "INSERT INTO q_types VALUES (2, 0.1, 1e300, 0, 0, 0, 0, b'0', 0, '0000-00-00', "
          "'0000-00-00 00:00:00', '00:00:00', NULL, NULL, NULL, '', '', NULL)",
          "INSERT INTO q_types (id, f) VALUES (3, 3.4028234663852886e38), (4, -1e-7), (5, NULL)"}) {
      ASSERT_TRUE(ExecSQLText(*s, sql)) << sql;
    }
  }

  std::unique_ptr<TMyConnection> session = test::connect();
};

TEST_F(ExactFloatTest, FloatsKeepEveryDigitAndOtherCellsAreTheTextProtocols) {
  const std::string sql = "SELECT * FROM q_types ORDER BY id";
  for (const bool uniDirectional : {false, true}) {
    const Cells text = readAll(*session, sql, false, uniDirectional);
    const Cells exact = readAll(*session, sql, true, uniDirectional);
    ASSERT_EQ(exact.size(), 5u);
    for (size_t row = 0; row < exact.size(); ++row) {
      for (size_t c = 0; c < exact[row].size(); ++c) {
        if (c == 1) continue;
        EXPECT_EQ(exact[row][c], text[row][c]) << "row " << row << " column " << c;
      }
    }
    EXPECT_EQ(text[0][1], "1234570");
    std::vector<std::string> floats;
    for (const auto& row : exact) floats.push_back(row[1]);
    EXPECT_EQ(floats,
              (std::vector<std::string>{"1234567", "0.1", "3.4028234663852886e+38", "-1e-07", "(null)"}));
  }
}

TEST_F(ExactFloatTest, TheSessionGoesOnAfterAnUnfinishedOrRefusedRead) {
  test::SentStatements log(*session);
  TMyQuery first(*session);
  first.SQL = "SELECT f FROM q_types ORDER BY id";
  first.ExactFloats = true;
  first.UniDirectional = true;
  first.Open();
  ASSERT_TRUE(first.Next());
  EXPECT_EQ(first.Value(0), "1234567");
  // Another statement ends the unread prepared result and runs.
  EXPECT_EQ(test::scalar(*session, "SELECT COUNT(*) FROM q_types"), "5");
  EXPECT_THROW(first.Next(), ServerError);
  // One the server cannot prepare runs as text; one it refuses says why.
  {
    TMyConnection::MultiStatements multi(*session);
    EXPECT_EQ(readAll(*session, "SELECT f FROM q_types WHERE id = 1; SELECT 2", true, false),
              (Cells{{"1234570"}}));
  }
  TMyQuery refused(*session);
  refused.SQL = "SELECT f FROM q_types WHERE no_such_column = 1";
  refused.ExactFloats = true;
  EXPECT_THROW(refused.Open(), ServerError);
  EXPECT_EQ(log.sent,
            (std::vector<std::string>{"SELECT f FROM q_types ORDER BY id", "SELECT COUNT(*) FROM q_types",
                                      "SELECT f FROM q_types WHERE id = 1; SELECT 2",
                                      "SELECT f FROM q_types WHERE no_such_column = 1"}));
}

}  // namespace
}  // namespace lomarin
