#include "engine/sqleditor/query_results.h"

#include <gtest/gtest.h>

#include "engine/connect/sql_monitor.h"
#include "test_server.h"

namespace lomarin {
namespace {

TEST(QueryResults, OneRequestGivesEveryResult) {
  auto session = test::connect();
  TMySQLMonitor monitor;
  std::vector<std::string> sent;
  monitor.addListener([&](const std::string& line) { sent.push_back(line.substr(line.find("] ") + 2)); });
  session->setMonitor(&monitor);
  test::sideExec("drop table if exists lomarin_test.qr_t");
  const std::string sql =
      "create table qr_t (a int, b varchar(5)); insert into qr_t values (1, 'x'), (2, null); "
      "select a, b from qr_t order by a; select 'é' as c";
  const std::vector<TResultSet> results = OpenAllResults(*session, sql);
  EXPECT_EQ(sent, std::vector<std::string>{sql});
  ASSERT_EQ(results.size(), 4u);
  EXPECT_TRUE(results[0].Columns.empty());
  EXPECT_EQ(results[1].RowsAffected, 2u);
  EXPECT_EQ(results[2].Columns, (std::vector<std::string>{"a", "b"}));
  ASSERT_EQ(results[2].Rows.size(), 2u);
  EXPECT_EQ(results[2].Rows[0][1], "x");
  EXPECT_EQ(results[2].Rows[1][1], std::nullopt);
  EXPECT_EQ(results[3].Rows[0][0], "é");

  // A failing statement throws its error; the session stays usable.
  EXPECT_THROW(OpenAllResults(*session, "select 1; select * from no_such_table_qr"), ServerError);
  EXPECT_EQ(test::scalar(*session, "select count(*) from qr_t"), "2");
  test::sideExec("drop table lomarin_test.qr_t");
}

}  // namespace
}  // namespace lomarin
