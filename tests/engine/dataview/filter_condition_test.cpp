#include "engine/dataview/filter_condition.h"

#include <gtest/gtest.h>

#include "test_escaper.h"

namespace lomarin::dataview {
namespace {

std::string text(TFilterType type, std::string op, std::string value, std::string format = "%Y-%m-%d") {
  return FilterConditionText({"col", std::move(op), std::move(value), type, true, std::move(format)},
                             test::backslashEscaped);
}

TEST(FilterCondition, EachTypeWritesItsOwnText) {
  EXPECT_EQ(text(TFilterType::Integer, ">=", "10"), "col >= 10");
  EXPECT_EQ(text(TFilterType::String, "LIKE", "C%"), "col LIKE 'C%'");
  EXPECT_EQ(text(TFilterType::Char, "<>", "DE"), "col <> 'DE'");
  // The point-to-comma rule of the parameter dialog, kept as it is.
  EXPECT_EQ(text(TFilterType::Float, "<", "12.5.1"), "col < '12,5,1'");
  EXPECT_EQ(text(TFilterType::Date, "=", "2010-01-31"), "DATE_FORMAT(col,'%Y-%m-%d')='2010-01-31'");
  EXPECT_EQ(text(TFilterType::Date, ">=", "2024/05", "%Y/%m"), "DATE_FORMAT(col,'%Y/%m')>='2024/05'");
  EXPECT_EQ(text(TFilterType::String, "=", "O'Brien"), "col = 'O\\'Brien'");
}

TEST(FilterCondition, WithoutTypeFormattingOnlyTheValueEnters) {
  EXPECT_EQ(FilterConditionText({"col", "=", "a = 1 or b IS NULL", TFilterType::Date, false, "%Y"},
                                test::backslashEscaped),
            "a = 1 or b IS NULL");
  EXPECT_EQ(FilterConditionText({"col", "=", "x > 2", TFilterType::None, true, "%Y"}, test::backslashEscaped),
            "x > 2");
}

TEST(FilterCondition, ComposingReplacesOrJoinsWithLowerCaseWords) {
  std::string filter = ComposeFilter("old", "a = 1", TFilterJoin::Replace);
  EXPECT_EQ(filter, "a = 1");
  filter = ComposeFilter(filter, "b > 2", TFilterJoin::And);
  filter = ComposeFilter(filter, "c LIKE 'x%'", TFilterJoin::Or);
  EXPECT_EQ(filter, "a = 1 and b > 2 or c LIKE 'x%'");
}

TEST(FilterCondition, TypeNamesMapBackToTypes) {
  for (const std::string& name : FilterTypeNames())
    EXPECT_NE(FilterTypeFromName(name), TFilterType::None) << name;
  EXPECT_EQ(FilterTypeFromName("Float"), TFilterType::Float);
  EXPECT_EQ(FilterTypeFromName(""), TFilterType::None);
}

}  // namespace
}  // namespace lomarin::dataview
