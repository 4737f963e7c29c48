#include "engine/compare/my_sql_exec.h"

#include <gtest/gtest.h>

#include "engine/compare/compare_error.h"
#include "test_server.h"

namespace lomarin {
namespace {

struct ExecRun {
  std::vector<std::string> log;
  std::vector<std::string> errors;
  TMySQLExec exec;

  explicit ExecRun(TMyConnection* connection) {
    exec.Connection = connection;
    exec.OnLogNextLine = [this](const std::string& line) { log.push_back(line); };
    exec.OnErrorMessage = [this](const std::string& message) { errors.push_back(message); };
  }
};

class MySQLExecTest : public ::testing::Test {
 protected:
  void SetUp() override {
    test::sideExec("DROP DATABASE IF EXISTS exec_target");
    session = test::connect("exec_target");
  }
  std::string tables() {
    return test::scalar(*session,
                        "SELECT IFNULL(GROUP_CONCAT(TABLE_NAME ORDER BY TABLE_NAME), '') FROM "
                        "information_schema.TABLES WHERE TABLE_SCHEMA = 'exec_target'");
  }
  std::unique_ptr<TMyConnection> session;
};

TEST(MySQLExecRefusal, NamesTheComponentOrTheEmptyScript) {
  TMySQLExec exec;
  exec.Name = "ExecTarget";
  try {
    exec.ExecuteScript("CREATE TABLE t (a INT);");
    FAIL() << "ran without a connection";
  } catch (const CompareError& e) {
    EXPECT_STREQ("(ExecTarget): Connection property not assigned.", e.what());
  }
  TMyConnection unconnected;
  exec.Connection = &unconnected;
  try {
    exec.ExecuteScript("\r\n  /* Create Table... */\r\n-- nothing\r\n");
    FAIL() << "ran an empty script";
  } catch (const CompareError& e) {
    EXPECT_STREQ("Update script is empty.", e.what());
  }
}

TEST_F(MySQLExecTest, RunsEveryStatementIncludingDelimiterBlocks) {
  ExecRun run(session.get());
  auto result = run.exec.ExecuteScript(
      "CREATE TABLE a (id INT);\r\n"
      "DELIMITER $$\r\n"
      "CREATE PROCEDURE p()\r\nBEGIN\r\n  INSERT INTO a VALUES (1);\r\n  INSERT INTO a VALUES "
      "(2);\r\nEND$$\r\n"
      "DELIMITER ;\r\n"
      "CALL p();\r\n");
  EXPECT_EQ(0, result.Errors);
  EXPECT_EQ((std::vector<std::string>{"Updating target database...", "< Script executed succesfully! >"}),
            run.log);
  EXPECT_EQ("3", test::scalar(*session, "SELECT SUM(id) FROM a"));
}

TEST_F(MySQLExecTest, SkipsAFailedStatementWithItsLinesCommentedOut) {
  ExecRun run(session.get());
  auto result = run.exec.ExecuteScript(
      "CREATE TABLE a (id INT);\r\n"
      "ALTER TABLE missing\r\n  ADD b INT;\r\n"
      "CREATE TABLE b (id INT);\r\n"
      "DROP TABLE nothere;\r\n");
  EXPECT_EQ(2, result.Errors);
  EXPECT_FALSE(result.BrokeOnError);
  EXPECT_EQ((std::vector<std::string>{"Updating target database...",
                                      "< Skipping statement >:", "// ALTER TABLE missing", "//   ADD b INT",
                                      "< Skipping statement >:", "// DROP TABLE nothere",
                                      "< Script executed: 2 errors... >"}),
            run.log);
  ASSERT_EQ(2u, run.errors.size());
  EXPECT_NE(std::string::npos, run.errors[0].find("missing")) << run.errors[0];
  EXPECT_EQ("a,b", tables());
}

TEST_F(MySQLExecTest, BreakOnErrorStopsAtTheFirstFailure) {
  ExecRun run(session.get());
  run.exec.BreakOnError = true;
  auto result =
      run.exec.ExecuteScript("CREATE TABLE a (id INT);\nDROP TABLE nothere;\nCREATE TABLE b (id INT);\n");
  EXPECT_EQ(1, result.Errors);
  EXPECT_TRUE(result.BrokeOnError);
  EXPECT_EQ((std::vector<std::string>{"Updating target database...", "< Break on Error! >"}), run.log);
  EXPECT_EQ("a", tables());
}

TEST_F(MySQLExecTest, StopEndsTheRunBeforeTheNextStatement) {
  ExecRun run(session.get());
  run.exec.OnProgress = [&](size_t, size_t) { run.exec.Stop(); };
  auto result = run.exec.ExecuteScript("CREATE TABLE a (id INT);\nCREATE TABLE b (id INT);\n");
  EXPECT_TRUE(result.Stopped);
  EXPECT_EQ("a", tables());
  // A stopped component runs again from the start.
  run.exec.OnProgress = nullptr;
  EXPECT_FALSE(run.exec.ExecuteScript("CREATE TABLE c (id INT);").Stopped);
  EXPECT_EQ("a,c", tables());
  // A Stop that comes before the run begins (from another thread) is not lost.
  run.exec.Stop();
  EXPECT_TRUE(run.exec.ExecuteScript("CREATE TABLE d (id INT);").Stopped);
  EXPECT_EQ("a,c", tables());
}

}  // namespace
}  // namespace lomarin
