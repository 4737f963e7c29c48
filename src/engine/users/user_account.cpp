#include "engine/users/user_account.h"

#include <strings.h>

#include "engine/connect/escape.h"
#include "engine/connect/read_result_table.h"
#include "engine/designers/database_dialogs.h"
#include "engine/designers/sql_param.h"

namespace lomarin::users {

namespace {

using explorer::ResultTable;

int columnOf(const ResultTable& table, std::string_view name) {
  for (size_t c = 0; c < table.columns.size(); ++c)
    if (table.columns[c].size() == name.size() &&
        strncasecmp(table.columns[c].data(), name.data(), name.size()) == 0)
      return static_cast<int>(c);
  return -1;
}

std::string valueOf(const ResultTable& table, std::string_view column) {
  const int c = columnOf(table, column);
  return c < 0 || table.rows.empty() ? std::string() : table.rows.front()[c];
}

bool flagOf(const ResultTable& table, std::string_view column) { return valueOf(table, column) == "Y"; }

// MySQL 5.7 and later keep the hash only in authentication_string.
std::string storedPassword(const ResultTable& user) {
  return columnOf(user, "Password") >= 0 ? valueOf(user, "Password") : valueOf(user, "authentication_string");
}

void loadAccount(TMyConnection& session, std::string_view user, TUserManagerData& data) {
  const LiteralEscaper escape = [&session](std::string_view v) { return EscapeString(session, v); };
  const ResultTable account = ReadResultTable(session, LoadUserSql(user, escape));
  TUserForm& form = data.Form;
  form.User = std::string(user);
  if (account.rows.empty()) return;
  form.Host = valueOf(account, "Host");
  form.Password = storedPassword(account);
  form.MaxQueries = valueOf(account, "max_questions");
  form.MaxUpdates = valueOf(account, "max_updates");
  form.MaxConnections = valueOf(account, "max_connections");
  form.GrantOption = flagOf(account, "Grant_priv");
  for (size_t i = 0; i < GlobalPrivileges().size(); ++i)
    form.Privileges.Global[i] = flagOf(account, GlobalPrivileges()[i].Column);
  for (TSchemaRow& row : form.Privileges.Schema) {
    const ResultTable db = ReadResultTable(session, LoadSchemaPrivilegesSql(user, row.Database, escape));
    for (size_t c = 0; c < data.SchemaColumns.size(); ++c)
      row.Cells[c] = flagOf(db, data.SchemaColumns[c].Column);
  }
}

}  // namespace

std::string LoadUserSql(std::string_view user, const LiteralEscaper& escape) {
  return designers::ReplaceSqlParam("SELECT * FROM mysql.user WHERE user.User =&user", "user", escape(user),
                                    "Y");
}

std::string LoadSchemaPrivilegesSql(std::string_view user, std::string_view database,
                                    const LiteralEscaper& escape) {
  return designers::ReplaceSqlParams(
      "SELECT * FROM mysql.db WHERE mysql.db.User=&user AND \n mysql.db.Db =&db ",
      {{"user", escape(user), true}, {"db", escape(database), true}});
}

std::string SchemaColumnsSql() { return "SELECT * FROM mysql.db LIMIT 0"; }

TUserManagerData LoadUserManager(TMyConnection& session, std::string_view user) {
  TUserManagerData data;
  data.SchemaColumns = SchemaPrivilegesOf(ReadResultTable(session, SchemaColumnsSql()).columns);
  data.Form.Privileges.Global.assign(GlobalPrivileges().size(), false);
  for (const auto& row : ReadResultTable(session, designers::ShowDatabasesSql()).rows)
    data.Form.Privileges.Schema.push_back({row.front(), std::vector<bool>(data.SchemaColumns.size(), false)});
  if (!user.empty()) loadAccount(session, user, data);
  return data;
}

std::string FirstHostOf(TMyConnection& session, std::string_view user) {
  const LiteralEscaper escape = [&session](std::string_view v) { return EscapeString(session, v); };
  return valueOf(ReadResultTable(session, LoadUserSql(user, escape)), "Host");
}

}  // namespace lomarin::users
