#include "engine/sqleditor/my_script.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "engine/connect/my_query.h"
#include "engine/sqleditor/script_services.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin {
namespace {

const std::string kThreeStatements =
    "create table t3 (a int primary key);\n"
    "insert into t3 values (1), (1);\n"
    "insert into t3 values (2);\n";

std::string runThree(bool optimize, std::vector<std::string>* sent = nullptr) {
  test::sideExec("DROP DATABASE IF EXISTS script_three");
  auto session = test::connect("script_three");
  test::SentStatements log(*session);
  std::string errors;
  TMyScript script(*session);
  script.SQL = kThreeStatements;
  script.UseOptimization = optimize;
  script.OnError = [&](const ServerError& error, const std::string& statement, TErrorAction& action) {
    EXPECT_EQ(script.StatementLine(), 2u);
    ScriptError(errors, error, statement, action);
  };
  script.Execute();
  if (sent) *sent = log.sent;
  EXPECT_EQ(test::scalar(*session, "select group_concat(a order by a) from t3"), "2");
  return errors;
}

TEST(MyScript, FailingStatementIsCollectedAndTheRestRuns) {
  std::vector<std::string> sent;
  const std::string expected = "insert into t3 values (1), (1)\rDuplicate entry '1' for key 'PRIMARY'\n";
  EXPECT_EQ(runThree(false, &sent), expected);
  EXPECT_EQ(sent, (std::vector<std::string>{"create table t3 (a int primary key)", "insert into t3 values (1), (1)",
                                            "insert into t3 values (2)"}));
  // Batched: the second statement stops the batch, is reported alone, and the third is sent again.
  EXPECT_EQ(runThree(true, &sent), expected);
  ASSERT_EQ(sent.size(), 2u);
  EXPECT_EQ(sent[0], "create table t3 (a int primary key);\ninsert into t3 values (1), (1);\ninsert into t3 values (2)");
  EXPECT_EQ(sent[1], "insert into t3 values (2)");
}

TEST(MyScript, SyntaxErrorsReadTheSameBatchedOrNot) {
  auto run = [](bool optimize) {
    auto session = test::connect();
    std::string errors;
    TMyScript script(*session);
    script.SQL = "select 1;\nselect * from;\nselect 2;\nselect (3;";
    script.UseOptimization = optimize;
    script.OnError = CollectScriptErrors(errors);
    script.Execute();
    return errors;
  };
  const std::string plain = run(false);
  EXPECT_NE(plain.find("select * from\r"), std::string::npos);
  EXPECT_NE(plain.find("select (3\r"), std::string::npos);
  EXPECT_EQ(run(true), plain);
}

TEST(MyScript, WithoutHandlerTheFirstErrorEndsTheRun) {
  auto session = test::connect();
  ExecScriptText(*session, "drop table if exists t_stop");
  std::string reported;
  EXPECT_FALSE(ExecScriptText(*session, "create table t_stop (a int); insert into nowhere values (1); drop table t_stop",
                              [&](const ServerError& e) { reported = e.message(); }));
  EXPECT_EQ(reported, "Table 'lomarin_test.nowhere' doesn't exist");
  EXPECT_EQ(test::scalar(*session, "select count(*) from information_schema.tables where table_name = 't_stop'"), "1");
  EXPECT_TRUE(ExecScriptText(*session, "drop table t_stop;"));
}

TEST(MyScript, DelimiterBlocksAndMacros) {
  auto session = test::connect();
  test::SentStatements log(*session);
  TMyScript script(*session);
  script.SQL =
      "DROP PROCEDURE IF EXISTS p_two;\n"
      "DELIMITER $$\n"
      "CREATE PROCEDURE p_two()\nBEGIN\n  SELECT &a;\n  SELECT '&a';\nEND$$\n"
      "DELIMITER ;\n"
      "CALL p_two();";
  script.Macros = {{"a", "42"}};
  script.UseOptimization = true;
  script.Execute();
  EXPECT_EQ(log.sent, (std::vector<std::string>{
                          "DROP PROCEDURE IF EXISTS p_two",
                          "CREATE PROCEDURE p_two()\nBEGIN\n  SELECT 42;\n  SELECT '&a';\nEND",
                          "CALL p_two()",
                      }));
}

// A line break inside a literal or a routine body is data: it is stored exactly as the script has it.
TEST(MyScript, LineBreaksReachTheServerByteForByte) {
  const auto hexOf = [](const std::string& text) {
    std::string hex;
    for (unsigned char c : text) hex += "0123456789ABCDEF"[c >> 4], hex += "0123456789ABCDEF"[c & 15];
    return hex;
  };
  for (const std::string eol : {"\n", "\r\n"}) {
    for (bool optimize : {false, true}) {
      test::sideExec("DROP DATABASE IF EXISTS script_bytes");
      test::sideExec("CREATE DATABASE script_bytes");
      auto session = test::connect("script_bytes");
      const std::string body = "BEGIN" + eol + "  SELECT 'x" + eol + "y';" + eol + "END";
      TMyScript script(*session);
      script.UseOptimization = optimize;
      script.SQL = "create table t (id int primary key, v varchar(20));" + eol +
                   "insert into t values (1, 'a\nb'), (2, 'c\r\nd');" + eol + "insert into t values (3, 'e" +
                   eol + "f');" + eol + "DELIMITER $$" + eol + "CREATE PROCEDURE p()" + eol + body + "$$" +
                   eol + "DELIMITER ;" + eol;
      script.Execute();
      const std::string context = (eol == "\n" ? "LF" : "CR LF") + std::string(optimize ? ", batched" : "");
      EXPECT_EQ(test::scalar(*session, "select group_concat(hex(v) order by id) from t"),
                "610A62,630D0A64," + hexOf("e" + eol + "f"))
          << context;
      EXPECT_EQ(
          test::scalar(*session, "select hex(body) from mysql.proc where db = 'script_bytes' and name = 'p'"),
          hexOf(body))
          << context;
    }
  }
}

TEST(MyScript, BatchesLeaveOutWhatTheServerWouldReadDifferently) {
  auto session = test::connect();
  test::SentStatements log(*session);
  TMyScript script(*session);
  // A line comment at the end would swallow the separator; a CALL answers with several results.
  script.SQL = "select 1;\nselect 2;\nselect 3 -- three\n;\nselect 4;\nselect 5;\nCALL no_such_proc();\nselect 6;";
  script.UseOptimization = true;
  std::string errors;
  script.OnError = CollectScriptErrors(errors);
  script.Execute();
  EXPECT_EQ(log.sent, (std::vector<std::string>{"select 1;\nselect 2", "select 3 -- three", "select 4;\nselect 5",
                                                "CALL no_such_proc()", "select 6"}));
  EXPECT_EQ(errors, "CALL no_such_proc()\rPROCEDURE lomarin_test.no_such_proc does not exist\n");
}

// One-row INSERTs of one head travel as one multi-row INSERT; a statement that cannot be cut apart
// safely goes as it is, and a folded INSERT that fails goes again row by row.
TEST(MyScript, FoldsOneRowInsertsOfOneHead) {
  test::sideExec("DROP DATABASE IF EXISTS script_fold");
  test::sideExec("CREATE DATABASE script_fold");
  auto session = test::connect("script_fold");
  ASSERT_TRUE(ExecScriptText(*session, "create table t (a int primary key, b varchar(20)); create table `u v` (a int)"));
  test::SentStatements log(*session);
  std::vector<std::string> asked;
  std::string errors;
  TMyScript script(*session);
  script.UseOptimization = true;
  script.FoldInserts = [&](const std::string& head) {
    asked.push_back(head);
    return head.find('`') == std::string::npos;
  };
  script.OnError = [&](const ServerError& error, const std::string& statement, TErrorAction& action) {
    EXPECT_EQ(script.StatementLine(), 12u);
    ScriptError(errors, error, statement, action);
  };
  script.SQL =
      "INSERT INTO t VALUES (1, 'a,(b)');\n"
      "INSERT INTO t VALUES (2, 'it''s \\');');\n"
      "INSERT INTO t(a, b) VALUES (3, NULL);\n"
      "INSERT INTO t(a, b) VALUES (4, 'x\"y');\n"
      "INSERT INTO `u v` VALUES (5);\n"
      "INSERT INTO `u v` VALUES (6);\n"
      "INSERT INTO t VALUES (7, 'x') ON DUPLICATE KEY UPDATE b = 'y';\n"
      "INSERT INTO t VALUES (8, 'x'),(9, 'y');\n"
      "INSERT INTO t VALUES (10, 'x') /* c */;\n"
      "INSERT INTO t VALUES (11, CONCAT('a', 'b'));\n"
      "INSERT INTO t VALUES (12, 'z');\n"
      "INSERT INTO t VALUES (1, 'dup');\n"
      "INSERT INTO t VALUES (13, 'w');\n";
  script.Execute();
  EXPECT_EQ(asked, (std::vector<std::string>{"INSERT INTO t VALUES ", "INSERT INTO t(a, b) VALUES ",
                                             "INSERT INTO `u v` VALUES "}));
  EXPECT_EQ(log.sent, (std::vector<std::string>{
                          "INSERT INTO t VALUES (1, 'a,(b)'),(2, 'it''s \\');')",
                          "INSERT INTO t(a, b) VALUES (3, NULL),(4, 'x\"y')",
                          "INSERT INTO `u v` VALUES (5);\nINSERT INTO `u v` VALUES (6);\n"
                          "INSERT INTO t VALUES (7, 'x') ON DUPLICATE KEY UPDATE b = 'y';\n"
                          "INSERT INTO t VALUES (8, 'x'),(9, 'y');\nINSERT INTO t VALUES (10, 'x') /* c */;\n"
                          "INSERT INTO t VALUES (11, CONCAT('a', 'b'));\n"
                          "INSERT INTO t VALUES (12, 'z'),(1, 'dup'),(13, 'w')",
                          "INSERT INTO t VALUES (12, 'z')",
                          "INSERT INTO t VALUES (1, 'dup')",
                          "INSERT INTO t VALUES (13, 'w')",
                      }));
  EXPECT_EQ(errors, "INSERT INTO t VALUES (1, 'dup')\rDuplicate entry '1' for key 'PRIMARY'\n");
  EXPECT_EQ(test::scalar(*session, "select group_concat(a, ifnull(b, '-') order by a) from t"),
            "1a,(b),2it's ');,3-,4x\"y,7x,8x,9y,10x,11ab,12z,13w");
}

TEST(MyScript, ProgressReachesTheTotal) {
  auto session = test::connect();
  TMyScript script(*session);
  script.SQL = "select 1;\nselect 2;\n";
  std::vector<uint64_t> done;
  script.OnProgress = [&](uint64_t d, uint64_t total) {
    EXPECT_EQ(total, script.SQL.size());
    done.push_back(d);
  };
  script.Execute();
  ASSERT_FALSE(done.empty());
  EXPECT_EQ(done.back(), script.SQL.size());
  EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
}

TEST(MyScript, BreakExecStopsBetweenStatements) {
  auto session = test::connect();
  test::SentStatements log(*session);
  TMyScript script(*session);
  script.SQL = "select 1; select 2; select 3;";
  script.OnProgress = [&](uint64_t, uint64_t) {
    if (log.sent.size() == 1) script.BreakExec();
  };
  script.Execute();
  EXPECT_TRUE(script.Stopped());
  EXPECT_EQ(log.sent, std::vector<std::string>{"select 1"});
}

TEST(MyScript, BreakExecInterruptsTheStatementInProgress) {
  for (bool optimize : {false, true}) {
    auto session = test::connect();
    test::SentStatements log(*session);
    TMyScript script(*session);
    script.SQL = "select 1; SELECT SLEEP(30); select 3;";
    script.UseOptimization = optimize;
    std::string errors;
    script.OnError = CollectScriptErrors(errors);
    std::chrono::steady_clock::time_point asked;
    std::thread stopper([&, threadId = session->ThreadId()] {
      test::awaitRunning(threadId, "%SLEEP(30)%");
      asked = std::chrono::steady_clock::now();
      script.BreakExec();
    });
    script.Execute();
    const auto ended = std::chrono::steady_clock::now();
    stopper.join();
    EXPECT_LT(ended - asked, std::chrono::seconds(1)) << optimize;
    EXPECT_TRUE(script.Stopped());
    EXPECT_EQ(errors, "");
    // Batched, "select 3" travels with the sleep; one by one it is never sent.
    if (!optimize) {
      EXPECT_EQ(log.sent, (std::vector<std::string>{"select 1", "SELECT SLEEP(30)"}));
    }
    EXPECT_EQ(test::scalar(*session, "select 5"), "5");
  }
}

}  // namespace
}  // namespace lomarin
