#include "engine/compare/sync_merge.h"

#include "engine/compare/compare_error.h"
#include "engine/compare/sync_statements.h"
#include "engine/compare/table_data_comparer.h"
#include "engine/connect/my_query.h"

namespace lomarin {

namespace {

constexpr uint64_t kProgressRows = 4096;

std::string_view trimRight(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

TSyncValue valueAt(const TMyQuery& query, size_t at, std::string_view column, const TSyncColumn& c) {
  const bool isNull = query.IsNull(at);
  return {column, c.ValueKind, isNull ? std::string_view() : query.Value(at), isNull};
}

}  // namespace

TSyncMerge::TSyncMerge(const TSyncPlan& plan, const TSyncMergeOptions& options, TSyncValueWriter values,
                       TSyncCounters& counters, const std::atomic<bool>& stop)
    : plan_(plan), options_(options), values_(values), counters_(counters), stop_(stop) {}

bool TSyncMerge::next(TMyQuery& query, uint64_t& read) {
  if (stop_.load(std::memory_order_relaxed)) throw CompareError("Stopped.");
  if (!query.Next()) return false;
  if (++read % kProgressRows == 0 && OnProgress) OnProgress();
  return true;
}

int TSyncMerge::compareKeys(const TMyQuery& master, const TMyQuery& target) const {
  for (size_t i = 0; i < plan_.KeyOrders.size(); ++i) {
    const size_t m = plan_.Master.KeyOrderAt[i];
    const size_t t = plan_.Target.KeyOrderAt[i];
    if (const int c = CompareKeyValues(plan_.KeyOrders[i], master.Value(m), master.IsNull(m), target.Value(t),
                                       target.IsNull(t)))
      return c;
  }
  return 0;
}

std::vector<TSyncValue> TSyncMerge::targetKey(const TMyQuery& target) const {
  std::vector<TSyncValue> key;
  for (size_t i = 0; i < plan_.Target.Keys.size(); ++i)
    key.push_back(valueAt(target, plan_.Target.KeyAt[i], plan_.Target.KeyNames[i], *plan_.Target.Keys[i]));
  return key;
}

void TSyncMerge::insert(const TMyQuery& master) {
  if (!options_.Allowed.Insert) return;
  std::vector<TSyncValue> row;
  for (size_t i = 0; i < plan_.Master.Keys.size(); ++i)
    row.push_back(valueAt(master, plan_.Master.KeyAt[i], plan_.Target.KeyNames[i], *plan_.Master.Keys[i]));
  for (size_t i = 0; i < plan_.Master.Data.size(); ++i)
    row.push_back(valueAt(master, plan_.Master.DataAt[i], plan_.Target.DataNames[i], *plan_.Master.Data[i]));
  OnStatement(InsertStatement(plan_.Target.Table, row, values_));
  ++counters_.Inserted;
}

void TSyncMerge::remove(const TMyQuery& target) {
  if (!options_.Allowed.Delete) return;
  OnStatement(DeleteStatement(plan_.Target.Table, targetKey(target), values_));
  ++counters_.Deleted;
}

void TSyncMerge::update(const TMyQuery& master, const TMyQuery& target) {
  std::vector<TSyncValue> changed;
  auto differs = [&](size_t m, size_t t, const TSyncColumn& c) {
    if (master.IsNull(m) != target.IsNull(t)) return true;
    std::string_view a = master.Value(m), b = target.Value(t);
    if (options_.TrimCharFields && c.ValueKind == TSyncValueKind::Text) {
      a = trimRight(a);
      b = trimRight(b);
    }
    return a != b;
  };
  if (options_.RewriteKeySpelling) {
    for (size_t i = 0; i < plan_.Master.Keys.size(); ++i) {
      const size_t m = plan_.Master.KeyAt[i];
      if (plan_.KeyOrders[i].Kind == TKeyOrderKind::Weight &&
          master.Value(m) != target.Value(plan_.Target.KeyAt[i]))
        changed.push_back(valueAt(master, m, plan_.Target.KeyNames[i], *plan_.Master.Keys[i]));
    }
  }
  if (options_.CompareData) {
    for (size_t i = 0; i < plan_.Master.Data.size(); ++i) {
      const TSyncColumn& c = *plan_.Master.Data[i];
      if (c.IsBlob && !options_.CompareBlobs) continue;
      const size_t m = plan_.Master.DataAt[i];
      if (differs(m, plan_.Target.DataAt[i], c))
        changed.push_back(valueAt(master, m, plan_.Target.DataNames[i], c));
    }
  }
  if (changed.empty()) {
    ++counters_.Equal;
    return;
  }
  if (!options_.Allowed.Update) return;
  OnStatement(UpdateStatement(plan_.Target.Table, changed, targetKey(target), values_));
  ++counters_.Updated;
}

void TSyncMerge::Run(TMyQuery& master, TMyQuery& target) {
  bool hasMaster = next(master, counters_.ReadMaster);
  bool hasTarget = next(target, counters_.ReadTarget);
  while (hasMaster || hasTarget) {
    const int order = !hasTarget ? -1 : !hasMaster ? 1 : compareKeys(master, target);
    if (order < 0) {
      insert(master);
      hasMaster = next(master, counters_.ReadMaster);
    } else if (order > 0) {
      remove(target);
      hasTarget = next(target, counters_.ReadTarget);
    } else {
      update(master, target);
      hasMaster = next(master, counters_.ReadMaster);
      hasTarget = next(target, counters_.ReadTarget);
    }
  }
  if (OnProgress) OnProgress();
}

}  // namespace lomarin
