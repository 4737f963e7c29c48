#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "engine/designers/key_lists.h"

namespace lomarin::designers {

enum class TConstraintKind { PrimaryKey, ForeignKey, UniqueKey };
inline constexpr std::array<std::string_view, 3> kConstraintKinds = {"Primary Key", "Foreign Key",
                                                                     "Unique Key"};
// The referential actions both lists offer; the empty entry writes no clause.
inline constexpr std::array<std::string_view, 6> kReferentialActions = {
    "cascade", "set null", "restrict", "no action", "set default", ""};

// The table and columns at the top of the dialog; for a foreign key they are the referenced side
// and Refers is the table that gets the key.
struct TAddConstraintState {
  TConstraintKind Kind = TConstraintKind::PrimaryKey;
  std::string Database;
  std::string Table;
  std::vector<std::string> Columns;
  std::string Refers;
  std::string ReferedColumn;
  std::string OnDelete;
  std::string OnUpdate;
};

// Whether "show index" of the Refers table lists the column (compared in upper case).
bool ColumnHasIndex(const std::vector<TIndexRow>& rows, const std::string& column);
// One script; for a foreign key on an unindexed column it starts with that column's CREATE INDEX.
std::string BuildAddConstraintSql(const TAddConstraintState& state, bool referedColumnIndexed);
inline constexpr const char* kConstraintCreated = "Constraint created ";

// A key found in the table's create text, with the kind text the drop step compares against.
struct TConstraintRow {
  std::string Text;
  std::string Kind;
};
inline constexpr const char* kPrimaryKind = "PRIMARY";
inline constexpr const char* kUniqueKind = "UNIQUE KEY";
inline constexpr const char* kForeignKind = "FOREING KEY";
std::vector<TConstraintRow> ConstraintsForDrop(const std::string& createText);
// Empty for a unique key: that kind is listed but never dropped here.
std::string BuildDropConstraintSql(const TConstraintRow& row, const std::string& database,
                                   const std::string& table);

}  // namespace lomarin::designers
