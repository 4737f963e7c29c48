#pragma once

#include <string>

#include "engine/connect/accounts.h"
#include "test_server.h"

namespace lomarin::test {

// A stored account that logs in to the private server with a current database.
inline TAccount sandboxAccount(const std::string& database = "lomarin_demo") {
  const auto server = serverSettings();
  TAccount a;
  a.Login = server.Username;
  a.Password = server.Password;
  a.Server = server.Server;
  a.Port = server.Port;
  a.Database = database;
  return a;
}

}  // namespace lomarin::test
