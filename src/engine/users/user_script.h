#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/users/privileges.h"

namespace lomarin::users {

// What the connected server accepts for account statements.
struct TAccountDialect {
  int MajorVersion = 0;
  // MySQL 8 removed GRANT … IDENTIFIED BY, resource limits in GRANT and PASSWORD().
  bool ModernAccounts = false;
};

// From the handshake's version text: MySQL from version number 80 is modern; MariaDB is not.
TAccountDialect AccountDialectFor(std::string_view versionText);

// One database row of the schema grid; Cells follow the grid's privilege columns.
struct TSchemaRow {
  std::string Database;
  std::vector<bool> Cells;
};

// The checked states: Global follows GlobalPrivileges(), each row's Cells the grid's columns.
struct TPrivilegeStates {
  std::vector<bool> Global;
  std::vector<TSchemaRow> Schema;
};

// The dialog's fields as the user left them.
struct TUserForm {
  std::string User;
  std::string Host;
  std::string Password;
  std::string MaxQueries = "0";
  std::string MaxUpdates = "0";
  std::string MaxConnections = "0";
  bool GrantOption = false;
  // Change mode: the password was edited since the dialog opened.
  bool PasswordEdited = false;
  TPrivilegeStates Privileges;
};

// Escapes a value for a single-quoted literal (the client library's escaping in the program). The
// script builders apply it to the password only, so building again with MaskPassword gives the
// text the SQL monitor shows.
using LiteralEscaper = std::function<std::string(std::string_view)>;
inline constexpr const char* kPasswordMask = "********";
std::string MaskPassword(std::string_view password);

// "`user`@`host`", a back-quote inside either name doubled.
std::string AccountName(std::string_view user, std::string_view host);

// Validation in the dialog's order; empty when the form may be sent.
inline constexpr const char* kMissingName = "Missing name.";
inline constexpr const char* kMissingHost = "Missing host.";
inline constexpr const char* kMissingPassword = "Missing password.";
inline constexpr const char* kPasswordsDiffer = "Passwords don't match";
std::string ValidateUserForm(const TUserForm& form, std::string_view confirmPassword);

// The scripts of the SQL page, one statement a line (dataview::JoinLines gives the page's text).
std::vector<std::string> BuildCreateUserScript(const TUserForm& form,
                                               const std::vector<TSchemaPrivilege>& schemaColumns,
                                               const TAccountDialect& dialect, const LiteralEscaper& escape);
std::vector<std::string> BuildChangeUserScript(const TUserForm& form, const TPrivilegeStates& loaded,
                                               const std::vector<TSchemaPrivilege>& schemaColumns,
                                               const TAccountDialect& dialect, const LiteralEscaper& escape);

// The password dialog's statement. An empty user means the session's own account.
std::string BuildSetPasswordSql(std::string_view user, std::string_view host, std::string_view password,
                                const TAccountDialect& dialect, const LiteralEscaper& escape);

inline constexpr const char* kUserCreated = "User successfully created";
inline constexpr const char* kUserAltered = "User successfully altered";

}  // namespace lomarin::users
