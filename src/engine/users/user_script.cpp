#include "engine/users/user_script.h"

#include "engine/connect/server_version.h"
#include "engine/dataview/browse_sql.h"

namespace lomarin::users {

namespace {

std::string quotedPassword(const TUserForm& form, const LiteralEscaper& escape) {
  return "'" + escape(form.Password) + "'";
}

// Clause W is " WITH " (or nothing), then " GRANT OPTION ", then the limits.
struct TWithClause {
  bool Opened = false;
  bool GrantOption = false;
  std::string Limits;
};

// The queries box feeds the updates limit too, in both modes: a fixed property of the generator.
TWithClause createModeWith(const TUserForm& form, const TAccountDialect& dialect) {
  TWithClause w;
  w.Opened =
      form.GrantOption || form.MaxQueries != "0" || form.MaxUpdates != "0" || form.MaxConnections != "0";
  w.GrantOption = form.GrantOption;
  if (dialect.MajorVersion >= 4) {
    if (form.MaxQueries != "0") w.Limits += " MAX_QUERIES_PER_HOUR " + form.MaxQueries;
    if (form.MaxUpdates != "0") w.Limits += " MAX_UPDATES_PER_HOUR " + form.MaxQueries;
    if (form.MaxConnections != "0") w.Limits += " MAX_CONNECTIONS_PER_HOUR " + form.MaxQueries;
  }
  return w;
}

// Change mode appends all three limits without testing for "0".
TWithClause changeModeWith(const TUserForm& form, const TAccountDialect& dialect) {
  TWithClause w;
  w.GrantOption = form.GrantOption;
  if (dialect.MajorVersion >= 4)
    w.Limits = " MAX_QUERIES_PER_HOUR " + form.MaxQueries + " MAX_UPDATES_PER_HOUR " + form.MaxQueries +
               " MAX_CONNECTIONS_PER_HOUR " + form.MaxConnections;
  w.Opened = w.GrantOption || !w.Limits.empty();
  return w;
}

std::string classicText(const TWithClause& w) {
  if (!w.Opened) return "";
  return std::string(" WITH ") + (w.GrantOption ? " GRANT OPTION " : "") + w.Limits;
}

// MySQL 8 takes the limits on the account and the grant option on a GRANT of its own.
std::string modernLimits(const TWithClause& w) { return w.Limits.empty() ? "" : " WITH " + w.Limits; }

void appendModernGrantOption(std::vector<std::string>& script, const TWithClause& w,
                             const std::string& account) {
  if (w.GrantOption) script.push_back("GRANT USAGE ON *.* TO " + account + " WITH GRANT OPTION;");
}

std::string grantGlobal(std::string_view privilege, const std::string& account) {
  return "GRANT " + std::string(privilege) + " ON *.* TO  " + account + ";";
}

std::string revokeGlobal(std::string_view privilege, const std::string& account) {
  return "REVOKE " + std::string(privilege) + " ON *.* FROM  " + account + ";";
}

// The schema statements take the account and terminator of the global ones: the whole script goes
// to the server as one request, so every statement needs its ";".
std::string grantSchema(std::string_view privilege, const std::string& database, const std::string& account) {
  return "GRANT " + std::string(privilege) + " ON " + database + ".* TO  " + account + ";";
}

std::string revokeSchema(std::string_view privilege, const std::string& database,
                         const std::string& account) {
  return "REVOKE " + std::string(privilege) + " ON " + database + ".* FROM  " + account + ";";
}

bool stateAt(const std::vector<bool>& states, size_t i) { return i < states.size() && states[i]; }

const TSchemaRow* rowOf(const std::vector<TSchemaRow>& rows, const std::string& database) {
  for (const TSchemaRow& row : rows)
    if (row.Database == database) return &row;
  return nullptr;
}

}  // namespace

TAccountDialect AccountDialectFor(std::string_view versionText) {
  TAccountDialect dialect;
  dialect.MajorVersion = ServerMajorVersion(versionText);
  dialect.ModernAccounts =
      versionText.find("MariaDB") == std::string_view::npos && ServerVersionNumber(versionText) >= 80;
  return dialect;
}

std::string AccountName(std::string_view user, std::string_view host) {
  return dataview::BackQuote(user) + "@" + dataview::BackQuote(host);
}

std::string MaskPassword(std::string_view) { return kPasswordMask; }

std::string ValidateUserForm(const TUserForm& form, std::string_view confirmPassword) {
  if (form.User.empty()) return kMissingName;
  if (form.Host.empty()) return kMissingHost;
  if (form.Password.empty()) return kMissingPassword;
  if (form.Password != confirmPassword) return kPasswordsDiffer;
  return "";
}

std::vector<std::string> BuildCreateUserScript(const TUserForm& form,
                                               const std::vector<TSchemaPrivilege>& schemaColumns,
                                               const TAccountDialect& dialect, const LiteralEscaper& escape) {
  const std::string account = AccountName(form.User, form.Host);
  const TWithClause w = createModeWith(form, dialect);
  std::vector<std::string> script;
  if (dialect.ModernAccounts) {
    script.push_back("CREATE USER IF NOT EXISTS " + account + ";");
    script.push_back("ALTER USER " + account + " IDENTIFIED BY " + quotedPassword(form, escape) +
                     modernLimits(w) + ";");
    appendModernGrantOption(script, w, account);
  } else {
    script.push_back("GRANT USAGE ON *.* TO " + account + " IDENTIFIED BY " + quotedPassword(form, escape) +
                     classicText(w) + ";");
  }
  const auto& globals = GlobalPrivileges();
  for (size_t i = 0; i < globals.size(); ++i)
    if (stateAt(form.Privileges.Global, i)) script.push_back(grantGlobal(globals[i].Item, account));
  for (const TSchemaRow& row : form.Privileges.Schema)
    for (size_t c = 0; c < schemaColumns.size(); ++c)
      if (stateAt(row.Cells, c)) script.push_back(grantSchema(schemaColumns[c].Word, row.Database, account));
  return script;
}

std::vector<std::string> BuildChangeUserScript(const TUserForm& form, const TPrivilegeStates& loaded,
                                               const std::vector<TSchemaPrivilege>& schemaColumns,
                                               const TAccountDialect& dialect, const LiteralEscaper& escape) {
  const std::string account = AccountName(form.User, form.Host);
  const TWithClause w = changeModeWith(form, dialect);
  std::vector<std::string> script;
  if (dialect.ModernAccounts) {
    const std::string password =
        form.PasswordEdited ? " IDENTIFIED BY " + quotedPassword(form, escape) + modernLimits(w) + ";"
                            : modernLimits(w) + " ;";
    script.push_back("ALTER USER " + account + password);
    appendModernGrantOption(script, w, account);
  } else if (form.PasswordEdited) {
    script.push_back("GRANT USAGE ON *.* TO " + account + " IDENTIFIED BY " + quotedPassword(form, escape) +
                     classicText(w) + ";");
  } else {
    script.push_back("GRANT USAGE ON *.* TO " + account + classicText(w) + " ;");
  }
  const auto& globals = GlobalPrivileges();
  for (size_t i = 0; i < globals.size(); ++i) {
    const bool now = stateAt(form.Privileges.Global, i);
    if (now == stateAt(loaded.Global, i)) continue;
    script.push_back(now ? grantGlobal(globals[i].Item, account) : revokeGlobal(globals[i].Item, account));
  }
  for (const TSchemaRow& row : form.Privileges.Schema) {
    const TSchemaRow* before = rowOf(loaded.Schema, row.Database);
    for (size_t c = 0; c < schemaColumns.size(); ++c) {
      const bool now = stateAt(row.Cells, c);
      if (now == (before && stateAt(before->Cells, c))) continue;
      const std::string_view word = schemaColumns[c].Word;
      script.push_back(now ? grantSchema(word, row.Database, account)
                           : revokeSchema(word, row.Database, account));
    }
  }
  return script;
}

std::string BuildSetPasswordSql(std::string_view user, std::string_view host, std::string_view password,
                                const TAccountDialect& dialect, const LiteralEscaper& escape) {
  const std::string literal = "'" + escape(password) + "'";
  // MySQL 8 has no PASSWORD(): the plain literal is its synonym.
  const std::string value = dialect.ModernAccounts ? literal : "PASSWORD(" + literal + ")";
  if (user.empty()) return "set password  = " + value;
  if (host != "%") return "set password for " + std::string(user) + "@" + std::string(host) + " = " + value;
  return "set password for " + std::string(user) + " = " + value;
}

}  // namespace lomarin::users
