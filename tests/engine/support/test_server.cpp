#include "test_server.h"

#include <cstdlib>
#include <stdexcept>

#include "engine/connect/my_query.h"

namespace lomarin::test {

namespace {

std::string env(const char* name) {
  const char* value = std::getenv(name);
  if (!value || !*value)
    throw std::runtime_error(std::string(name) + " is not set: run the tests through ./test");
  return value;
}

}  // namespace

TMySessionSettings serverSettings() {
  TMySessionSettings s;
  s.Server = env("LOMARIN_TEST_HOST");
  s.Port = std::stoi(env("LOMARIN_TEST_PORT"));
  s.Username = env("LOMARIN_TEST_USER");
  s.Password = env("LOMARIN_TEST_PASSWORD");
  s.Protocol = TMyProtocol::TCP;
  return s;
}

std::string sslDir() { return env("LOMARIN_TEST_SSL_DIR"); }

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

}  // namespace lomarin::test
