#pragma once

#include <cstdio>

#include "cli_options.h"

namespace lomarin::cli {

// "sandbox-account": stores the connection options as the account "Local sandbox" unless it
// exists already (then it is left as the user may have changed it).
int runSandboxAccount(const ParsedArgs& args, std::FILE* out, std::FILE* err);

}  // namespace lomarin::cli
