#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "test_server.h"

namespace lomarin::test {

// Everything written to a temporary file so far.
inline std::string slurp(std::FILE* f) {
  std::rewind(f);
  std::string text;
  char buf[4096];
  for (size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) text.append(buf, n);
  return text;
}

// The connection options of the test server, as a user would type them.
inline std::vector<std::string> connectionArgs() {
  const auto s = serverSettings();
  return {"--host", s.Server, "--port", std::to_string(s.Port), "--user", s.Username, "--password", s.Password};
}

}  // namespace lomarin::test
