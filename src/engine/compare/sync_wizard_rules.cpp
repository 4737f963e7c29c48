#include "engine/compare/sync_wizard_rules.h"

#include <charconv>

#include "engine/connect/my_query.h"

namespace lomarin {

namespace {

int parsePort(const std::string& text) {
  int port = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), port);
  return ec == std::errc() && end == text.data() + text.size() && port > 0 && port <= 65535 ? port : 0;
}

}  // namespace

std::string SecondServerRefusal(const TSecondServerFields& fields) {
  if (fields.Username.empty()) return "Missing username";
  if (fields.Password.empty()) return "Missing password";
  if (fields.Server.empty()) return "Missing server";
  if (parsePort(fields.Port) == 0) return "Missing port";
  return {};
}

TMySessionSettings SecondServerSettings(const TMySessionSettings& first, const TSecondServerFields& fields) {
  TMySessionSettings settings = first;
  settings.Username = fields.Username;
  settings.Password = fields.Password;
  settings.Server = fields.Server;
  settings.Port = parsePort(fields.Port);
  settings.Protocol = TMyProtocol::TCP;
  settings.SocketPath.clear();
  settings.TunnelPort = 0;
  settings.Database.clear();
  return settings;
}

std::vector<std::string> ListDatabases(TMyConnection& connection) {
  TMyQuery query(connection);
  query.SQL = "SHOW DATABASES";
  query.Open();
  std::vector<std::string> names;
  while (query.Next()) names.emplace_back(query.Value(0));
  return names;
}

}  // namespace lomarin
