#include "engine/sqleditor/script_services.h"

#include <gtest/gtest.h>

#include "engine/sqleditor/macros.h"
#include "engine/sqleditor/run_current.h"
#include "test_escaper.h"

namespace lomarin {
namespace {

TEST(ScriptServices, ErrorHandlersAndExplain) {
  std::string errors = "old";
  TErrorAction action = TErrorAction::eaFail;
  ServerError error(1146, "42S02", "Table 't' doesn't exist");
  ScriptError(errors, error, "select * from t", action);
  EXPECT_EQ(errors, "oldselect * from t\rTable 't' doesn't exist\n");
  EXPECT_EQ(action, TErrorAction::eaContinue);
  action = TErrorAction::eaFail;
  CompileError(errors, error, "select * from t", action);
  EXPECT_EQ(errors, "Table 't' doesn't exist");
  EXPECT_EQ(action, TErrorAction::eaContinue);

  TMainErrorState state;
  std::string shown;
  bool fail = false;
  orseMainError(state, error, fail, [&](const std::string& text) { shown = text; });
  EXPECT_TRUE(fail);
  EXPECT_EQ(shown, "Table 't' doesn't exist");
  ASSERT_TRUE(state.LastError);
  EXPECT_EQ(state.LastError->number(), 1146u);
  state.Flag = true;
  orseMainError(state, error, fail, {});
  EXPECT_FALSE(fail);

  EXPECT_EQ(ExplainText("select 1"), "Explain select 1");
}

TEST(RunCurrent, BlocksAroundTheCaret) {
  const std::vector<std::string> lines = {"select 1", "from dual", "", "select 2", "  ", "select 3", "where 1"};
  // Caret on line 1: R = 0, the block from the top.
  auto plan = PlanRunCurrent(lines, 1);
  EXPECT_EQ(plan.Text, "\n\rselect 1\n\rfrom dual");
  EXPECT_EQ(plan.CaretLine, 0);
  EXPECT_EQ(plan.MarkerY, 1);
  // Caret on the blank line after a two-line statement: walk up to its first line.
  plan = PlanRunCurrent(lines, 2);
  EXPECT_EQ(plan.StartLine, 0);
  EXPECT_EQ(plan.Text, "\n\rselect 1\n\rfrom dual");
  EXPECT_EQ(plan.CaretLine, 1);
  EXPECT_EQ(plan.MarkerY, 0);
  plan = PlanRunCurrent(lines, 7);
  EXPECT_EQ(plan.StartLine, 5);
  EXPECT_EQ(plan.Text, "\n\rselect 3\n\rwhere 1");
  EXPECT_EQ(plan.MarkerY, 75);
  // Line R - 1 blank, line R blank: the caret line's block.
  plan = PlanRunCurrent({"a", "", "", "b"}, 3);
  EXPECT_EQ(plan.StartLine, 3);
  EXPECT_EQ(plan.Text, "\n\rb");
  EXPECT_EQ(plan.CaretLine, 4);
  EXPECT_EQ(plan.MarkerY, 45);
  // Line R - 1 blank, line R not: the block starting at R, and the command returns.
  plan = PlanRunCurrent(lines, 4);
  EXPECT_EQ(plan.StartLine, 3);
  EXPECT_EQ(plan.Text, "\n\rselect 2");
  EXPECT_EQ(plan.CaretLine, 4);
  EXPECT_EQ(plan.MarkerY, 45);
  // Caret on the first line.
  EXPECT_EQ(PlanRunCurrent(lines, 0).Text, "\n\rselect 1\n\rfrom dual");
}

TEST(RunCurrent, StatementOfATreeNode) {
  const std::string text = "select 1;\nDELETE from t;";
  EXPECT_EQ(TreeNodeStatement("SELECT", 0, 8, text), "select 1");
  EXPECT_EQ(TreeNodeStatement("Delete", 10, 23, text), "DELETE from t");
  EXPECT_EQ(TreeNodeStatement("Delete", 10, 99, text), "DELETE from t;");
  EXPECT_EQ(TreeNodeStatement("From", 0, 8, text), std::nullopt);
  EXPECT_EQ(TreeNodeStatement("select ", 0, 8, text), std::nullopt);
  EXPECT_EQ(TreeNodeStatement("select", 5, 5, text), std::nullopt);
  EXPECT_EQ(TreeNodeStatement("select", -1, 5, text), std::nullopt);
}

TEST(Macros, FoundOutsideQuotesAndComments) {
  const std::string sql = "select &id, '&no', `&no`, \"&no\" -- &no\n, &Name /* &no */ # &no\n"
                          "where a && b and c = &id and d=&name2 &&x";
  EXPECT_EQ(FindMacroNames(sql), (std::vector<std::string>{"id", "Name", "name2"}));
  EXPECT_EQ(ExpandMacros(sql, {{"ID", "7"}, {"name", "'x'"}}),
            "select 7, '&no', `&no`, \"&no\" -- &no\n, 'x' /* &no */ # &no\n"
            "where a && b and c = 7 and d=&name2 &&x");
  EXPECT_EQ(FindMacroNames("/*!40101 select &v */"), std::vector<std::string>{"v"});
}

TEST(Macros, FormattingByType) {
  EXPECT_EQ(FormatMacroValue("3.5", "Float", test::marked), "'<3,5>'");
  EXPECT_EQ(FormatMacroValue("it's", "String", test::marked), "'<it's>'");
  EXPECT_EQ(FormatMacroValue("7", "Integer", test::marked), "7");
  EXPECT_EQ(FormatMacroValue("x", "Char", test::marked), "'<x>'");
  EXPECT_EQ(FormatMacroValue("2024-01-31 10:00", "DateTime", test::marked), "'<2024-01-31 10:00>'");
  EXPECT_EQ(FormatMacroValue("3.5", "Float", test::marked, false), "3.5");
}

}  // namespace
}  // namespace lomarin
