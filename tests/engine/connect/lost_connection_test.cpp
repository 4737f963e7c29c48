#include "engine/connect/lost_connection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin {
namespace {

// The session under test, wired to the handler the main window uses, with a scripted answer.
struct LostSession {
  LostSession() : handler([this] {
      ++questions;
      return answerRetry;
    }) {
    session = test::connect();
    session->Events.OnConnectionLost = [this] { return handler.onConnectionLost(); };
  }

  void killFromOutside() { test::sideExec("KILL CONNECTION " + std::to_string(session->ThreadId())); }

  std::unique_ptr<TMyConnection> session;
  TLostConnectionHandler handler;
  int questions = 0;
  bool answerRetry = true;
};

TEST(LostConnection, KilledSessionReconnectsSilentlyWithItsDatabaseAndCharset) {
  LostSession t;
  test::sideExec("CREATE DATABASE IF NOT EXISTS lomarin_test_other");
  ASSERT_TRUE(ExecSQLText(*t.session, "USE lomarin_test_other"));
  ASSERT_TRUE(ExecSQLText(*t.session, "SET NAMES latin1"));
  const auto before = t.session->ThreadId();
  test::SentStatements log(*t.session);

  t.killFromOutside();
  TMyQuery query(*t.session);
  query.SQL = "SELECT DATABASE(), @@character_set_client";
  query.Open();
  ASSERT_TRUE(query.Next());
  EXPECT_EQ(query.Value(0), "lomarin_test_other");
  EXPECT_EQ(query.Value(1), "latin1");
  EXPECT_NE(t.session->ThreadId(), before);
  EXPECT_EQ(t.questions, 0);
  EXPECT_EQ(t.handler.retryCount(), 1);
  // The loss was found before sending: the statement went out once, on the new connection.
  EXPECT_EQ(log.sent, std::vector<std::string>{"SELECT DATABASE(), @@character_set_client"});
}

// Kills the session from a connection of its own once its statement is in the server's sleep;
// gives up when the statement ended without sleeping, so a failure cannot hang the test.
class KillWhileSleeping {
 public:
  explicit KillWhileSleeping(TMyConnection& session, std::function<void()> beforeKill = {})
      : threadId_(session.ThreadId()), thread_([this, beforeKill] {
          auto side = test::connect();
          const std::string sleeping =
              "select count(*) from information_schema.processlist where id = " + std::to_string(threadId_) +
              " and state = 'User sleep'";
          while (test::scalar(*side, sleeping) != "1")
            if (statementEnded_) return;
          if (beforeKill) beforeKill();
          test::sideExec("KILL CONNECTION " + std::to_string(threadId_));
        }) {}
  ~KillWhileSleeping() {
    statementEnded_ = true;
    thread_.join();
  }

