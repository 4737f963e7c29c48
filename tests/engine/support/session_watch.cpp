#include "session_watch.h"

#include <chrono>
#include <stdexcept>

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
  // A statement that never starts fails the test instead of hanging it.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (scalar(*watcher, running) != "1")
    if (std::chrono::steady_clock::now() > deadline)
      throw std::runtime_error("no statement like " + likePattern + " ran on thread " + std::to_string(threadId));
}

}  // namespace lomarin::test
