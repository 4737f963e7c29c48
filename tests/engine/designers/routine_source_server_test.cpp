// A trigger's text from the dump engine, and routines called with their parameters read from the server.
#include <gtest/gtest.h>

#include "engine/connect/my_query.h"
#include "engine/designers/routine_source.h"
#include "engine/designers/stored_proc.h"
#include "test_server.h"

namespace lomarin::designers {
namespace {

constexpr const char* kDb = "designers_routines";

class Routines : public ::testing::Test {
 protected:
  void SetUp() override {
    test::sideExec(std::string("DROP DATABASE IF EXISTS ") + kDb);
    test::sideExec(std::string("CREATE DATABASE ") + kDb);
    session = test::connect(kDb);
  }
  void TearDown() override { test::sideExec(std::string("DROP DATABASE IF EXISTS ") + kDb); }
  void exec(const std::string& sql) {
    TMyQuery query(*session);
    query.SQL = sql;
    query.Execute();
  }
  std::unique_ptr<TMyConnection> session;
};

TEST_F(Routines, TriggerTextIsTheDumpsCreateTriggerAlone) {
  exec("CREATE TABLE t (id INT)");
  exec("CREATE TRIGGER stamp BEFORE INSERT ON t FOR EACH ROW SET NEW.id = NEW.id + 1");
  exec("CREATE TRIGGER other AFTER DELETE ON t FOR EACH ROW SET @x = 1");
  const std::string text = DumpTriggerSource(*session, kDb, "stamp");
  // The dump writes the server's own statement, definer included.
  EXPECT_NE(text.find("\r\nCREATE DEFINER="), std::string::npos) << text;
  EXPECT_NE(text.find(" TRIGGER stamp BEFORE INSERT ON t FOR EACH ROW SET NEW.id = NEW.id + 1 $$"), std::string::npos)
      << text;
  EXPECT_EQ(text.find("other"), std::string::npos) << text;
  EXPECT_EQ(text.find("DROP"), std::string::npos) << text;
  EXPECT_EQ(text.find("CREATE TABLE"), std::string::npos) << text;
}

TEST_F(Routines, ProcedureWithInOutAndInOutParametersAndAResultSet) {
  exec(
      "CREATE PROCEDURE p(IN a INT, OUT b VARCHAR(20), INOUT c DECIMAL(8,2), IN d TEXT) "
      "BEGIN SET b = CONCAT('got ', a); SET c = c * 2; SELECT a AS one, d IS NULL AS nothing; END");
  TMyStoredProc proc(*session);
  proc.Database = kDb;
  proc.StoredProcName = "p";
  proc.ReadParams();
  ASSERT_EQ(proc.Params.size(), 4u);
  EXPECT_EQ(proc.Params[1].Name, "b");
  EXPECT_EQ(proc.Params[1].Kind, TParamKind::Out);
  EXPECT_EQ(proc.Params[1].DataType, "String");
  EXPECT_EQ(proc.Params[1].Size, 20);
  EXPECT_EQ(proc.Params[2].Kind, TParamKind::InOut);
  EXPECT_EQ(proc.Params[2].DataType, "Float");
  EXPECT_EQ(proc.Params[3].DataType, "Memo");
  proc.ParamByName("A")->Value = "7";
  proc.ParamByName("c")->Value = "1.25";
  proc.PrepareSQL();
  TQueryRun run = proc.ExecProc(100);
  EXPECT_EQ(proc.ParamByName("b")->Value, "got 7");
  EXPECT_EQ(proc.ParamByName("c")->Value, "2.50");
  ASSERT_TRUE(run.First);
  ASSERT_TRUE(run.First->Next());
  EXPECT_EQ(run.First->Value(0), "7");
  // No value is NULL, not a text.
  EXPECT_EQ(run.First->Value(1), "1");
}

TEST_F(Routines, FunctionValueIsTheResultRow) {
  exec("CREATE FUNCTION f(a INT, b INT) RETURNS INT DETERMINISTIC RETURN a * b");
  TMyStoredProc proc(*session);
  proc.Database = kDb;
  proc.StoredProcName = "f";
  proc.IsFunction = true;
  proc.ReadParams();
  ASSERT_EQ(proc.Params.size(), 3u);
  EXPECT_EQ(proc.Params[0].Name, "RESULT");
  EXPECT_EQ(proc.Params[0].Kind, TParamKind::Result);
  EXPECT_EQ(proc.Params[1].Kind, TParamKind::In);
  proc.Params[1].Value = "6";
  proc.Params[2].Value = "7";
  proc.PrepareSQL();
  proc.ExecProc(100);
  EXPECT_EQ(proc.Params[0].Value, "42");
}

}  // namespace
}  // namespace lomarin::designers
