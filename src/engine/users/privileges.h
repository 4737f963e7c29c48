#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lomarin::users {

// A global privilege: the check-list item, which is also the word written into GRANT and REVOKE,
// and the mysql.user column it is loaded from.
struct TGlobalPrivilege {
  std::string_view Item;
  std::string_view Column;
};

// The 27 items of the global privilege list, in list order.
const std::vector<TGlobalPrivilege>& GlobalPrivileges();

// A schema privilege: the grid column's caption, the mysql.db column it is read from, and the word
// written into GRANT and REVOKE.
struct TSchemaPrivilege {
  std::string_view Caption;
  std::string_view Column;
  std::string_view Word;
};

// Every schema privilege the grid knows, in column order.
const std::vector<TSchemaPrivilege>& SchemaPrivileges();

// The grid shows the privileges whose column the server's mysql.db has, so an older server
// without views, routines or events shows fewer columns. Names compare without regard to case.
std::vector<TSchemaPrivilege> SchemaPrivilegesOf(const std::vector<std::string>& dbColumns);

}  // namespace lomarin::users
