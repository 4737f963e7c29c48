#include "engine/designers/constraint_manager.h"

#include <algorithm>
#include <regex>

#include "engine/dataview/browse_sql.h"
#include "engine/designers/sql_param.h"

namespace lomarin::designers {

namespace {

const std::regex kPrimaryPattern(R"(PRIMARY KEY [(`a-zA-Z_,0-9]*[`)])");
const std::regex kUniquePattern(R"(UNIQUE KEY [(`a-zA-Z_,0-9]*[`) (`a-zA-Z_,0-9]*[`)])");
const std::regex kForeignPattern(
    R"(CONSTRAINT `[_a-zA-Z\d\-\.\_]+` FOREIGN KEY \(`[_a-zA-Z\d\-\.\_]+`\) +REFERENCES `[_a-zA-Z\d\-\.\_]+`)");
const std::regex kForeignNamePattern(R"(CONSTRAINT `([_a-zA-Z\d\-\.\_]+)`)");

std::string foreignKeySql(const TAddConstraintState& state, bool referedColumnIndexed) {
  std::string sql;
  if (!referedColumnIndexed)
    sql = "CREATE INDEX " + state.ReferedColumn + " on " + state.Refers + "(" + state.ReferedColumn + ");" +
          "\r";
  const std::string database = HyphenQuoted(state.Database);
  sql += "ALTER TABLE " + database + "." + state.Refers + " ADD FOREIGN KEY ( " + state.ReferedColumn + ") " +
         " REFERENCES " + database + "." + state.Table + " (" + JoinColumns(state.Columns);
  if (!state.OnDelete.empty()) sql += " " + std::string("ON DELETE") + " " + state.OnDelete;
  if (!state.OnUpdate.empty()) sql += " " + std::string("ON UPDATE") + " " + state.OnUpdate;
  return sql;
}

void addMatches(const std::string& text, const std::regex& pattern, const char* kind,
                std::vector<TConstraintRow>& rows) {
  for (auto it = std::sregex_iterator(text.begin(), text.end(), pattern); it != std::sregex_iterator(); ++it)
    rows.push_back({it->str(), kind});
}

}  // namespace

bool ColumnHasIndex(const std::vector<TIndexRow>& rows, const std::string& column) {
  return std::any_of(rows.begin(), rows.end(),
                     [&](const TIndexRow& row) { return AsciiUpper(row.ColumnName) == AsciiUpper(column); });
}

std::string BuildAddConstraintSql(const TAddConstraintState& state, bool referedColumnIndexed) {
  std::string sql;
  switch (state.Kind) {
    case TConstraintKind::PrimaryKey:
      sql = "ALTER TABLE " + state.Database + "." + state.Table + " ADD PRIMARY KEY ( " +
            JoinColumns(state.Columns);
      break;
    case TConstraintKind::UniqueKey:
      sql = "ALTER TABLE " + HyphenQuoted(state.Database) + "." + state.Table + " ADD UNIQUE ( " +
            JoinColumns(state.Columns);
      break;
    case TConstraintKind::ForeignKey:
      sql = foreignKeySql(state, referedColumnIndexed);
      break;
  }
  return sql + ";";
}

std::vector<TConstraintRow> ConstraintsForDrop(const std::string& createText) {
  std::vector<TConstraintRow> rows;
  std::smatch primary;
  if (std::regex_search(createText, primary, kPrimaryPattern)) rows.push_back({primary.str(), kPrimaryKind});
  addMatches(createText, kUniquePattern, kUniqueKind, rows);
  addMatches(createText, kForeignPattern, kForeignKind, rows);
  return rows;
}

std::string BuildDropConstraintSql(const TConstraintRow& row, const std::string& database,
                                   const std::string& table) {
  const std::string qualified = dataview::BackQuote(database) + "." + table;
  if (row.Kind == kPrimaryKind) return "ALTER TABLE  " + qualified + " DROP PRIMARY KEY ";
  std::smatch name;
  if (row.Kind == kForeignKind && std::regex_search(row.Text, name, kForeignNamePattern))
    return " ALTER TABLE " + qualified + " DROP FOREIGN KEY " + name[1].str();
  return {};
}

}  // namespace lomarin::designers
