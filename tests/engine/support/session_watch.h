#pragma once

#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"

namespace lomarin::test {

// The statements a session sends while this lives, without the monitor's time stamp.
struct SentStatements {
  explicit SentStatements(TMyConnection& session);
  TMySQLMonitor monitor;
  std::vector<std::string> sent;
};

// Waits until the session of this thread id runs a statement LIKE the pattern; throws after 30 s.
void awaitRunning(unsigned long threadId, const std::string& likePattern);

}  // namespace lomarin::test
