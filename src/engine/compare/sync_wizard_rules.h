#pragma once

#include <string>
#include <vector>

#include "engine/connect/my_connection.h"

namespace lomarin {

// The second server as the wizard's first page takes it.
struct TSecondServerFields {
  std::string Username;
  std::string Password;
  std::string Server;
  std::string Port = "3306";
};

// The message that keeps the wizard on its first page; empty when the fields will do.
std::string SecondServerRefusal(const TSecondServerFields& fields);
// The session settings of the second server: those of the first with the typed login and address.
TMySessionSettings SecondServerSettings(const TMySessionSettings& first, const TSecondServerFields& fields);

std::vector<std::string> ListDatabases(TMyConnection& connection);

}  // namespace lomarin
