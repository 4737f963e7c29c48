#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "engine/compare/sync_plan.h"
#include "engine/compare/sync_statements.h"

namespace lomarin {

class TMyQuery;
struct TSyncCounters;

struct TSyncMergeOptions {
  struct {
    bool Insert = true;
    bool Update = true;
    bool Delete = true;
  } Allowed;
  bool CompareData = true;
  bool CompareBlobs = true;
  bool TrimCharFields = false;
  bool RewriteKeySpelling = true;
};

// Walks two result sets ordered by the same key and turns their differences into statements.
class TSyncMerge {
 public:
  TSyncMerge(const TSyncPlan& plan, const TSyncMergeOptions& options, TSyncValueWriter values,
             TSyncCounters& counters, const std::atomic<bool>& stop);

  std::function<void(const std::string& statement)> OnStatement;
  // Every few thousand rows and at the end.
  std::function<void()> OnProgress;

  // Both queries opened, no row read yet.
  void Run(TMyQuery& master, TMyQuery& target);

 private:
  int compareKeys(const TMyQuery& master, const TMyQuery& target) const;
  bool next(TMyQuery& query, uint64_t& read);
  void insert(const TMyQuery& master);
  void update(const TMyQuery& master, const TMyQuery& target);
  void remove(const TMyQuery& target);
  std::vector<TSyncValue> targetKey(const TMyQuery& target) const;

  const TSyncPlan& plan_;
  const TSyncMergeOptions& options_;
  TSyncValueWriter values_;
  TSyncCounters& counters_;
  const std::atomic<bool>& stop_;
};

}  // namespace lomarin
