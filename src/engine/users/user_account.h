#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/users/user_script.h"

namespace lomarin {
class TMyConnection;
}

namespace lomarin::users {

// The two loading queries; values are escaped by escape and single-quoted.
std::string LoadUserSql(std::string_view user, const LiteralEscaper& escape);
std::string LoadSchemaPrivilegesSql(std::string_view user, std::string_view database,
                                    const LiteralEscaper& escape);
// No rows, only the columns of the server's mysql.db.
std::string SchemaColumnsSql();

// What the dialog shows before the user touches it.
struct TUserManagerData {
  std::vector<TSchemaPrivilege> SchemaColumns;
  // Create mode: the name is empty and every database row unchecked.
  TUserForm Form;
};

// Reads the grid's columns and databases and, for a named user, the account as Form: the first
// row of mysql.user gives host, limits, grant option and global privileges; its stored password
// hash fills Password, so an untouched password passes validation and is never sent; each
// database's mysql.db row gives its cells. Throws ServerError.
TUserManagerData LoadUserManager(TMyConnection& session, std::string_view user);

// The host of the user's first mysql.user row; empty when there is none. Throws ServerError.
std::string FirstHostOf(TMyConnection& session, std::string_view user);

}  // namespace lomarin::users
