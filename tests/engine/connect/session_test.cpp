#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "engine/connect/server_version.h"
#include "engine/connect/sql_monitor.h"
#include "test_server.h"

namespace lomarin {
namespace {

TEST(ServerVersion, ReadsTwoDigitsAndMajor) {
  EXPECT_EQ(ServerVersionNumber("5.1.73"), 51);
  EXPECT_EQ(ServerVersionNumber("5.0.96"), 50);
  EXPECT_EQ(ServerVersionNumber("10.11.6"), 10);
  EXPECT_EQ(ServerVersionNumber("4.1.22-community"), 41);
  EXPECT_EQ(ServerVersionNumber("5.5.5-10.11.6-MariaDB"), 55);
  EXPECT_EQ(ServerVersionNumber(""), 0);
  EXPECT_EQ(ServerMajorVersion("5.5.5-10.11.6-MariaDB"), 5);
  EXPECT_EQ(ServerMajorVersion("10.11.6"), 10);
  EXPECT_EQ(ServerMajorVersion("8.0.36"), 8);
}

TEST(Session, EventsRunInOrderAroundConnectAndDisconnect) {
  TMyConnection session;
  session.Settings = test::serverSettings();
  std::vector<std::string> seen;
  session.Events.BeforeConnect = [&] { seen.push_back(session.Connected() ? "before+" : "before-"); };
  session.Events.AfterConnect = [&] { seen.push_back(session.Connected() ? "after+" : "after-"); };
  session.Events.BeforeDisconnect = [&] { seen.push_back(session.Connected() ? "bdisc+" : "bdisc-"); };
  session.Events.AfterDisconnect = [&] { seen.push_back(session.Connected() ? "adisc+" : "adisc-"); };
  session.Connect();
  session.Disconnect();
  session.Disconnect();  // a second disconnect is no event
  EXPECT_EQ(seen, (std::vector<std::string>{"before-", "after+", "bdisc+", "adisc-"}));
}

TEST(Session, HandshakeVersionOfMariaDbReadsAsFiveFiveAndTheInfoTextNamesIt) {
  auto session = test::connect();
  EXPECT_EQ(session->ServerVersion().rfind("5.5.5-", 0), 0u) << session->ServerVersion();
  EXPECT_NE(session->ServerVersion().find(test::scalar(*session, "SELECT VERSION()")), std::string::npos);
  EXPECT_EQ(session->ServerMajorVersion(), 5);
  EXPECT_EQ(session->ServerVersionNumber(), 55);
  EXPECT_EQ(session->GetMySQLinfo(), "MySQL Server   " + session->ServerVersion() + "\nMySQL Client   " +
                                         session->ClientVersion() + "\nCharset        utf8mb4\r\n");
}

TEST(Session, CharsetDefaultIsLeftToServerAndNamedOneIsApplied) {
  TMyConnection session;
  session.Settings = test::serverSettings();
  session.Settings.UseUnicode = false;
  session.Connect();
  // Nothing asked for: the client and server agree on whatever the handshake settled.
  const std::string negotiated = test::scalar(session, "SELECT @@character_set_client");
  EXPECT_EQ(session.CharsetName(), negotiated);

  session.Settings.Charset = "latin1";
  session.Connect();
  EXPECT_EQ(test::scalar(session, "SELECT @@character_set_client"), "latin1");
  EXPECT_EQ(test::scalar(session, "SELECT @@character_set_results"), "latin1");
  EXPECT_EQ(session.CharsetName(), "latin1");

  session.Settings.Charset.clear();
  session.Settings.UseUnicode = true;
  session.Connect();
  EXPECT_EQ(test::scalar(session, "SELECT @@character_set_connection"), "utf8mb4");
}

TEST(Session, ConnectionTimeoutAppliesFromFifteenSeconds) {
  TMyConnection session;
  session.Settings = test::serverSettings();
  session.Settings.ConnectionTimeout = 14;
  session.Connect();
  EXPECT_EQ(session.AppliedConnectTimeout(), 0u);
  session.Settings.ConnectionTimeout = 15;
  session.Connect();
  EXPECT_EQ(session.AppliedConnectTimeout(), 15u);
}

TEST(Session, FailingStatementCarriesServerNumberStateAndMessage) {
  auto session = test::connect();
  std::vector<unsigned> errorEvents;
  session->Events.OnError = [&](const ServerError& e) { errorEvents.push_back(e.number()); };
  TMyQuery query(*session);
  query.SQL = "SELECT * FROM no_such_table_here";
  try {
    query.Open();
    FAIL() << "the statement should have failed";
  } catch (const ServerError& error) {
    EXPECT_EQ(error.number(), 1146u);
    EXPECT_EQ(error.sqlstate(), "42S02");
    EXPECT_NE(error.message().find("no_such_table_here"), std::string::npos) << error.message();
  }
  EXPECT_EQ(errorEvents, std::vector<unsigned>{1146});
  ASSERT_TRUE(session->LastError().has_value());
  EXPECT_EQ(session->LastError()->number(), 1146u);

  std::vector<std::string> reported;
  EXPECT_FALSE(ExecSQLText(*session, "DROP TABLE no_such_table_here",
                           [&](const ServerError& e) { reported.push_back(e.message()); }));
  ASSERT_EQ(reported.size(), 1u);
  EXPECT_NE(reported[0].find("no_such_table_here"), std::string::npos);
  EXPECT_TRUE(ExecSQLText(*session, "DO 1"));
  // The session stays usable after errors.
  EXPECT_EQ(test::scalar(*session, "SELECT 40+2"), "42");
}

TEST(Session, BadLoginAndUnreachableServerReportTheClientError) {
  TMyConnection session;
  session.Settings = test::serverSettings();
  session.Settings.Password = "certainly-wrong";
  try {
    session.Connect();
    FAIL() << "connect should have failed";
  } catch (const ServerError& error) {
    EXPECT_EQ(error.number(), 1045u);
    EXPECT_NE(error.message().find("Access denied"), std::string::npos);
  }
  EXPECT_FALSE(session.Connected());

  session.Settings = test::serverSettings();
  session.Settings.Port = 1;  // nothing listens there
  try {
    session.Connect();
    FAIL() << "connect should have failed";
  } catch (const ServerError& error) {
    EXPECT_TRUE(error.number() == 2002u || error.number() == 2003u) << error.number() << " " << error.message();
  }
  TMyQuery query(session);
  query.SQL = "SELECT 1";
  EXPECT_THROW(query.Open(), ServerError);
}

TEST(Session, MultiStatementsOnlyInTheirScopeWhereAStreamedQueryLeavesTheSessionAfterItsLastResult) {
  auto session = test::connect();
  const auto refused = [&] { EXPECT_FALSE(ExecSQLText(*session, "DO 1; DO 2")); };
  refused();
  {
    TMyConnection::MultiStatements multi(*session);
    {
      TMyQuery query(*session);
      query.SQL = "SELECT 1 UNION SELECT 2; SELECT 3";
      query.UniDirectional = true;
      query.FetchAll = false;
      query.Open();
      ASSERT_TRUE(query.Next());  // the second row stays unread
      ASSERT_TRUE(query.NextResult());
      ASSERT_TRUE(query.Next());
      EXPECT_EQ(query.Value(0), "3");
      EXPECT_FALSE(query.NextResult());
    }
    EXPECT_TRUE(ExecSQLText(*session, "DO 1"));
  }
  refused();
  EXPECT_EQ(test::scalar(*session, "SELECT 4"), "4");
}

TEST(Session, MonitorTracesEveryStatementSentWhileActive) {
  TMySQLMonitor monitor;
  std::vector<std::string> lines;
  monitor.addListener([&](const std::string& line) { lines.push_back(line); });
  auto session = test::connect();
  session->setMonitor(&monitor);
  EXPECT_TRUE(ExecSQLText(*session, "DO 1"));
  EXPECT_FALSE(ExecSQLText(*session, "DO no_such_function()"));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(std::regex_match(lines[0], std::regex(R"(\[SQL \d\d:\d\d:\d\d \] DO 1)"))) << lines[0];
  EXPECT_TRUE(lines[1].ends_with(" ] DO no_such_function()"));

  monitor.setActive(false);
  EXPECT_TRUE(ExecSQLText(*session, "DO 2"));
  EXPECT_EQ(lines.size(), 2u);
  EXPECT_EQ(TMySQLMonitor::formatLine("10:20:30", "select 1"), "[SQL 10:20:30 ] select 1");
}

}  // namespace
}  // namespace lomarin
