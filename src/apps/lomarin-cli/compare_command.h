#pragma once

#include <cstdio>

#include "cli_options.h"

namespace lomarin::cli {

extern const char* const kCompareUsage;

// `lomarin-cli compare [connection options] [flags] SOURCE TARGET`: compares the structure of two
// databases (or script files) and writes the script that turns the target into the source to out
// (or --result-file), or runs it on a live target (--apply). Returns 0 when the two are equal, 1
// when they differ, 2 on an error.
int runCompare(const ParsedArgs& args, std::FILE* out, std::FILE* err);

}  // namespace lomarin::cli
