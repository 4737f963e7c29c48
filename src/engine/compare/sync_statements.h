#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/compare/sync_values.h"

namespace lomarin {

// One column's value in a statement; Column is the name as the script writes it.
struct TSyncValue {
  std::string_view Column;
  TSyncValueKind Kind = TSyncValueKind::Text;
  std::string_view Value;
  bool IsNull = false;
};

// The statements of a data synchronisation script, each ended by ";".
std::string InsertStatement(std::string_view table, const std::vector<TSyncValue>& row,
                            const TSyncValueWriter& values);
std::string UpdateStatement(std::string_view table, const std::vector<TSyncValue>& changed,
                            const std::vector<TSyncValue>& key, const TSyncValueWriter& values);
std::string DeleteStatement(std::string_view table, const std::vector<TSyncValue>& key,
                            const TSyncValueWriter& values);
std::string KeyCondition(const std::vector<TSyncValue>& key, const TSyncValueWriter& values);

struct TSyncScriptHeader {
  std::string CharacterSet;
  std::string Names;
  std::string Database;  // as the script writes it
  std::string BlobFile;
};
// The session statements that open a script, each only when set, one per line.
std::string ScriptHeader(const TSyncScriptHeader& header);

}  // namespace lomarin
