#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/compare/table_data_comparer.h"

namespace lomarin {

struct TDataSyncPair {
  std::string Master;
  std::string Target;
  bool operator==(const TDataSyncPair&) const = default;
};

struct TDataSyncSettings {
  TMySessionSettings Master;  // Database names each side's database
  TMySessionSettings Target;
  std::vector<TDataSyncPair> Pairs;
  bool CaseSensitive = true;
  // Empty or "default": the script sets no character set.
  std::string Charset;
  // Binary values go to this file; without it, HexBlobs writes hex literals.
  std::string BlobFileName;
  bool HexBlobs = false;
  // The script as it is written, e.g. to standard output; otherwise it is kept in Script.
  std::function<void(std::string_view text)> OnScriptText;
  // Runs the script on the target once every pair is compared.
  bool Apply = false;
};

struct TDataSyncResult {
  TSyncCounters Totals;
  int FailedPairs = 0;
  int ApplyErrors = 0;
  bool Stopped = false;
  std::string Script;  // empty when OnScriptText took it
};

// The tables of the same name on both sides (base tables, in the master's order); names match
// case-insensitively when caseSensitive is off.
std::vector<TDataSyncPair> AutoSelectTables(TMyConnection& master, TMyConnection& target, bool caseSensitive);

// Compares every pair into one script, logging each pair's outcome; a failing pair does not stop
// the others. Optionally applies the script to the target. One job serves one run, so a Stop that
// comes before the run has started still counts.
class TDataSyncJob {
 public:
  std::function<void(const std::string& line)> OnLogNextLine;
  // The pair under way (0-based), and the rows read on each side of it against their counts.
  std::function<void(size_t pair, uint64_t master, uint64_t masterTotal, uint64_t target,
                     uint64_t targetTotal)>
      OnProgress;

  TDataSyncResult Run(const TDataSyncSettings& settings);
  // Any thread.
  void Stop();

 private:
  void log(const std::string& line) const;

  std::atomic<bool> stop_ = false;
};

}  // namespace lomarin
