#pragma once

#include <string>

namespace lomarin::designers {

// The lists the database and copy dialogs fill.
std::string ShowDatabasesSql();
// The tables of a database, or of the session's current one when database is empty.
std::string ShowTablesSql(const std::string& database);

std::string BuildRenameTableSql(const std::string& database, const std::string& oldName,
                                const std::string& newName);

// The messages the two dialogs show instead of running a statement without a name.
inline constexpr const char* kMissingNewDatabase = "Please write a DataBase Name !!! ";
inline constexpr const char* kMissingDropDatabase = "Please select a DataBase !!! ";
std::string BuildCreateDatabaseSql(const std::string& name);
std::string BuildDropDatabaseSql(const std::string& name);

}  // namespace lomarin::designers
