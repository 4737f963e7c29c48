#include <gtest/gtest.h>

#include "engine/connect/lost_connection.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "engine/connect/sql_monitor.h"
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

TEST(LostConnectionHandler, TenSilentRetriesThenAskUntilRetry) {
  int asked = 0;
  bool retry = false;
  TLostConnectionHandler handler([&] {
    ++asked;
    return retry;
  });
  for (int i = 1; i <= 10; ++i) {
    EXPECT_EQ(handler.onConnectionLost(), RetryMode::ReconnectExecute);
    EXPECT_EQ(handler.retryCount(), i);
  }
  EXPECT_EQ(asked, 0);
  EXPECT_EQ(handler.onConnectionLost(), RetryMode::Raise);  // Abort keeps the counter at ten
  EXPECT_FALSE(handler.reconnecting());
  EXPECT_EQ(handler.onConnectionLost(), RetryMode::Raise);
  EXPECT_EQ(asked, 2);
  retry = true;
  EXPECT_EQ(handler.onConnectionLost(), RetryMode::ReconnectExecute);
  EXPECT_EQ(handler.retryCount(), 0);
  EXPECT_EQ(handler.onConnectionLost(), RetryMode::ReconnectExecute);
  EXPECT_EQ(asked, 3);
}

TEST(LostConnection, KilledSessionReconnectsSilentlyWithItsDatabaseAndCharset) {
  LostSession t;
  TMySQLMonitor monitor;
  std::vector<std::string> lines;
  monitor.addListener([&](const std::string& line) { lines.push_back(line); });
  t.session->setMonitor(&monitor);
  test::sideExec("CREATE DATABASE IF NOT EXISTS lomarin_test_other");
  ASSERT_TRUE(ExecSQLText(*t.session, "USE lomarin_test_other"));
  ASSERT_TRUE(ExecSQLText(*t.session, "SET NAMES latin1"));
  const auto before = t.session->ThreadId();

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
  // The statement went out twice: once on the dead connection, once after reconnecting.
  ASSERT_GE(lines.size(), 2u);
  EXPECT_TRUE(lines[lines.size() - 1].ends_with("] SELECT DATABASE(), @@character_set_client"));
  EXPECT_TRUE(lines[lines.size() - 2].ends_with("] SELECT DATABASE(), @@character_set_client"));
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
