#pragma once

#include <filesystem>
#include <string>

namespace lomarin::test {

// A variable ./test sets; throws when it is missing.
std::string requiredEnv(const char* name);
// The whole text of a file; empty when it cannot be read.
std::string readText(const std::filesystem::path& file);
// Whether something takes TCP connections on this port of 127.0.0.1.
bool listening(int port);
// A free port of 127.0.0.1 at the moment of asking.
int freeLoopbackPort();

}  // namespace lomarin::test
