#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "engine/connect/sql_monitor.h"
#include "engine/transfer/my_dump.h"
#include "test_server.h"

namespace lomarin::test {

// Statements a session sent, as the monitor traced them, without the time stamp.
struct SentLog {
  explicit SentLog(TMyConnection& session) {
    monitor.addListener(
        [this](const std::string& line) { sent.push_back(line.substr(line.find("] ") + 2)); });
    session.setMonitor(&monitor);
  }
  TMySQLMonitor monitor;
  std::vector<std::string> sent;
};

// A fresh database filled by the given statements, a session on it and a dump engine bound to it
// with a fixed script date (header times read in UTC).
struct DumpFixture {
  DumpFixture(const std::string& database, const std::vector<std::string>& setup);

  std::string script();  // Backup() into SQL, joined with CR LF
  std::string header() const;
  static std::string opening(bool foreignKeys);
  static std::string closing(bool foreignKeys);

  std::string database;
  std::unique_ptr<TMyConnection> session;
  TMyDump dump;
};

}  // namespace lomarin::test
