#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "engine/designers/key_lists.h"

namespace lomarin::designers {

// The index kinds in the order of the kind list, with their statement heads.
struct TIndexKind {
  std::string_view Caption;
  std::string_view Head;
};
inline constexpr std::array<TIndexKind, 4> kIndexKinds = {{{"Normal Index", "CREATE INDEX "},
                                                           {"Unique Index", "CREATE UNIQUE INDEX "},
                                                           {"FullText Index", "CREATE FULLTEXT INDEX "},
                                                           {"Spatial", "CREATE SPATIAL INDEX "}}};

struct TCreateIndexState {
  int Kind = 0;
  std::string Name;
  std::string Table;
  std::vector<std::string> Columns;
};
// The message that stops the statement, or empty when it can be built.
std::string CheckCreateIndex(const TCreateIndexState& state);
std::string BuildCreateIndexSql(const TCreateIndexState& state);
std::string IndexCreatedMessage(const std::string& name);

inline constexpr const char* kNoIndexChecked = "There is not an select index.";
// Each secondary index once, in the server's order; the primary key never.
std::vector<std::string> IndexesForDrop(const std::vector<TIndexRow>& rows);
std::string BuildDropIndexSql(const std::string& index, const std::string& database,
                              const std::string& table);

}  // namespace lomarin::designers
