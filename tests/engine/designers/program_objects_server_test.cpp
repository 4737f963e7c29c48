// The program-object statements as the server takes them, read back from the server.
#include <gtest/gtest.h>

#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/designers/bound_sql.h"
#include "engine/designers/event_manager.h"
#include "engine/designers/routine_texts.h"
#include "engine/designers/trigger_manager.h"
#include "engine/designers/view_udf.h"
#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/script_services.h"
#include "test_server.h"

namespace lomarin::designers {
namespace {

// A hyphen in the name takes the drop through its quoted form.
constexpr const char* kDb = "designers-programs";

class ProgramObjects : public ::testing::Test {
 protected:
  void SetUp() override {
    test::sideExec(std::string("DROP DATABASE IF EXISTS `") + kDb + "`");
    test::sideExec(std::string("CREATE DATABASE `") + kDb + "`");
    session = test::connect(kDb);
  }
  void TearDown() override { test::sideExec(std::string("DROP DATABASE IF EXISTS `") + kDb + "`"); }

  void exec(const std::string& sql) {
    ASSERT_TRUE(ExecSQLText(*session, sql, [&](const ServerError& e) {
      ADD_FAILURE() << e.message() << "\n" << sql;
    }));
  }
  // The error a statement meets, or none.
  std::optional<ServerError> refusal(const std::string& sql) {
    std::optional<ServerError> error;
    ExecSQLText(*session, sql, [&](const ServerError& e) { error = e; });
    return error;
  }
  // A load query with its :names bound by the client library, as the dialogs bind them.
  std::vector<std::string> loadRow(std::string_view sql, const std::vector<TBoundValue>& binds) {
    const explorer::ResultTable result = ReadBound(*session, sql, binds);
    return result.rows.empty() ? std::vector<std::string>{} : result.rows.front();
  }
  explorer::ValueEscaper escape() {
    return [this](std::string_view text) { return EscapeString(*session, text); };
  }

