#pragma once

#include <cstdio>

#include "cli_options.h"

namespace lomarin::cli {

// `lomarin-cli exec [connection options] [--optimize] FILE`: runs a script (FILE "-" reads
// standard input) statement by statement, printing each failing statement and its error to err
// and going on. Shows a progress line when err is a terminal. Returns the exit status: 0 when
// every statement ran, 1 when one failed or the server could not be reached, 2 for bad usage.
int runExec(const ParsedArgs& args, std::FILE* err);

}  // namespace lomarin::cli
