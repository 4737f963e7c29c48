#pragma once

#include <cstdio>
#include <string>

#include "cli_options.h"

namespace lomarin::cli {

// `lomarin-cli query [connection options] STATEMENT`: prints the result as tab-separated rows
// while it streams. Returns the process exit status.
int runQuery(const ParsedArgs& args, std::FILE* out, std::FILE* err);

}  // namespace lomarin::cli
