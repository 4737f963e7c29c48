#include "engine/connect/server_version.h"

namespace lomarin {

int ServerVersionNumber(std::string_view versionText) {
  int value = 0;
  int digits = 0;
  for (char c : versionText) {
    if (c < '0' || c > '9') continue;
    value = value * 10 + (c - '0');
    if (++digits == 2) break;
  }
  return value;
}

int ServerMajorVersion(std::string_view versionText) {
  int value = 0;
  for (char c : versionText) {
    if (c < '0' || c > '9') break;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace lomarin
