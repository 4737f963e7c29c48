#include "engine/designers/database_dialogs.h"

#include "engine/dataview/browse_sql.h"
#include "engine/designers/sql_param.h"

namespace lomarin::designers {

std::string ShowDatabasesSql() { return "Show databases "; }

std::string ShowTablesSql(const std::string& database) {
  return database.empty() ? "show tables " : "show tables " + std::string(" from ") + database;
}

std::string BuildRenameTableSql(const std::string& database, const std::string& oldName,
                                const std::string& newName) {
  return ReplaceSqlParams("RENAME TABLE &old TO &new ",
                          {{"old", database + "." + oldName}, {"new", database + "." + newName}});
}

std::string BuildCreateDatabaseSql(const std::string& name) {
  return "create database " + dataview::BackQuote(name);
}

// The chosen name goes between back-quotes, so the statement drops exactly that database whatever
// characters its name holds.
std::string BuildDropDatabaseSql(const std::string& name) {
  return ReplaceSqlParam("drop database &object", "object", dataview::BackQuote(name), "N");
}

}  // namespace lomarin::designers