  std::unique_ptr<TMyConnection> session;
};

TEST_F(ProgramObjects, TriggerCreatedLoadedDroppedAndCreatedAgain) {
  exec("CREATE TABLE orders (id INT, at INT)");
  TTriggerState state{kDb, "orders", "stamp", "BEFORE", "INSERT", "SET NEW.at = 7"};
  exec(BuildCreateTriggerSql(state));
  std::vector<std::string> row = loadRow(kLoadTriggerSql, {{"db", kDb}, {"name", "stamp"}});
  ASSERT_EQ(row.size(), 9u);
  EXPECT_EQ(row[1], "stamp");
  EXPECT_EQ(row[2], "INSERT");
  EXPECT_EQ(row[3], "orders");
  EXPECT_EQ(row[6], "SET NEW.at = 7");
  EXPECT_EQ(row[8], "BEFORE");

  exec(BuildDropTriggerSql(kDb, "stamp"));
  state.Time = "AFTER";
  state.Event = "DELETE";
  state.Body = "SET @gone = OLD.id";
  exec(BuildCreateTriggerSql(state));
  exec("INSERT INTO orders (id) VALUES (4)");
  exec("DELETE FROM orders");
  EXPECT_EQ(test::scalar(*session, "SELECT @gone"), "4");
  EXPECT_EQ(loadRow(kLoadTriggerSql, {{"db", kDb}, {"name", "stamp"}})[8], "AFTER");
}

TEST_F(ProgramObjects, ViewMadeFromItsSelect) {
  exec(BuildCreateViewSql("answers", "select 42 as answer"));
  EXPECT_EQ(test::scalar(*session, "SELECT answer FROM answers"), "42");
  EXPECT_EQ(test::scalar(*session, std::string("SELECT table_type FROM information_schema.tables "
                                               "WHERE table_schema = '") +
                                       kDb + "' AND table_name = 'answers'"),
            "VIEW");
}

TEST_F(ProgramObjects, LibraryFunctionsTheServerCannotLoadAreRefusedWithItsMessage) {
  TUdfState udf{"nothere", "lomarin_missing_udf.so", "Integer", false, ""};
  const std::optional<ServerError> missing = refusal(BuildCreateUdfSql(udf));
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->number(), 1126u) << missing->message();
  EXPECT_NE(missing->message().find("lomarin_missing_udf.so"), std::string::npos) << missing->message();
  udf.Aggregate = true;
  const std::optional<ServerError> aggregate = refusal(BuildCreateUdfSql(udf));
  ASSERT_TRUE(aggregate);
  EXPECT_EQ(aggregate->number(), 1064u) << aggregate->message();
  EXPECT_EQ(test::scalar(*session, "SELECT COUNT(*) FROM mysql.func WHERE name = 'nothere'"), "0");
}

TEST_F(ProgramObjects, OneTimeAndRecurringEventsCreatedReadBackAndAltered) {
  exec("CREATE TABLE beats (at DATETIME)");
  TEventState once;
  once.Name = "once";
  once.At = "2030-06-01 10:00:00";
  once.AtInterval = "2";
  once.AtIntervalUnit = "HOUR";
  once.Comment = "one time";
  once.Body = "INSERT INTO beats VALUES (NOW())";
  ASSERT_TRUE(ExecScriptText(*session, BuildEventSql(once, escape()),
                             [](const ServerError& e) { FAIL() << e.message(); }));
  std::vector<std::string> row = loadRow(kLoadEventSql, {{"db", kDb}, {"event", "once"}});
  ASSERT_EQ(row.size(), 15u);
  EXPECT_EQ(row[2], "INSERT INTO beats VALUES (NOW())");
  EXPECT_EQ(row[3], "ONE TIME");
  EXPECT_EQ(row[4], "2030-06-01 12:00:00");
  EXPECT_EQ(row[9], "ENABLED");
  EXPECT_EQ(row[10], "NOT PRESERVE");
  EXPECT_EQ(row[14], "one time");

  TEventState every;
  every.Name = "every";
  every.Recurring = true;
  every.EveryValue = "5";
  every.EveryUnit = "MINUTE";
  every.HasStart = every.HasEnd = true;
  every.Starts = "CURRENT_TIMESTAMP";
  every.Ends = "2031-01-01 00:00:00";
  every.Enabled = false;
  every.NotPreserve = false;
  every.Body = "DELETE FROM beats";
  ASSERT_TRUE(ExecScriptText(*session, BuildEventSql(every, escape()),
                             [](const ServerError& e) { FAIL() << e.message(); }));
  row = loadRow(kLoadEventSql, {{"db", kDb}, {"event", "every"}});
  ASSERT_EQ(row.size(), 15u);
  EXPECT_EQ(row[3], "RECURRING");
  EXPECT_EQ(row[5], "5");
  EXPECT_EQ(row[6], "MINUTE");
  EXPECT_FALSE(row[7].empty());
  EXPECT_EQ(row[8], "2031-01-01 00:00:00");
  EXPECT_EQ(row[9], "DISABLED");
  EXPECT_EQ(row[10], "PRESERVE");

  every.Alter = true;
  every.EveryValue = "1:30";
  every.EveryUnit = "HOUR_MINUTE";
  every.HasEnd = false;
  every.Comment = "daily";
  ASSERT_TRUE(ExecScriptText(*session, BuildEventSql(every, escape()),
                             [](const ServerError& e) { FAIL() << e.message(); }));
  row = loadRow(kLoadEventSql, {{"db", kDb}, {"event", "every"}});
  EXPECT_EQ(row[5], "'1:30'");
  EXPECT_EQ(row[6], "HOUR_MINUTE");
  EXPECT_EQ(row[8], "2031-01-01 00:00:00");  // ALTER without ENDS keeps the end
  EXPECT_EQ(row[14], "daily");
  // The value as loaded goes back unchanged.
  every.EveryValue = row[5];
  ASSERT_TRUE(ExecScriptText(*session, BuildEventSql(every, escape()),
                             [](const ServerError& e) { FAIL() << e.message(); }));
}

// A quote and a backslash in the comment reach the server as typed, whatever the SQL mode says
// about backslashes.
TEST_F(ProgramObjects, EventCommentsAreEscapedForTheSessionsSqlMode) {
  TEventState event;
  event.Name = "noted";
  event.At = "2030-06-01 10:00:00";
  event.Body = "DO 1";
  event.Comment = R"(it's C:\temp\)";
  for (const char* mode : {"SET sql_mode = ''", "SET sql_mode = 'NO_BACKSLASH_ESCAPES'"}) {
    exec(mode);
    ASSERT_TRUE(ExecScriptText(*session, BuildEventSql(event, escape()),
                               [](const ServerError& e) { FAIL() << e.message(); }));
    EXPECT_EQ(loadRow(kLoadEventSql, {{"db", kDb}, {"event", "noted"}}).at(14), event.Comment) << mode;
    exec("DROP EVENT noted");
  }
}

TEST_F(ProgramObjects, TemplatesCompileAsScriptsAndTheRoutineDropsRemoveThem) {
  for (std::string_view text : {kNewProcedureTemplate, kNewFunctionTemplate}) {
    TMyScript script(*session);
    script.SQL = std::string(text);
    script.Execute();
  }
  exec("CALL new_procedure(3, @out)");
  EXPECT_EQ(test::scalar(*session, "SELECT @out"), "3");
  EXPECT_EQ(test::scalar(*session, "SELECT new_function(4)"), "4");

  exec("CREATE PROCEDURE `my-proc` () SELECT 1");
  exec(BuildRoutineDropSql("Procedures", "my-proc"));
  exec(BuildRoutineDropSql("PROCEDURE", "new_procedure"));
  exec(BuildRoutineDropSql("Functions", "new_function"));
  exec("CREATE TABLE t (a INT)");
  exec("CREATE TRIGGER tr BEFORE INSERT ON t FOR EACH ROW SET NEW.a = 1");
  exec(BuildRoutineDropSql("Triggers", "tr"));
  EXPECT_EQ(test::scalar(*session, std::string("SELECT COUNT(*) FROM information_schema.routines "
                                               "WHERE routine_schema = '") +
                                       kDb + "'"),
            "0");
  EXPECT_EQ(test::scalar(*session, std::string("SELECT COUNT(*) FROM information_schema.triggers "
                                               "WHERE trigger_schema = '") +
                                       kDb + "'"),
            "0");
}

}  // namespace
}  // namespace lomarin::designers
