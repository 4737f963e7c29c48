#include "session_watch.h"

#include "test_server.h"

namespace lomarin::test {

SentStatements::SentStatements(TMyConnection& session) {
  monitor.addListener([this](const std::string& line) { sent.push_back(line.substr(line.find("] ") + 2)); });
  session.setMonitor(&monitor);
}

void awaitRunning(unsigned long threadId, const std::string& likePattern) {
  const auto watcher = connect();
  const std::string running =
      "SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE ID = " + std::to_string(threadId) +
      " AND INFO LIKE '" + likePattern + "'";
  while (scalar(*watcher, running) != "1") {
  }
}

}  // namespace lomarin::test
