#pragma once

#include <cstdio>

#include "cli_options.h"

namespace lomarin::cli {

extern const char* const kSyncUsage;

// `lomarin-cli sync [connection options] [flags] SOURCE TARGET`: compares the rows of the tables
// of two databases and writes the statements that make the target's rows equal to the source's to
// out (or --result-file), or applies them (--apply). Prints the summary line to err. Returns 0
// when the tables were equal, 1 when differences were found, 2 on an error.
int runSync(const ParsedArgs& args, std::FILE* out, std::FILE* err);

}  // namespace lomarin::cli
