#include "engine/compare/sync_plan.h"

#include <algorithm>
#include <cctype>

#include "engine/compare/compare_error.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

const TSyncColumn& requireColumn(const TSyncTableInfo& info, const std::string& name) {
  if (const TSyncColumn* c = info.column(name)) return *c;
  throw CompareError("Field " + name + " not exists. Table: " + info.Name);
}

std::vector<const TSyncColumn*> keyFields(const TSyncTableInfo& info, const TSyncTableOptions& options,
                                          const TSyncFieldChoice& choice) {
  const std::vector<std::string>& names = !choice.CustomKeyFields.empty() ? choice.CustomKeyFields
                                          : !options.KeyFields.empty()    ? options.KeyFields
                                                                          : info.PrimaryKey;
  if (names.empty()) throw CompareError("There are no key-fields for comparison. Table: " + info.Name);
  std::vector<const TSyncColumn*> fields;
  for (const std::string& name : names) fields.push_back(&requireColumn(info, name));
  return fields;
}

bool sameNameNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
  });
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& n) { return sameNameNoCase(n, name); });
}

std::vector<const TSyncColumn*> dataFields(const TSyncTableInfo& info, const TSyncTableOptions& options,
                                           const TSyncFieldChoice& choice,
                                           const std::vector<const TSyncColumn*>& keys) {
  std::vector<const TSyncColumn*> fields;
  const std::vector<std::string>& names =
      !choice.CustomDataFields.empty() ? choice.CustomDataFields : options.DataFields;
  if (!names.empty()) {
    for (const std::string& name : names) fields.push_back(&requireColumn(info, name));
  } else {
    for (const TSyncColumn& c : info.Columns) {
      if (std::find(keys.begin(), keys.end(), &c) != keys.end()) continue;
      if (contains(options.ExcludeFields, c.Name)) continue;
      if (c.Generated && choice.IgnoreComputedFields) continue;
      if (c.IsBlob && !choice.IncludeBlobs) continue;
      fields.push_back(&c);
    }
  }
  if (fields.empty()) throw CompareError("There are no data-fields for comparison. Table: " + info.Name);
  return fields;
}

void requireSameCount(size_t master, size_t target, const std::string& what, const std::string& property) {
  if (master == target) return;
  throw CompareError("The number of " + what +
                     " in Master and Target do not match.\r\nPlease correct: TableOptionsMaster." + property +
                     ", TableOptionsTarget." + property + " properties.");
}

TSyncSidePlan sidePlan(const TSyncTableInfo& info, const TSyncTableOptions& options,
                       std::vector<const TSyncColumn*> keys, std::vector<const TSyncColumn*> data) {
  TSyncSidePlan side;
  side.Table = ScriptName(info.Name, options.QuoteNames);
  side.Keys = std::move(keys);
  side.Data = std::move(data);
  for (const TSyncColumn* c : side.Keys) side.KeyNames.push_back(ScriptName(c->Name, options.QuoteNames));
  for (const TSyncColumn* c : side.Data) side.DataNames.push_back(ScriptName(c->Name, options.QuoteNames));

  std::vector<std::string> helpers;
  for (size_t i = 0; i < side.Keys.size(); ++i) {
    const TSyncColumn& c = *side.Keys[i];
    const std::string quoted = ScriptName(c.Name, true);
    if (c.OrderKind == TKeyOrderKind::Weight) {
      helpers.push_back("WEIGHT_STRING(" + quoted + ")");
    } else if (c.OrderKind == TKeyOrderKind::Number && c.ValueKind == TSyncValueKind::Text) {
      helpers.push_back(quoted + "+0");
    } else {
      side.KeyOrderAt.push_back(i);
      continue;
    }
    side.KeyOrderAt.push_back(side.Keys.size() + side.Data.size() + helpers.size() - 1);
  }

  const bool floats =
      std::any_of(side.Data.begin(), side.Data.end(),
                  [](const TSyncColumn* c) { return c->ValueKind == TSyncValueKind::Float; }) ||
      std::any_of(side.Keys.begin(), side.Keys.end(),
                  [](const TSyncColumn* c) { return c->ValueKind == TSyncValueKind::Float; });
  const bool allFields = side.Keys.size() + side.Data.size() == info.Columns.size() &&
                         std::none_of(info.Columns.begin(), info.Columns.end(),
                                      [](const TSyncColumn& c) { return c.Invisible; });
  std::string list;
  if (allFields && !floats && helpers.empty()) {
    list = "*";
    auto at = [&](const TSyncColumn* c) { return static_cast<size_t>(c - info.Columns.data()); };
    for (const TSyncColumn* c : side.Keys) side.KeyAt.push_back(at(c));
    for (const TSyncColumn* c : side.Data) side.DataAt.push_back(at(c));
    for (size_t& k : side.KeyOrderAt) k = side.KeyAt[k];
  } else {
    // FLOAT is read widened to DOUBLE: its text form would round the value.
    auto item = [&](const TSyncColumn* c) {
      const std::string quoted = ScriptName(c->Name, true);
      return c->ValueKind == TSyncValueKind::Float ? quoted + " * 1e0" : quoted;
    };
    size_t at = 0;
    for (const TSyncColumn* c : side.Keys) {
      list += (list.empty() ? "" : ", ") + item(c);
      side.KeyAt.push_back(at++);
    }
    for (const TSyncColumn* c : side.Data) {
      list += ", " + item(c);
      side.DataAt.push_back(at++);
    }
    for (const std::string& h : helpers) list += ", " + h;
  }
  std::string orderBy;
  for (const TSyncColumn* c : side.Keys) orderBy += (orderBy.empty() ? "" : ", ") + ScriptName(c->Name, true);
  side.Select = "select " + list + "\r\n from " + ScriptName(info.Name, true) + " Order by " + orderBy;
  return side;
}

}  // namespace

TSyncPlan PlanSync(const TSyncTableInfo& master, const TSyncTableInfo& target,
                   const TSyncTableOptions& masterOptions, const TSyncTableOptions& targetOptions,
                   const TSyncFieldChoice& choice) {
  auto masterKeys = keyFields(master, masterOptions, choice);
  auto targetKeys = keyFields(target, targetOptions, choice);
  auto masterData = dataFields(master, masterOptions, choice, masterKeys);
  auto targetData = dataFields(target, targetOptions, choice, targetKeys);
  requireSameCount(masterKeys.size(), targetKeys.size(), "key fields", "KeyFields");
  requireSameCount(masterData.size(), targetData.size(), "data fields", "DataFields");
  requireSameCount(masterOptions.ExcludeFields.size(), targetOptions.ExcludeFields.size(), "exclude fields",
                   "ExcludeFields");

  TSyncPlan plan;
  for (size_t i = 0; i < masterKeys.size(); ++i) {
    const TSyncColumn& m = *masterKeys[i];
    const TSyncColumn& t = *targetKeys[i];
    if (m.OrderKind != t.OrderKind || m.Collation != t.Collation)
      throw CompareError("The key fields " + m.Name + " and " + t.Name +
                         " are ordered differently in Master and Target (" + m.Type + " " + m.Collation +
                         ", " + t.Type + " " + t.Collation + ").");
    plan.KeyOrders.push_back({m.OrderKind, {}});
  }
  plan.Master = sidePlan(master, masterOptions, std::move(masterKeys), std::move(masterData));
  plan.Target = sidePlan(target, targetOptions, std::move(targetKeys), std::move(targetData));
  return plan;
}

}  // namespace lomarin
