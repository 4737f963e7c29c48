#include "test_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>

#include "engine/connect/kill_query.h"
#include "engine/connect/my_query.h"
#include "engine/connect/server_error.h"
#include "session_watch.h"
#include "test_host.h"

namespace lomarin::test {

TMySessionSettings serverSettings() {
  TMySessionSettings s;
  s.Server = requiredEnv("LOMARIN_TEST_HOST");
  s.Port = std::stoi(requiredEnv("LOMARIN_TEST_PORT"));
  s.Username = requiredEnv("LOMARIN_TEST_USER");
  s.Password = requiredEnv("LOMARIN_TEST_PASSWORD");
  s.Protocol = TMyProtocol::TCP;
  return s;
}

std::string sslDir() { return requiredEnv("LOMARIN_TEST_SSL_DIR"); }

std::unique_ptr<TMyConnection> connect(const std::string& database) {
  sideExec("CREATE DATABASE IF NOT EXISTS `" + database + "`");
  auto session = std::make_unique<TMyConnection>();
  session->Settings = serverSettings();
  session->Settings.Database = database;
  session->Connect();
  return session;
}

void sideExec(const std::string& sql) {
  TMyConnection side;
  side.Settings = serverSettings();
  side.Connect();
  TMyQuery query(side);
  query.SQL = sql;
  query.Execute();
}

std::string scalar(TMyConnection& session, const std::string& sql) {
  TMyQuery query(session);
  query.SQL = sql;
  query.Open();
  if (!query.Next()) throw std::runtime_error("no row from: " + sql);
  return std::string(query.Value(0));
}

std::vector<std::string> column(TMyConnection& session, const std::string& sql, size_t index) {
  TMyQuery query(session);
  query.SQL = sql;
  query.Open();
  std::vector<std::string> values;
  while (query.Next()) values.emplace_back(query.IsNull(index) ? "NULL" : query.Value(index));
  return values;
}

void expectKillStopsASleepWithinASecond(TMyConnection& session) {
  const unsigned long threadId = session.ThreadId();
  auto sleeping = std::async(std::launch::async, [&session] {
    try {
      TMyQuery query(session);
      query.SQL = "SELECT SLEEP(30)";
      query.Open();
      query.Next();
      return std::string(query.Value(0));
    } catch (const ServerError& error) {
      return std::to_string(error.number());
    }
  });
  awaitRunning(threadId, "SELECT SLEEP%");
  const auto start = std::chrono::steady_clock::now();
  KillQuery(session.Settings, threadId);
  ASSERT_EQ(sleeping.wait_for(std::chrono::seconds(1)), std::future_status::ready);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  // An interrupted SLEEP answers 1, or the server reports the interruption (1317).
  const std::string outcome = sleeping.get();
  EXPECT_TRUE(outcome == "1" || outcome == "1317") << outcome;
  EXPECT_EQ(scalar(session, "SELECT 2"), "2");
}

}  // namespace lomarin::test
