#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/compare/sync_connection.h"
#include "engine/compare/sync_plan.h"

namespace lomarin {

class TBlobFileWriter;
class TMySQLExec;

struct TAllowedOperations {
  bool Insert = true;
  bool Update = true;
  bool Delete = true;
};

struct TSyncScriptOptions {
  // The session statements ahead of the first statement: SET CHARACTER SET, SET NAMES, USE, SET BLOBFILE.
  bool WriteHeader = true;
  std::string CharacterSet;
  std::string Names;
  bool UseDatabase = true;
};

struct TSyncCounters {
  uint64_t Inserted = 0;
  uint64_t Updated = 0;
  uint64_t Deleted = 0;
  uint64_t Equal = 0;
  uint64_t Errors = 0;
  uint64_t ReadMaster = 0;
  uint64_t ReadTarget = 0;

  uint64_t All() const { return Inserted + Updated + Deleted + Equal; }
  bool Differences() const { return Inserted + Updated + Deleted > 0; }
};

// Compares the rows of one table pair in key order and writes the INSERT, UPDATE and DELETE
// statements that make the target rows equal to the master rows. Both sides stream on
// connections of their own, so memory stays flat whatever the table size.
class TTableDataComparer {
 public:
  std::string TableNameMaster;
  std::string TableNameTarget;
  TDBCConnectionMySql* DBCConnectionMaster = nullptr;
  TDBCConnectionMySql* DBCConnectionTarget = nullptr;
  TSyncTableOptions TableOptionsMaster;
  TSyncTableOptions TableOptionsTarget;
  std::vector<std::string> CustomKeyFields;
  std::vector<std::string> CustomDataFields;
  TAllowedOperations AllowedOperations;
  TSyncScriptOptions ScriptOptions;
  // Where the script goes: ScriptFileName when set, else OnScriptText when set, else Script.
  std::string ScriptFileName;
  std::function<void(std::string_view text)> OnScriptText;
  std::string Script;
  // Binary values go to this file (".LOB"); a BlobFile given by the caller takes precedence, so
  // that several pairs share one. Without either, HexBlobs writes them as hex literals.
  std::string BlobFileName;
  TBlobFileWriter* BlobFile = nullptr;
  bool HexBlobs = false;

  // Runs the pair's statements on the target once it is compared, through SQLExec when given.
  bool UpdateImmediately = false;
  TMySQLExec* SQLExec = nullptr;

  bool CompareBlobs = true;
  bool IncludeBlobs = true;
  // Keys only: rows present on both sides count as equal.
  bool ExcludeDataFields = false;
  bool TrimCharFields = false;
  bool IgnoreComputedFields = true;
  // On: a key the collation calls equal but spelled otherwise (case, accents, trailing spaces) is
  // rewritten to the master's spelling. Off: the target keeps its spelling. Table names are
  // looked up case-insensitively when off.
  bool CaseSensitive = true;
  // Counts both sides first, for progress.
  bool CountRows = true;

  std::function<void(const std::string& line)> OnLogNextLine;
  std::function<void(const std::string& message)> OnErrorMessage;
  std::function<void(const std::string& message)> OnWarningMessage;
  // Rows read on each side so far and their counts (0 when not counted).
  std::function<void(uint64_t master, uint64_t masterTotal, uint64_t target, uint64_t targetTotal)>
      OnProgress;

  // Throws CompareError for a refusal and ServerError for a server failure, after logging it.
  void CompareData();
  // Any thread: the run ends at the next row.
  void Stop() { stop_ = true; }
  const TSyncCounters& Counters() const { return counters_; }

 private:
  struct Run;
  void run(Run& r);
  void log(const std::string& line) const;
  void error(const std::string& message);

  TSyncCounters counters_;
  std::atomic<bool> stop_ = false;
};

}  // namespace lomarin