 private:
  unsigned long threadId_;
  std::atomic<bool> statementEnded_ = false;
  std::thread thread_;
};

TEST(LostConnection, StatementThatMayHaveRunIsReportedNotRepeated) {
  LostSession t;
  ASSERT_TRUE(
      ExecSQLText(*t.session, "CREATE OR REPLACE TABLE lost_n (id INT PRIMARY KEY, n INT) ENGINE=MyISAM"));
  ASSERT_TRUE(ExecSQLText(*t.session, "INSERT INTO lost_n VALUES (1, 0), (2, 0)"));
  std::vector<unsigned> reported;
  {
    // Row 1 is changed at once (a table without transactions keeps it); the kill comes at row 2.
    KillWhileSleeping killer(*t.session);
    EXPECT_FALSE(ExecSQLText(*t.session, "UPDATE lost_n SET n = n + 1 WHERE id = 1 OR SLEEP(30) = 0",
                             [&](const ServerError& e) { reported.push_back(e.number()); }));
  }
  ASSERT_EQ(reported.size(), 1u);
  EXPECT_TRUE(reported[0] == 2013 || reported[0] == 1927) << reported[0];
  EXPECT_EQ(t.handler.retryCount(), 0);
  // The next statement reconnects silently; the update was applied once.
  EXPECT_EQ(test::scalar(*t.session, "SELECT GROUP_CONCAT(n ORDER BY id) FROM lost_n"), "1,0");
  EXPECT_EQ(t.handler.retryCount(), 1);
  EXPECT_EQ(t.questions, 0);
}

TEST(LostConnection, ReadOnlyStatementIsRepeatedSilently) {
  LostSession t;
  ASSERT_TRUE(ExecSQLText(*t.session, "CREATE OR REPLACE TABLE lost_delay (seconds INT)"));
  ASSERT_TRUE(ExecSQLText(*t.session, "INSERT INTO lost_delay VALUES (30)"));
  std::string answer;
  {
    // The repeat must not sleep again.
    KillWhileSleeping killer(*t.session,
                             [] { test::sideExec("UPDATE lomarin_test.lost_delay SET seconds = 0"); });
    answer = test::scalar(*t.session, "/* wait */ SELECT SLEEP(seconds) + 5 FROM lost_delay");
  }
  EXPECT_EQ(answer, "5");
  EXPECT_EQ(t.handler.retryCount(), 1);
  EXPECT_EQ(t.questions, 0);
}

TEST(LostConnection, StatementAfterAnIdleLossIsSentOnce) {
  LostSession t;
  ASSERT_TRUE(ExecSQLText(*t.session, "CREATE OR REPLACE TABLE lost_idle (n INT)"));
  ASSERT_TRUE(ExecSQLText(*t.session, "INSERT INTO lost_idle VALUES (0)"));
  t.killFromOutside();
  // Found gone before it was sent, so the update cannot have run: it is sent on the new connection.
  EXPECT_TRUE(ExecSQLText(*t.session, "UPDATE lost_idle SET n = n + 1"));
  EXPECT_EQ(test::scalar(*t.session, "SELECT n FROM lost_idle"), "1");
  EXPECT_EQ(t.handler.retryCount(), 1);
}

TEST(LostConnection, ReadOnlyStatementsAreTold) {
  for (const char* sql :
       {"select 1", "  SELECT * FROM t;", "/* note */ -- x\nshow tables", "DESC t", "describe t",
        "explain select 1", "EXPLAIN EXTENDED select 1", "help 'select'", "select 'into' from `into`",
        "select 1 -- into\n", "select 1 # ; update t set a = 1"})
    EXPECT_TRUE(IsReadOnlyStatement(sql)) << sql;
  for (const char* sql :
       {"update t set n = n + 1", "DO 1", "select 1 into @a", "SELECT * FROM t INTO OUTFILE '/x'",
        "select 1; update t set a = 1", "explain analyze select 1", "analyze select 1",
        "/*!40101 select 1 */", "call p()", "with c as (select 1) select * from c", "", " ; ", "set @a = 1",
        "insert into t select 1"})
    EXPECT_FALSE(IsReadOnlyStatement(sql)) << sql;
}

TEST(LostConnection, EleventhLossAsksAndOnlyRetryResetsTheCounter) {
  LostSession t;
  for (int i = 1; i <= 10; ++i) {
    t.killFromOutside();
    ASSERT_EQ(test::scalar(*t.session, "SELECT 1"), "1") << "loss " << i;
  }
  EXPECT_EQ(t.questions, 0);
  EXPECT_EQ(t.handler.retryCount(), 10);

  t.killFromOutside();
  EXPECT_EQ(test::scalar(*t.session, "SELECT 2"), "2");
  EXPECT_EQ(t.questions, 1);
  EXPECT_EQ(t.handler.retryCount(), 0);

  for (int i = 1; i <= 10; ++i) {
    t.killFromOutside();
    ASSERT_EQ(test::scalar(*t.session, "SELECT 3"), "3");
  }
  t.answerRetry = false;
  t.killFromOutside();
  try {
    test::scalar(*t.session, "SELECT 4");
    FAIL() << "Abort must raise the lost-connection error";
  } catch (const ServerError& error) {
    EXPECT_TRUE(error.number() == 2006 || error.number() == 2013 || error.number() == 1927) << error.number();
  }
  EXPECT_EQ(t.questions, 2);
  EXPECT_EQ(t.handler.retryCount(), 10);
}

TEST(LostConnection, OpenTransactionOrTableLockIsNeverRepeatedSilently) {
  LostSession t;
  ASSERT_TRUE(ExecSQLText(*t.session, "CREATE TABLE IF NOT EXISTS lost_tx (id INT) ENGINE=InnoDB"));
  ASSERT_TRUE(ExecSQLText(*t.session, "DELETE FROM lost_tx"));
  ASSERT_TRUE(ExecSQLText(*t.session, "START TRANSACTION"));
  ASSERT_TRUE(ExecSQLText(*t.session, "INSERT INTO lost_tx VALUES (1)"));
  t.killFromOutside();
  std::vector<unsigned> reported;
  EXPECT_FALSE(ExecSQLText(*t.session, "INSERT INTO lost_tx VALUES (2)",
                           [&](const ServerError& e) { reported.push_back(e.number()); }));
  EXPECT_EQ(reported.size(), 1u);
  EXPECT_EQ(t.handler.retryCount(), 0);
  // The user has been told; the next statement may reconnect, and nothing of the lost work was kept.
  EXPECT_EQ(test::scalar(*t.session, "SELECT COUNT(*) FROM lost_tx"), "0");
  EXPECT_EQ(t.handler.retryCount(), 1);

  ASSERT_TRUE(ExecSQLText(*t.session, "LOCK TABLES lost_tx WRITE"));
  t.killFromOutside();
  EXPECT_FALSE(ExecSQLText(*t.session, "INSERT INTO lost_tx VALUES (3)"));
  EXPECT_EQ(t.handler.retryCount(), 1);
  EXPECT_TRUE(ExecSQLText(*t.session, "INSERT INTO lost_tx VALUES (4)"));
  EXPECT_EQ(test::scalar(*t.session, "SELECT GROUP_CONCAT(id) FROM lost_tx"), "4");
}

TEST(LostConnection, NoHandlerRaisesTheError) {
  auto session = test::connect();
  test::sideExec("KILL CONNECTION " + std::to_string(session->ThreadId()));
  EXPECT_FALSE(ExecSQLText(*session, "DO 1"));
}

}  // namespace
}  // namespace lomarin
