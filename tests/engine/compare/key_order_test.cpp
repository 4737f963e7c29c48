#include "engine/compare/key_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "engine/compare/sync_table_info.h"
#include "engine/connect/my_query.h"
#include "test_server.h"

namespace lomarin {
namespace {

struct KeyRow {
  std::string order;  // what the merge compares: the value, or its weight / index
  bool isNull = false;
  bool equalsPrevious = false;  // as the server says
};

// Loads values into a one-column table of the given type and reads them back in the server's
// ORDER BY, with the server's verdict whether each equals the one before.
class KeyOrderTest : public ::testing::Test {
 protected:
  void SetUp() override { session = test::connect("datasync_keys"); }

  std::vector<KeyRow> serverOrder(const std::string& type, const std::vector<std::string>& literals,
                                  const std::string& orderExpression = "k") {
    exec("DROP TABLE IF EXISTS k");
    exec("CREATE TABLE k (k " + type + " NULL)");
    for (const std::string& literal : literals) exec("INSERT INTO k VALUES (" + literal + ")");
    TMyQuery query(*session);
    query.SQL = "SELECT " + orderExpression + ", k <=> LAG(k) OVER (ORDER BY k) FROM k ORDER BY k";
    query.Open();
    std::vector<KeyRow> rows;
    while (query.Next())
      rows.push_back({std::string(query.Value(0)), query.IsNull(0), query.Value(1) == "1"});
    return rows;
  }

  // Our comparison, fed the rows shuffled, must put them back in the server's order and agree
  // on every tie.
  void expectSameOrder(const TKeyOrder& order, std::vector<KeyRow> rows) {
    ASSERT_GT(rows.size(), 2u);
    for (size_t i = 1; i < rows.size(); ++i) {
      const int c =
          CompareKeyValues(order, rows[i - 1].order, rows[i - 1].isNull, rows[i].order, rows[i].isNull);
      if (rows[i].equalsPrevious)
        EXPECT_EQ(0, c) << "row " << i << " equals the one before: " << rows[i].order;
      else
        EXPECT_LT(c, 0) << "row " << i - 1 << " sorts before row " << i << ": " << rows[i - 1].order << " / "
                        << rows[i].order;
    }
    std::vector<KeyRow> shuffled = rows;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
    std::stable_sort(shuffled.begin(), shuffled.end(), [&](const KeyRow& a, const KeyRow& b) {
      return CompareKeyValues(order, a.order, a.isNull, b.order, b.isNull) < 0;
    });
    for (size_t i = 0; i < rows.size(); ++i)
      EXPECT_EQ(
          0, CompareKeyValues(order, rows[i].order, rows[i].isNull, shuffled[i].order, shuffled[i].isNull));
  }

  void exec(const std::string& sql) {
    TMyQuery query(*session);
    query.SQL = sql;
    query.Execute();
  }

  std::unique_ptr<TMyConnection> session;
};

const std::vector<std::string> kWords = {
    "'abc'", "'ABC'",    "'Abc '",    "'abc  '", "'abd'", "'ab'",  "'ab\\t'", "'ab\\n'", "'é'",
    "'E'",   "'e'",      "'ê'",       "'f'",     "'ß'",   "'ss'",  "'st'",    "'Ä'",     "'a'",
    "'z'",   "''",       "' '",       "'a b'",   "'a-b'", "'a_b'", "'0'",     "'10'",    "'9'",
    "NULL",  "'Straße'", "'strasse'", "'Ω'",     "'ω'",   "'中'",  "'😀'",     "'a\\0b'"};

TEST_F(KeyOrderTest, CharacterKeysFollowTheCollationWithPadSpace) {
  for (const char* collation : {"utf8mb4_unicode_ci", "utf8mb4_general_ci", "utf8mb4_bin",
                                "utf8mb4_nopad_bin", "utf8mb4_unicode_nopad_ci"}) {
    SCOPED_TRACE(collation);
    const auto rows =
        serverOrder(std::string("VARCHAR(20) COLLATE ") + collation, kWords, "WEIGHT_STRING(k)");
    expectSameOrder({TKeyOrderKind::Weight, SpaceWeight(*session, collation)}, rows);
  }
  SCOPED_TRACE("latin1_swedish_ci CHAR");
  const std::vector<std::string> latin = {"'abc'", "'ABC'", "'Abc '", "'ab\\t'", "'ab'", "'é'", "'E'",
                                          "'Ä'",   "'å'",   "'z'",    "''",      "NULL", "'y'", "'ü'"};
  expectSameOrder(
      {TKeyOrderKind::Weight, SpaceWeight(*session, "latin1_swedish_ci")},
      serverOrder("CHAR(8) CHARACTER SET latin1 COLLATE latin1_swedish_ci", latin, "WEIGHT_STRING(k)"));
}

TEST_F(KeyOrderTest, NumbersOrderByValueNotByText) {
  expectSameOrder({TKeyOrderKind::Number, {}},
                  serverOrder("DECIMAL(65,10)",
                              {"-99999999999999999999999999999999999999999999999999999.5", "-10", "-9.99",
                               "-9.9", "-0.0000000001", "0", "0.0000000001", "2", "10", "10.5", "100",
                               "99999999999999999999999999999999999999999999999999999", "NULL"}));
  expectSameOrder(
      {TKeyOrderKind::Number, {}},
      serverOrder("BIGINT", {"-9223372036854775808", "-10", "-9", "0", "9", "10", "9223372036854775807"}));
  expectSameOrder(
      {TKeyOrderKind::Number, {}},
      serverOrder("BIGINT UNSIGNED", {"0", "9", "10", "9223372036854775808", "18446744073709551615"}));
  expectSameOrder({TKeyOrderKind::Real, {}}, serverOrder("DOUBLE", {"-1e300", "-2.5", "-1e-300", "0",
                                                                    "1e-300", "2", "10", "1e15", "1e300"}));
  expectSameOrder({TKeyOrderKind::Number, {}},
                  serverOrder("ENUM('zeta','alpha','mid')", {"'alpha'", "'zeta'", "'mid'", "NULL"}, "k+0"));
}

TEST_F(KeyOrderTest, TimesOrderBySignedDuration) {
  expectSameOrder({TKeyOrderKind::Time, {}},
                  serverOrder("TIME(6)", {"'-838:59:59'", "'-100:00:00'", "'-10:00:00'", "'-00:00:00.5'",
                                          "'00:00:00'", "'00:00:00.000001'", "'09:00:00'", "'10:00:00'",
                                          "'100:00:00'", "'838:59:59'"}));
  expectSameOrder({TKeyOrderKind::Bytes, {}},
                  serverOrder("DATETIME(3)", {"'1000-01-01 00:00:00'", "'1999-12-31 23:59:59.999'",
                                              "'2000-01-01 00:00:00'", "'2000-01-01 00:00:00.001'", "NULL"}));
  expectSameOrder({TKeyOrderKind::Bytes, {}},
                  serverOrder("VARBINARY(8)", {"x''", "x'00'", "x'0000'", "x'01'", "x'7F'", "x'80'", "x'FF'",
                                               "x'FF00'", "'A'", "'a'"}));
}

}  // namespace
}  // namespace lomarin
