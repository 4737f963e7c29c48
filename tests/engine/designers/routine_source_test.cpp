// How the routine editor names, loads and calls what it holds, and how load queries bind values.
#include "engine/designers/routine_source.h"

#include <gtest/gtest.h>

#include "engine/designers/bound_sql.h"
#include "engine/designers/stored_proc.h"

namespace lomarin::designers {
namespace {

std::string marked(std::string_view text) { return "<" + std::string(text) + ">"; }

TEST(BoundSql, NamesOutsideQuotesAndCommentsBecomeEscapedLiterals) {
  EXPECT_EQ(BindParams("select ':db', `:db` from t where a=:db and b = :DB2 -- :db\nand c=:Name /* :name */",
                       {{"db", "x"}, {"name", "it's"}}, marked),
            "select ':db', `:db` from t where a='<x>' and b = :DB2 -- :db\nand c='<it's>' /* :name */");
  EXPECT_EQ(BindParams("select 'a\\':db' x, :db", {{"db", "v"}}, marked), "select 'a\\':db' x, '<v>'");
}

TEST(RoutineSource, KindsLoadStatementsAndTheColumnHoldingTheText) {
  EXPECT_EQ(RoutineKindOf("Procedures"), TRoutineKind::Procedure);
  EXPECT_EQ(RoutineKindOf("FUNCTION"), TRoutineKind::Function);
  EXPECT_EQ(RoutineKindOf("trigger"), TRoutineKind::Trigger);
  EXPECT_EQ(RoutineKindOf("events"), TRoutineKind::Event);
  EXPECT_EQ(RoutineKindOf("Tables"), TRoutineKind::Other);
  EXPECT_EQ(RoutineLoadSql(TRoutineKind::Procedure, "shop", "p"), "SHOW CREATE PROCEDURE `shop`.p");
  EXPECT_EQ(RoutineLoadSql(TRoutineKind::Function, "my-shop", "f-x"), "SHOW CREATE FUNCTION `my-shop`.`f-x`");
  EXPECT_EQ(RoutineLoadSql(TRoutineKind::Event, "shop", "e"), "SHOW CREATE EVENT `shop`.e");
  EXPECT_EQ(RoutineLoadSql(TRoutineKind::Trigger, "shop", "t"), "");
  EXPECT_EQ(RoutineSourceColumn(TRoutineKind::Procedure), 2);
  EXPECT_EQ(RoutineSourceColumn(TRoutineKind::Event), 3);
  EXPECT_EQ(RoutineScript("CREATE PROCEDURE p() BEGIN SELECT 1; END"),
            "DELIMITER $$\n\nCREATE PROCEDURE p() BEGIN SELECT 1; END$$\n\nDELIMITER ;\n");
}

TEST(RoutineSource, NameAndKindComeFromTheTextWithQuotesBlanked) {
  EXPECT_EQ(RoutineNameInText("CREATE PROCEDURE `my-proc` ( )"), "my-proc");
  EXPECT_EQ(RoutineKindInText("CREATE PROCEDURE `my-proc` ( )"), "PROCEDURE");
  EXPECT_EQ(RoutineNameInText("DELIMITER $$\n\ncreate function\n  total (a INT)"), "total");
  EXPECT_EQ(RoutineKindInText("-- x\ncreate  function total (a INT)"), "function");
  // The name must be followed by a blank: a parenthesis right after it names nothing.
  EXPECT_EQ(RoutineNameInText("CREATE PROCEDURE p()"), "");
  EXPECT_EQ(RoutineNameInText("SELECT 1"), "");
}

TEST(StoredProc, TypeNamesOfTheParameterList) {
  EXPECT_EQ(ParamTypeName("varchar"), "String");
  EXPECT_EQ(ParamTypeName("INT"), "Integer");
  EXPECT_EQ(ParamTypeName("decimal"), "Float");
  EXPECT_EQ(ParamTypeName("date"), "Date");
  EXPECT_EQ(ParamTypeName("datetime"), "TimeStamp");
  EXPECT_EQ(ParamTypeName("longblob"), "BLOB");
  EXPECT_EQ(ParamTypeName("text"), "Memo");
  EXPECT_EQ(ParamTypeName("geometry"), "Unknown");
  EXPECT_EQ(ParamKindName(TParamKind::InOut), "IN/OUT");
}

TEST(StoredProc, CallsPassValuesAndReadOutParametersFromVariables) {
  std::vector<TProcParam> params = {{"a", "Integer", TParamKind::In, "1", 0},
                                    {"b", "String", TParamKind::Out, std::nullopt, 0},
                                    {"c`d", "String", TParamKind::InOut, "x", 0},
                                    {"e", "String", TParamKind::In, std::nullopt, 0}};
  TCallStatements call = BuildCallStatements("shop", "p", false, params, marked);
  EXPECT_EQ(call.Before, "SET @`c``d` = '<x>'");
  EXPECT_EQ(call.Call, "CALL `shop`.`p`('<1>', @`b`, @`c``d`, NULL)");
  EXPECT_EQ(call.After, "SELECT @`b`, @`c``d`");
  EXPECT_EQ(call.OutNames, (std::vector<std::string>{"b", "c`d"}));

  params = {{"RESULT", "Integer", TParamKind::Result, std::nullopt, 0},
            {"a", "Integer", TParamKind::In, "2", 0}};
  call = BuildCallStatements("shop", "f", true, params, marked);
  EXPECT_EQ(call.Before, "");
  EXPECT_EQ(call.Call, "SELECT `shop`.`f`('<2>')");
  EXPECT_EQ(call.After, "");
  EXPECT_EQ(call.OutNames, std::vector<std::string>{"RESULT"});
}

}  // namespace
}  // namespace lomarin::designers
