// The account scripts on exact text, for the classic servers and for MySQL 8.
#include "engine/users/user_script.h"

#include <gtest/gtest.h>

#include "engine/users/user_account.h"
#include "test_escaper.h"

namespace lomarin::users {
namespace {

const TAccountDialect kMariaDb = AccountDialectFor("5.5.5-10.11.6-MariaDB");
const TAccountDialect kMySql8 = AccountDialectFor("8.0.36");
const TAccountDialect kMySql3 = AccountDialectFor("3.23.58");

std::string plain(std::string_view value) { return std::string(value); }

size_t globalIndex(std::string_view item) {
  for (size_t i = 0; i < GlobalPrivileges().size(); ++i)
    if (GlobalPrivileges()[i].Item == item) return i;
  ADD_FAILURE() << "no global privilege " << item;
  return 0;
}

TPrivilegeStates globals(std::initializer_list<std::string_view> checked) {
  TPrivilegeStates states;
  states.Global.assign(GlobalPrivileges().size(), false);
  for (std::string_view item : checked) states.Global[globalIndex(item)] = true;
  return states;
}

// The grid of a MariaDB server: all seventeen columns.
const std::vector<TSchemaPrivilege> kColumns = SchemaPrivileges();

std::vector<bool> cells(std::initializer_list<std::string_view> checked) {
  std::vector<bool> row(kColumns.size(), false);
  for (std::string_view caption : checked)
    for (size_t c = 0; c < kColumns.size(); ++c)
      if (kColumns[c].Caption == caption) row[c] = true;
  return row;
}

TUserForm form(std::string user = "ann", std::string host = "localhost") {
  TUserForm f;
  f.User = std::move(user);
  f.Host = std::move(host);
  f.Password = "pw";
  f.Privileges = globals({});
  return f;
}

std::vector<std::string> create(const TUserForm& f, const TAccountDialect& dialect = kMariaDb) {
  return BuildCreateUserScript(f, kColumns, dialect, plain);
}

std::vector<std::string> change(const TUserForm& f, const TPrivilegeStates& loaded,
                                const TAccountDialect& dialect = kMariaDb) {
  return BuildChangeUserScript(f, loaded, kColumns, dialect, plain);
}

TEST(AccountDialect, OnlyMySqlFromVersionNumber80IsModern) {
  EXPECT_FALSE(kMariaDb.ModernAccounts);
  EXPECT_EQ(kMariaDb.MajorVersion, 5);
  EXPECT_FALSE(AccountDialectFor("11.4.2-MariaDB").ModernAccounts);
  EXPECT_FALSE(AccountDialectFor("5.7.44-log").ModernAccounts);
  EXPECT_TRUE(kMySql8.ModernAccounts);
  EXPECT_TRUE(AccountDialectFor("8.4.0").ModernAccounts);
  EXPECT_EQ(kMySql3.MajorVersion, 3);
}

TEST(CreateUserScript, NoLimitsAndNoGrantOptionEndWithThePasswordLiteral) {
  EXPECT_EQ(create(form()),
            std::vector<std::string>{"GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw';"});
}

TEST(CreateUserScript, EveryLimitTakesTheQueriesValue) {
  TUserForm f = form();
  f.MaxUpdates = "5";
  EXPECT_EQ(create(f).front(),
            "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw' WITH  MAX_UPDATES_PER_HOUR 0;");
  f.MaxQueries = "7";
  f.MaxConnections = "3";
  f.GrantOption = true;
  EXPECT_EQ(
      create(f).front(),
      "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw' WITH  GRANT OPTION  MAX_QUERIES_PER_HOUR 7 "
      "MAX_UPDATES_PER_HOUR 7 MAX_CONNECTIONS_PER_HOUR 7;");
}

TEST(CreateUserScript, ServersBelowVersion4GetNoLimits) {
  TUserForm f = form();
  f.MaxQueries = "7";
  EXPECT_EQ(create(f, kMySql3).front(), "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw' WITH ;");
  f.GrantOption = true;
  EXPECT_EQ(create(f, kMySql3).front(),
            "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw' WITH  GRANT OPTION ;");
}

TEST(CreateUserScript, GlobalThenSchemaGrantsInListOrder) {
  TUserForm f = form("bob", "%");
  f.Privileges = globals({"Show databases", "Select", "Replication client"});
  f.Privileges.Schema = {
      {"alpha", cells({"select", "grant"})}, {"beta", cells({})}, {"gamma", cells({"trigger"})}};
  EXPECT_EQ(create(f), (std::vector<std::string>{
                           "GRANT USAGE ON *.* TO `bob`@`%` IDENTIFIED BY 'pw';",
                           "GRANT Select ON *.* TO  `bob`@`%`;",
                           "GRANT Show databases ON *.* TO  `bob`@`%`;",
                           "GRANT Replication client ON *.* TO  `bob`@`%`;",
                           "GRANT select ON alpha.* TO  `bob`@`%`;",
                           "GRANT grant option ON alpha.* TO  `bob`@`%`;",
                           "GRANT trigger ON gamma.* TO  `bob`@`%`;",
                       }));
}

TEST(CreateUserScript, BackQuotesInNamesAreDoubledAndThePasswordIsEscaped) {
  TUserForm f = form("o`neil", "h`st");
  f.Password = "it's";
  EXPECT_EQ(BuildCreateUserScript(f, kColumns, kMariaDb, test::backslashEscaped).front(),
            "GRANT USAGE ON *.* TO `o``neil`@`h``st` IDENTIFIED BY 'it\\'s';");
}

TEST(ChangeUserScript, LimitsAreAlwaysWrittenAndAnUntouchedPasswordIsNotSent) {
  TUserForm f = form();
  EXPECT_EQ(change(f, f.Privileges),
            std::vector<std::string>{"GRANT USAGE ON *.* TO `ann`@`localhost` WITH  MAX_QUERIES_PER_HOUR 0 "
                                     "MAX_UPDATES_PER_HOUR 0 MAX_CONNECTIONS_PER_HOUR 0 ;"});
  f.MaxQueries = "4";
  f.MaxUpdates = "9";
  f.MaxConnections = "2";
  f.GrantOption = true;
  f.PasswordEdited = true;
  EXPECT_EQ(
      change(f, f.Privileges).front(),
      "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw' WITH  GRANT OPTION  MAX_QUERIES_PER_HOUR 4 "
      "MAX_UPDATES_PER_HOUR 4 MAX_CONNECTIONS_PER_HOUR 2;");
}

TEST(ChangeUserScript, BelowVersion4AnEmptyWithIsDropped) {
  TUserForm f = form();
  EXPECT_EQ(change(f, f.Privileges, kMySql3).front(), "GRANT USAGE ON *.* TO `ann`@`localhost` ;");
  f.PasswordEdited = true;
  EXPECT_EQ(change(f, f.Privileges, kMySql3).front(),
            "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw';");
  f.GrantOption = true;
  EXPECT_EQ(change(f, f.Privileges, kMySql3).front(),
            "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY 'pw' WITH  GRANT OPTION ;");
}

TEST(ChangeUserScript, OnlyChangedPrivilegesAreGrantedOrRevoked) {
  TPrivilegeStates loaded = globals({"Select", "Insert", "Process"});
  loaded.Schema = {{"alpha", cells({"select", "insert"})}, {"beta", cells({"grant"})}};
  TUserForm f = form();
  f.Privileges = globals({"Select", "Process", "Event"});
  f.Privileges.Schema = {
      {"alpha", cells({"select", "update"})}, {"beta", cells({})}, {"fresh", cells({"drop"})}};
  const auto script = change(f, loaded);
  EXPECT_EQ(std::vector<std::string>(script.begin() + 1, script.end()),
            (std::vector<std::string>{
                "REVOKE Insert ON *.* FROM  `ann`@`localhost`;",
                "GRANT Event ON *.* TO  `ann`@`localhost`;",
                "REVOKE insert ON alpha.* FROM  `ann`@`localhost`;",
                "GRANT update ON alpha.* TO  `ann`@`localhost`;",
                "REVOKE grant option ON beta.* FROM  `ann`@`localhost`;",
                "GRANT drop ON fresh.* TO  `ann`@`localhost`;",
            }));
}

TEST(ModernAccountScript, MySql8CreatesThenAltersAndGrantsTheOptionApart) {
  TUserForm f = form();
  f.MaxQueries = "3";
  f.GrantOption = true;
  f.Privileges = globals({"Select"});
  EXPECT_EQ(create(f, kMySql8),
            (std::vector<std::string>{
                "CREATE USER IF NOT EXISTS `ann`@`localhost`;",
                "ALTER USER `ann`@`localhost` IDENTIFIED BY 'pw' WITH  MAX_QUERIES_PER_HOUR 3;",
                "GRANT USAGE ON *.* TO `ann`@`localhost` WITH GRANT OPTION;",
                "GRANT Select ON *.* TO  `ann`@`localhost`;",
            }));
  EXPECT_EQ(create(form(), kMySql8), (std::vector<std::string>{
                                         "CREATE USER IF NOT EXISTS `ann`@`localhost`;",
                                         "ALTER USER `ann`@`localhost` IDENTIFIED BY 'pw';",
                                     }));
}

TEST(ModernAccountScript, MySql8ChangeModeAltersTheAccount) {
  TUserForm f = form();
  EXPECT_EQ(change(f, f.Privileges, kMySql8),
            std::vector<std::string>{
                "ALTER USER `ann`@`localhost` WITH  MAX_QUERIES_PER_HOUR 0 MAX_UPDATES_PER_HOUR 0 "
                "MAX_CONNECTIONS_PER_HOUR 0 ;"});
  f.PasswordEdited = true;
  EXPECT_EQ(
      change(f, f.Privileges, kMySql8).front(),
      "ALTER USER `ann`@`localhost` IDENTIFIED BY 'pw' WITH  MAX_QUERIES_PER_HOUR 0 MAX_UPDATES_PER_HOUR 0 "
      "MAX_CONNECTIONS_PER_HOUR 0;");
}

TEST(SetPasswordSql, AccountFormsAndVersions) {
  EXPECT_EQ(BuildSetPasswordSql("ann", "localhost", "pw", kMariaDb, plain),
            "set password for ann@localhost = PASSWORD('pw')");
  EXPECT_EQ(BuildSetPasswordSql("ann", "%", "pw", kMariaDb, plain), "set password for ann = PASSWORD('pw')");
  EXPECT_EQ(BuildSetPasswordSql("", "", "pw", kMariaDb, plain), "set password  = PASSWORD('pw')");
  EXPECT_EQ(BuildSetPasswordSql("ann", "localhost", "pw", kMySql8, plain),
            "set password for ann@localhost = 'pw'");
  EXPECT_EQ(BuildSetPasswordSql("", "", "pw", kMySql8, plain), "set password  = 'pw'");
}

TEST(PasswordMask, TheMaskedScriptHidesOnlyThePassword) {
  TUserForm f = form();
  f.Password = "s3cret";
  EXPECT_EQ(BuildCreateUserScript(f, kColumns, kMariaDb, MaskPassword).front(),
            "GRANT USAGE ON *.* TO `ann`@`localhost` IDENTIFIED BY '********';");
  EXPECT_EQ(BuildSetPasswordSql("", "", "s3cret", kMariaDb, MaskPassword),
            "set password  = PASSWORD('********')");
}

TEST(UserFormValidation, MessagesInOrder) {
  TUserForm f = form("", "");
  f.Password = "";
  EXPECT_EQ(ValidateUserForm(f, "x"), "Missing name.");
  f.User = "ann";
  EXPECT_EQ(ValidateUserForm(f, "x"), "Missing host.");
  f.Host = "%";
  EXPECT_EQ(ValidateUserForm(f, "x"), "Missing password.");
  f.Password = "pw";
  EXPECT_EQ(ValidateUserForm(f, "pW"), "Passwords don't match");
  EXPECT_EQ(ValidateUserForm(f, "pw"), "");
}

TEST(SchemaColumns, TheGridShowsTheColumnsTheServerHas) {
  const auto shown =
      SchemaPrivilegesOf({"Host", "Db", "User", "Select_priv", "Grant_priv", "Execute_priv", "Frob_priv"});
  ASSERT_EQ(shown.size(), 3u);
  EXPECT_EQ(shown[0].Caption, "select");
  EXPECT_EQ(shown[1].Word, "grant option");
  EXPECT_EQ(shown[2].Caption, "execute");
}

TEST(LoadingQueries, ValuesAreEscapedAndQuoted) {
  EXPECT_EQ(LoadUserSql("ann", test::marked), "SELECT * FROM mysql.user WHERE user.User ='<ann>'");
  EXPECT_EQ(LoadSchemaPrivilegesSql("ann", "alpha", test::marked),
            "SELECT * FROM mysql.db WHERE mysql.db.User='<ann>' AND \n mysql.db.Db ='<alpha>' ");
}

}  // namespace
}  // namespace lomarin::users
