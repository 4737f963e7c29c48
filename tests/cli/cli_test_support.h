#pragma once

#include <stdlib.h>

#include <cstdio>
#include <string>
#include <vector>

#include "cli_options.h"
#include "query_command.h"
#include "test_server.h"
#include "test_ssh_server.h"

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
  return {"--host", s.Server,   "--port",     std::to_string(s.Port),
          "--user", s.Username, "--password", s.Password};
}

// What the query command gave back.
struct QueryRun {
  int code;
  std::string out;
  std::string err;
};

inline QueryRun runQueryCommand(const std::vector<std::string>& args) {
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
  const int code = cli::runQuery(cli::parseArgs(args), out, err);
  QueryRun run{code, slurp(out), slurp(err)};
  std::fclose(out);
  std::fclose(err);
  return run;
}

// The settings and data folders of a fresh user, for as long as it lives.
struct FreshUserFolders {
  FreshUserFolders() {
    ::setenv("LOMARIN_CONFIG_DIR", (folder.path() / "config").c_str(), 1);
    ::setenv("LOMARIN_DATA_DIR", (folder.path() / "data").c_str(), 1);
  }
  ~FreshUserFolders() {
    ::unsetenv("LOMARIN_CONFIG_DIR");
    ::unsetenv("LOMARIN_DATA_DIR");
  }
  TempFolder folder;
};

}  // namespace lomarin::test
