#include "engine/sqleditor/query_results.h"

#include <gtest/gtest.h>

#include "session_watch.h"
#include "test_server.h"

namespace lomarin {
namespace {

std::vector<std::string> column(TMyQuery& query, size_t c) {
  std::vector<std::string> values;
  for (size_t r = 0; query.MoveTo(r); ++r) values.emplace_back(query.IsNull(c) ? "NULL" : query.Value(c));
  return values;
}

TEST(QueryRun, OneRequestGivesTheFirstRowsResultOpenAndTheLaterOnesRead) {
  auto session = test::connect();
  test::SentStatements log(*session);
  test::sideExec("drop table if exists lomarin_test.qr_t");
  const std::string sql =
      "create table qr_t (a int, b varchar(5)); insert into qr_t values (1, 'x'), (2, null); "
      "select a, b from qr_t order by a; do 1; select 'é' as c";
  TQueryRun run = OpenQueryRun(*session, sql, false, 1);
  EXPECT_EQ(log.sent, std::vector<std::string>{sql});
  ASSERT_TRUE(run.First);
  ASSERT_EQ(run.First->Fields().size(), 2u);
  EXPECT_EQ(run.First->Fields()[1].Name, "b");
  // Later results can only be read after the first, so it is complete although one row was asked.
  EXPECT_TRUE(run.First->Eof());
  EXPECT_EQ(column(*run.First, 1), (std::vector<std::string>{"x", "NULL"}));
  ASSERT_EQ(run.Others.size(), 1u);
  EXPECT_EQ(run.Others[0].Columns, std::vector<std::string>{"c"});
  EXPECT_EQ(run.Others[0].Rows.at(0).at(0), "é");

  EXPECT_FALSE(OpenQueryRun(*session, "do 1; set @qr = 2", false, 1).First);

  // A failing statement throws its error; the session stays usable.
  EXPECT_THROW(OpenQueryRun(*session, "select 1; select * from no_such_table_qr", false, 1), ServerError);
  EXPECT_EQ(test::scalar(*session, "select count(*) from qr_t"), "2");
  test::sideExec("drop table lomarin_test.qr_t");
}

TEST(QueryRun, ASingleResultStreamsAfterTheRequestAndMultiStatementsAreOffAgain) {
  auto session = test::connect();
  TQueryRun run = OpenQueryRun(*session, "select seq from seq_1_to_50000", false, 1000);
  ASSERT_TRUE(run.First);
  EXPECT_EQ(run.First->RecordCount(), 1000u);
  EXPECT_FALSE(run.First->Eof());
  ASSERT_TRUE(run.First->MoveTo(29999));
  EXPECT_EQ(run.First->Value(0), "30000");

  // The next statement reads the rest into the first result's buffer and goes out alone.
  TMyQuery other(*session);
  other.SQL = "select 1; select 2";
  EXPECT_THROW(other.Open(), ServerError);
  EXPECT_TRUE(run.First->Eof());
  EXPECT_EQ(run.First->RecordCount(), 50000u);

  TQueryRun all = OpenQueryRun(*session, "select seq from seq_1_to_3000", true, 10);
  EXPECT_EQ(all.First->RecordCount(), 3000u);
}

}  // namespace
}  // namespace lomarin
