#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "cli_options.h"
#include "engine/transfer/my_dump.h"

namespace lomarin::cli {

// What the flags of `lomarin-cli dump` ask the engine for.
struct DumpRequest {
  TMyDumpObjects objects;
  TMyDumpOptions options;
  std::string tableNames, routineNames, triggerNames;
  std::string outputFile;  // empty: standard output
  std::string query;       // a SELECT whose rows are written instead of whole objects
};

// Reads the command's own flags; throws std::invalid_argument on an unknown or malformed one.
DumpRequest parseDumpFlags(const std::vector<std::string>& flags);

// `lomarin-cli dump [connection options] [flags] DATABASE`: writes the database as an SQL script
// to standard output or --result-file. Progress goes to err when it is a terminal.
// Returns the process exit status.
int runDump(const ParsedArgs& args, std::FILE* out, std::FILE* err);

extern const char* const kDumpUsage;

}  // namespace lomarin::cli
