// Account scripts run on the real server, and the account loaded back as the dialog shows it.
#include "engine/users/user_account.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/browse_sql.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin::users {
namespace {

class UserAccount : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* db : {"users_eng_a", "users_eng_b"})
      test::sideExec(std::string("CREATE DATABASE IF NOT EXISTS ") + db);
    dropUser();
    session = test::connect("users_eng_a");
    log = std::make_unique<test::SentStatements>(*session);
  }
  void TearDown() override {
    dropUser();
    for (const char* db : {"users_eng_a", "users_eng_b"})
      test::sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
  }
  void dropUser() { test::sideExec("DROP USER IF EXISTS `" + user + "`@`127.0.0.1`"); }

  LiteralEscaper escaper() {
    return [this](std::string_view v) { return EscapeString(*session, v); };
  }
  void run(const std::vector<std::string>& script, const std::vector<std::string>& masked) {
    TMyConnection::MultiStatements multi(*session);
    log->sent.clear();
    ASSERT_TRUE(ExecSQLText(*session, dataview::JoinLines(script), dataview::JoinLines(masked),
                            [](const ServerError& e) { ADD_FAILURE() << e.message(); }));
  }
  bool logsIn(const std::string& password) {
    TMyConnection login;
    login.Settings = test::serverSettings();
    login.Settings.Username = user;
    login.Settings.Password = password;
    try {
      login.Connect();
      return true;
    } catch (const ServerError&) {
      return false;
    }
  }
  std::vector<std::string> grants() {
    TMyQuery query(*session);
    query.SQL = "SHOW GRANTS FOR `" + user + "`@`127.0.0.1`";
    query.Open();
    std::vector<std::string> rows;
    while (query.Next()) rows.emplace_back(query.Value(0));
    return rows;
  }
  TSchemaRow* row(TUserForm& form, const std::string& database) {
    for (TSchemaRow& r : form.Privileges.Schema)
      if (r.Database == database) return &r;
    ADD_FAILURE() << "no grid row " << database;
    return nullptr;
  }

  const std::string user = "lmu_eng_" + std::to_string(getpid());
  std::unique_ptr<TMyConnection> session;
  std::unique_ptr<test::SentStatements> log;
};

TEST_F(UserAccount, CreatedAccountLogsInAndLoadsBackAsItWasMade) {
  TUserManagerData data = LoadUserManager(*session, "");
  ASSERT_EQ(data.SchemaColumns.size(), SchemaPrivileges().size());
  TUserForm form = data.Form;
  form.User = user;
  form.Host = "127.0.0.1";
  form.Password = "it's s3cret";
  form.MaxQueries = "40";
  form.MaxConnections = "9";
  form.Privileges.Global[0] = form.Privileges.Global[8] = true;  // Select, Process
  row(form, "users_eng_b")->Cells[1] = true;                     // insert
  row(form, "users_eng_b")->Cells[6] = true;                     // grant
  const TAccountDialect dialect = AccountDialectFor(session->ServerVersion());
  run(BuildCreateUserScript(form, data.SchemaColumns, dialect, escaper()),
      BuildCreateUserScript(form, data.SchemaColumns, dialect, MaskPassword));

  ASSERT_EQ(log->sent.size(), 1u);
  EXPECT_EQ(log->sent[0].find("s3cret"), std::string::npos);
  EXPECT_NE(log->sent[0].find("IDENTIFIED BY '********'"), std::string::npos);
  EXPECT_TRUE(logsIn("it's s3cret"));
  const auto shown = grants();
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_TRUE(shown[0].starts_with("GRANT SELECT, PROCESS ON *.* TO `" + user +
                                   "`@`127.0.0.1` IDENTIFIED BY PASSWORD "))
      << shown[0];
  EXPECT_NE(shown[0].find("WITH MAX_QUERIES_PER_HOUR 40 MAX_CONNECTIONS_PER_HOUR 40"), std::string::npos);
  EXPECT_EQ(shown[1], "GRANT INSERT ON `users_eng_b`.* TO `" + user + "`@`127.0.0.1` WITH GRANT OPTION");

  TUserForm loaded = LoadUserManager(*session, user).Form;
  EXPECT_EQ(loaded.Host, "127.0.0.1");
  EXPECT_EQ(loaded.Password, test::scalar(*session, "SELECT PASSWORD('it''s s3cret')"));
  EXPECT_EQ(loaded.MaxQueries, "40");
  EXPECT_EQ(loaded.MaxUpdates, "0");
  EXPECT_EQ(loaded.MaxConnections, "40");
  EXPECT_FALSE(loaded.GrantOption);
  EXPECT_EQ(loaded.Privileges.Global, form.Privileges.Global);
  EXPECT_EQ(row(loaded, "users_eng_b")->Cells, row(form, "users_eng_b")->Cells);
  EXPECT_EQ(row(loaded, "users_eng_a")->Cells, std::vector<bool>(data.SchemaColumns.size(), false));
}

TEST_F(UserAccount, ChangeScriptSendsOnlyTheDifferences) {
  test::sideExec("GRANT SELECT, INSERT ON *.* TO `" + user + "`@`127.0.0.1` IDENTIFIED BY 'old'");
  test::sideExec("GRANT DELETE ON users_eng_a.* TO `" + user + "`@`127.0.0.1`");
  const TUserManagerData data = LoadUserManager(*session, user);
  TUserForm form = data.Form;
  form.Privileges.Global[1] = false;  // Insert
  form.Privileges.Global[2] = true;   // Update
  row(form, "users_eng_a")->Cells[3] = false;
  row(form, "users_eng_a")->Cells[4] = true;
  form.Password = "new";
  form.PasswordEdited = true;
  const TAccountDialect dialect = AccountDialectFor(session->ServerVersion());
  const auto script =
      BuildChangeUserScript(form, data.Form.Privileges, data.SchemaColumns, dialect, escaper());
  EXPECT_EQ(std::vector<std::string>(script.begin() + 1, script.end()),
            (std::vector<std::string>{
                "REVOKE Insert ON *.* FROM  `" + user + "`@`127.0.0.1`;",
                "GRANT Update ON *.* TO  `" + user + "`@`127.0.0.1`;",
                "REVOKE delete ON users_eng_a.* FROM  `" + user + "`@`127.0.0.1`;",
                "GRANT create ON users_eng_a.* TO  `" + user + "`@`127.0.0.1`;",
            }));
  run(script, BuildChangeUserScript(form, data.Form.Privileges, data.SchemaColumns, dialect, MaskPassword));
  EXPECT_FALSE(logsIn("old"));
  EXPECT_TRUE(logsIn("new"));
  const auto shown = grants();
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_TRUE(shown[0].starts_with("GRANT SELECT, UPDATE ON *.* TO `" + user +
                                   "`@`127.0.0.1` IDENTIFIED BY PASSWORD "))
      << shown[0];
  EXPECT_EQ(shown[1], "GRANT CREATE ON `users_eng_a`.* TO `" + user + "`@`127.0.0.1`");
}

}  // namespace
}  // namespace lomarin::users
