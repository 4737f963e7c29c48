#pragma once

#include <string>
#include <vector>

namespace lomarin::designers {

// The lists the index and constraint managers fill; the database goes between back-quotes.
std::string ShowTableStatusSql(const std::string& database);
std::string ShowTableFieldsSql(const std::string& database, const std::string& table);
std::string ShowIndexSql(const std::string& database, const std::string& table);
std::string ShowCreateTableSql(const std::string& database, const std::string& table);

// The checked column names as the statements end them: "a)" or "a,b)". The opening parenthesis
// belongs to the statement head.
std::string JoinColumns(const std::vector<std::string>& columns);

// One row of "show index" as both managers read it.
struct TIndexRow {
  std::string KeyName;
  std::string SeqInIndex;
  std::string ColumnName;
};

}  // namespace lomarin::designers
