#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/transfer/dump_options.h"
#include "engine/transfer/dump_sink.h"

namespace lomarin {

// A misuse of the dump engine, or a run stopped on request; server failures stay ServerError.
class DumpError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Writes the objects of one database as an SQL script with CR LF line ends. Every statement goes
// through Connection; rows are streamed, so memory stays flat whatever the table size.
class TMyDump {
 public:
  TMyDump() = default;
  explicit TMyDump(TMyConnection* connection) : Connection(connection) {}

  TMyConnection* Connection = nullptr;
  // The database to dump; empty means the session's current one.
  std::string Database;
  // Names separated by ","; blanks around a name are ignored, and so is a ".<database>" suffix.
  // Empty means every object of that kind.
  std::string TableNames;
  std::string StoredProcNames;
  std::string TriggerNames;
  TMyDumpObjects Objects = TMyDumpObjects::all();
  TMyDumpOptions Options;

  // The script of the last Backup() or BackupQuery() without a sink, one entry per line.
  std::vector<std::string> SQL;

  std::function<void(const std::string& objectName, int objectNum, int objectCount, int percent)>
      OnBackupProgress;
  // Read between objects and rows; true ends the run with a DumpError.
  std::function<bool()> StopRequested;
  // The time the header shows; the system clock when unset.
  std::function<std::chrono::system_clock::time_point()> Clock;

  void Backup();
  void Backup(TDumpSink& sink);
  // INSERT statements for the rows one SELECT on one table returns.
  void BackupQuery(const std::string& query);
  void BackupQuery(const std::string& query, TDumpSink& sink);

  // Writes SQL to a file with CR LF line ends, through a temporary file beside it.
  void SaveToFile(const std::filesystem::path& file) const;
  std::string Text() const;
};

}  // namespace lomarin
