#include "engine/designers/key_lists.h"

#include "engine/dataview/browse_sql.h"

namespace lomarin::designers {

std::string ShowTableStatusSql(const std::string& database) {
  return "show table status " + std::string(" from ") + dataview::BackQuote(database);
}

std::string ShowTableFieldsSql(const std::string& database, const std::string& table) {
  return "show fields FROM " + dataview::BackQuote(database) + "." + table;
}

std::string ShowIndexSql(const std::string& database, const std::string& table) {
  return "show index from " + dataview::BackQuote(database) + "." + table;
}

std::string ShowCreateTableSql(const std::string& database, const std::string& table) {
  return "show create table " + dataview::BackQuote(database) + "." + table;
}

std::string JoinColumns(const std::vector<std::string>& columns) {
  std::string list;
  for (const std::string& column : columns) list += (list.empty() ? "" : ",") + column;
  return list + ")";
}

}  // namespace lomarin::designers
