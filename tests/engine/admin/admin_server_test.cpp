// Maintenance runs and size figures against the real server.
#include <gtest/gtest.h>

#include "engine/admin/maintenance.h"
#include "engine/admin/size_stats.h"
#include "engine/connect/my_query.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin::admin {
namespace {

constexpr const char* kDb = "admin_engine";

class AdminServer : public ::testing::Test {
 protected:
  void SetUp() override {
    test::sideExec(std::string("DROP DATABASE IF EXISTS ") + kDb);
    session = test::connect(kDb);
    test::sideExec(std::string("CREATE TABLE ") + kDb + ".small (id INT PRIMARY KEY) ENGINE=InnoDB");
    test::sideExec(std::string("CREATE TABLE ") + kDb + ".flat (id INT, v VARCHAR(200)) ENGINE=MyISAM");
    test::sideExec(std::string("INSERT INTO ") + kDb + ".flat SELECT seq, REPEAT('x', 150) FROM " + kDb +
                   ".seq_1_to_400");
    log = std::make_unique<test::SentStatements>(*session);
  }
  void TearDown() override { test::sideExec(std::string("DROP DATABASE IF EXISTS ") + kDb); }

  std::vector<TMaintenanceResult> run(const TMaintenancePlan& plan) {
    std::vector<TMaintenanceResult> results;
    RunMaintenance(*session, plan, [&](const TMaintenanceResult& r) { results.push_back(r); });
    return results;
  }

  std::unique_ptr<TMyConnection> session;
  std::unique_ptr<test::SentStatements> log;
};

TEST_F(AdminServer, MaintenanceReportsTheFirstAnswerPerTableAndGoesOnAfterAnError) {
  TMaintenancePlan plan{
      TMaintenanceOperation::Check, TMaintenanceType::Extended, kDb, kDb, {"flat", "missing", "small"}};
  const auto results = run(plan);
  EXPECT_EQ(log->sent,
            (std::vector<std::string>{"check table `flat` Extended", "check table `missing` Extended",
                                      "check table `small` Extended"}));
  ASSERT_EQ(results.size(), 3u);
  EXPECT_EQ(results[0].Table, "flat");
  EXPECT_EQ(results[0].Result, "status : OK");
  // The server answers a missing table with a row of its own, "Error" first.
  EXPECT_EQ(results[1].Result.rfind("Error : Table 'admin_engine.missing' doesn't exist", 0), 0u)
      << results[1].Result;
  EXPECT_EQ(results[2].Result, "status : OK");

  // A statement the server refuses outright: its error is the table's result and the run goes on.
  log->sent.clear();
  plan.Operation = TMaintenanceOperation::Analyze;
  plan.Database = "no_such_db`x";
  plan.Tables = {"a", "small"};
  const auto refused = run(plan);
  ASSERT_EQ(refused.size(), 2u);
  EXPECT_EQ(log->sent[0], "analyze table no_such_db`x.`a`");
  EXPECT_EQ(refused[0].Result.rfind("error : ", 0), 0u) << refused[0].Result;
  EXPECT_EQ(refused[1].Table, "small");
}

TEST_F(AdminServer, MaintenanceOfAnotherDatabaseNamesItAndNothingRunsWithoutTables) {
  EXPECT_TRUE(run({TMaintenanceOperation::Repair, TMaintenanceType::Quick, kDb, kDb, {}}).empty());
  EXPECT_TRUE(log->sent.empty());

  session->Settings.Database.clear();
  ExecSQLText(*session, "USE lomarin_demo");
  log->sent.clear();
  const auto results =
      run({TMaintenanceOperation::Repair, TMaintenanceType::Quick, kDb, "lomarin_demo", {"flat"}});
  EXPECT_EQ(log->sent, std::vector<std::string>{"repair table admin_engine.`flat` Quick"});
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].Result, "status : OK");
}

TEST_F(AdminServer, SizesMatchInformationSchemaWithTheSameRule) {
  const auto tables = ReadTableSizes(*session, kDb);
  ASSERT_EQ(tables.size(), 2u);
  const TDatabaseSize size = DatabaseSizeOf(kDb, tables);
  const std::string expected = test::scalar(
      *session,
      std::string("SELECT SUM((DATA_LENGTH >> 10) + (INDEX_LENGTH >> 10)) FROM information_schema.TABLES "
                  "WHERE TABLE_SCHEMA = '") +
          kDb + "'");
  EXPECT_EQ(std::to_string(size.Kilobytes), expected);
  EXPECT_GT(size.Kilobytes, 0u);
  // MyISAM counts its rows exactly and the InnoDB table is empty.
  EXPECT_EQ(size.Records, 400u);

  bool found = false;
  for (const TDatabaseSize& db : ReadDatabaseSizes(*session))
    if (db.Name == kDb) {
      found = true;
      EXPECT_EQ(db.Kilobytes, size.Kilobytes);
      EXPECT_EQ(db.Tables, 2u);
    }
  EXPECT_TRUE(found);
}

}  // namespace
}  // namespace lomarin::admin
