#pragma once

#include <string>
#include <vector>

#include "engine/compare/key_order.h"
#include "engine/compare/sync_table_info.h"

namespace lomarin {

struct TSyncTableOptions {
  std::vector<std::string> KeyFields;
  std::vector<std::string> DataFields;
  std::vector<std::string> ExcludeFields;
  // Off: names are back-quoted only where a bare name would not read back.
  bool QuoteNames = true;
};

struct TSyncFieldChoice {
  std::vector<std::string> CustomKeyFields;
  std::vector<std::string> CustomDataFields;
  bool IncludeBlobs = true;
  bool IgnoreComputedFields = true;
};

// One side's SELECT and where each field sits in its rows.
struct TSyncSidePlan {
  std::string Table;  // as the script writes it
  std::string Select;
  std::vector<const TSyncColumn*> Keys;
  std::vector<const TSyncColumn*> Data;
  std::vector<std::string> KeyNames;  // as the script writes them
  std::vector<std::string> DataNames;
  std::vector<size_t> KeyAt;
  std::vector<size_t> DataAt;
  // Where the merge reads each key's order: the key itself or its weight / index column.
  std::vector<size_t> KeyOrderAt;
};

struct TSyncPlan {
  TSyncSidePlan Master;
  TSyncSidePlan Target;
  std::vector<TKeyOrder> KeyOrders;  // SpaceWeight filled in by the caller
};

// Chooses and pairs the fields of both sides, refusing with the messages users see.
TSyncPlan PlanSync(const TSyncTableInfo& master, const TSyncTableInfo& target,
                   const TSyncTableOptions& masterOptions, const TSyncTableOptions& targetOptions,
                   const TSyncFieldChoice& choice);

}  // namespace lomarin
