#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"

namespace lomarin::test {

// Where ./test started the private server (LOMARIN_TEST_* variables). A test that needs the
// server fails when they are missing: it never skips.
TMySessionSettings serverSettings();
std::string sslDir();

// A connected session whose current database is a scratch one the tests may fill.
std::unique_ptr<TMyConnection> connect(const std::string& database = "lomarin_test");

// Runs statements on a connection of its own, e.g. to kill the session under test.
void sideExec(const std::string& sql);

// First column of the first row.
std::string scalar(TMyConnection& session, const std::string& sql);

// One column of every row, NULL written "NULL".
std::vector<std::string> column(TMyConnection& session, const std::string& sql, size_t index = 0);

// Runs SELECT SLEEP(30) on session, kills it from a side connection once the server shows it, and
// expects the sleep to end within a second and the session to go on.
void expectKillStopsASleepWithinASecond(TMyConnection& session);

}  // namespace lomarin::test
