#include "engine/designers/index_manager.h"

namespace lomarin::designers {

std::string CheckCreateIndex(const TCreateIndexState& state) {
  if (state.Name.empty()) return "Missing index name.";
  if (state.Columns.empty()) return "There is not an select column.";
  return {};
}

std::string BuildCreateIndexSql(const TCreateIndexState& state) {
  return std::string(kIndexKinds.at(state.Kind).Head) + state.Name + " " + " on " + state.Table + "(" +
         JoinColumns(state.Columns);
}

std::string IndexCreatedMessage(const std::string& name) { return "Index " + name + " created "; }

std::vector<std::string> IndexesForDrop(const std::vector<TIndexRow>& rows) {
  std::vector<std::string> names;
  for (const TIndexRow& row : rows)
    if (row.KeyName != "PRIMARY" && row.SeqInIndex == "1") names.push_back(row.KeyName);
  return names;
}

std::string BuildDropIndexSql(const std::string& index, const std::string& database,
                              const std::string& table) {
  return " DROP INDEX " + index + " ON " + database + "." + table;
}

}  // namespace lomarin::designers
