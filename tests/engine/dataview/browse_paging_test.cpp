#include <gtest/gtest.h>

#include <stdexcept>

#include "engine/dataview/browse_sql.h"
#include "engine/dataview/limit_paging.h"

namespace lomarin::dataview {
namespace {

struct Hints {
  std::string first, prior, next, last;
  bool firstOn, priorOn, nextOn, lastOn;
  bool operator==(const Hints&) const = default;
};

Hints hintsOf(const TLimitPaging& p) {
  return {p.FirstHint(),    p.PriorHint(),    p.NextHint(),    p.LastHint(),
          p.FirstEnabled(), p.PriorEnabled(), p.NextEnabled(), p.LastEnabled()};
}

std::ostream& operator<<(std::ostream& os, const Hints& h) {
  return os << h.first << "/" << h.prior << "/" << h.next << "/" << h.last << " " << h.firstOn << h.priorOn
            << h.nextOn << h.lastOn;
}

TEST(LimitPaging, WalksA250RowTableForwardAndBack) {
  TLimitPaging p;
  p.Start(100, 250);
  EXPECT_EQ(p.LastPageStart(), 200);
  EXPECT_EQ(hintsOf(p), (Hints{"LIMIT 0,100", "LIMIT 0,100", "LIMIT 100,100", "LIMIT 200,100", false, false,
                               true, true}));

  EXPECT_EQ(p.Next(), "LIMIT 100,100");
  EXPECT_EQ(p.PageEnd(), 200);
  EXPECT_EQ(hintsOf(p),
            (Hints{"LIMIT 0,100", "LIMIT 0,100", "LIMIT 200,100", "LIMIT 200,100", true, true, true, true}));

  EXPECT_EQ(p.Next(), "LIMIT 200,100");
  EXPECT_EQ(p.PrevPageStart(), 100);
  EXPECT_EQ(hintsOf(p), (Hints{"LIMIT 0,100", "LIMIT 100,100", "LIMIT 300,100", "LIMIT 200,100", true, true,
                               false, false}));

  EXPECT_EQ(p.Prior(), "LIMIT 100,100");
  EXPECT_EQ(p.PageEnd(), 200);
  EXPECT_EQ(p.PrevPageStart(), 0);
  EXPECT_EQ(hintsOf(p),
            (Hints{"LIMIT 0,100", "LIMIT 0,100", "LIMIT 200,100", "LIMIT 200,100", true, true, true, true}));

  EXPECT_EQ(p.First(), "LIMIT 0,100");
  EXPECT_EQ(hintsOf(p), (Hints{"LIMIT 0,100", "LIMIT 0,100", "LIMIT 100,100", "LIMIT 200,100", false, false,
                               true, true}));
}

TEST(LimitPaging, LastThenPriorUsesTheOldPreviousStart) {
  TLimitPaging p;
  p.Start(100, 250);
  p.Next();
  p.Next();  // previous start is now 100
  p.First();
  EXPECT_EQ(p.Last(), "LIMIT 200,100");
  EXPECT_EQ(p.PageEnd(), 300);
  EXPECT_FALSE(p.NextEnabled());
  EXPECT_FALSE(p.LastEnabled());
  // The step after "last" goes back to the start "next" left behind, not to the page before last.
  EXPECT_EQ(p.Prior(), "LIMIT 100,100");
  EXPECT_EQ(p.PageEnd(), 200);
}

TEST(LimitPaging, ExactMultipleEndsOnAnEmptyLastPage) {
  TLimitPaging p;
  p.Start(100, 200);
  EXPECT_EQ(p.LastPageStart(), 200);
  EXPECT_EQ(p.Last(), "LIMIT 200,100");
  EXPECT_FALSE(p.NextEnabled());
  p.Start(100, 0);
  EXPECT_EQ(p.LastPageStart(), 0);
  EXPECT_FALSE(p.NextEnabled());
}

TEST(LimitPaging, PageSizeMustBeAPositiveWholeNumber) {
  EXPECT_EQ(ParsePageSize("25"), 25);
  for (const char* bad : {"0", "", "abc", "10x", "-5"})
    EXPECT_THROW(ParsePageSize(bad), std::invalid_argument) << bad;
  TLimitPaging p;
  EXPECT_THROW(p.Start(0, 10), std::invalid_argument);
}

TEST(BrowseSQL, NamesCaptionsAndFixedStatements) {
  EXPECT_EQ(TableWindowName("shop", "orders", "shop"), "`orders`");
  EXPECT_EQ(TableWindowName("shop", "or`ders", "other"), "`shop`.`or``ders`");
  EXPECT_EQ(TableWindowCaption("`shop`.`Größe_x`", false), "TABLE [ `SHOP`.`GRößE_X` ]");
  EXPECT_EQ(TableWindowCaption("`v`", true), "VIEW [ `V` ]");
  EXPECT_EQ(RowCountSQL("`t`"), "Select count(*)  From `t`");
  EXPECT_EQ(DistinctValuesSQL("city", "`t`"), "Select DISTINCT city From `t`");
  EXPECT_EQ(ValueCondition("ci`ty", "'O\\'Hare'"), "`ci``ty` = 'O\\'Hare'");
  EXPECT_EQ(ValueCondition("city", "NULL"), "`city` IS NULL");
}

TEST(BrowseSQL, LimitLineIsReplacedWhereverLimitAppears) {
  EXPECT_EQ(ReplaceLimitLine("select * from `t`", "LIMIT 0,100"), "select * from `t`\nLIMIT 0,100");
  EXPECT_EQ(ReplaceLimitLine("select * from `t`\nLIMIT 0,100", "LIMIT 100,100"),
            "select * from `t`\nLIMIT 100,100");
  // A plain substring test: a column called LIMIT_X takes the clause too.
  EXPECT_EQ(ReplaceLimitLine("select LIMIT_X\nfrom `t`", "LIMIT 0,5"), "LIMIT 0,5\nfrom `t`");
  EXPECT_EQ(ReplaceLimitLine("select * from `t`\nlimit 1", "LIMIT 0,5"),
            "select * from `t`\nlimit 1\nLIMIT 0,5");
  EXPECT_EQ(ReplaceLimitLine("select * from `t`\nLIMIT 0,100", ""), "select * from `t`\n");
}

TEST(BrowseSQL, FilterTakesTheSecondLineAndKeepsTheLimitLast) {
  const std::string paged = "select * from `t`\nLIMIT 0,100";
  EXPECT_EQ(ApplyWhereLine(paged, WhereLineFor("a = 1"), true, "LIMIT 0,100"),
            "select * from `t`\n where  a = 1\nLIMIT 0,100");
  EXPECT_EQ(
      ApplyWhereLine("select * from `t`\n where  a = 1\nLIMIT 0,100", WhereLineFor(""), true, "LIMIT 0,100"),
      "select * from `t`\n\nLIMIT 0,100");
  EXPECT_EQ(ApplyWhereLine("select * from `t`", WhereLineFor("b like 'x%'"), false, ""),
            "select * from `t`\n where  b like 'x%'");
}

TEST(BrowseSQL, OrderByGoesBeforeTheLimitLineAndLeavesRoomForTheFilter) {
  EXPECT_EQ(OrderByLine({{"name", false}, {"a`b", true}}), "order by `name` ASC, `a``b` DESC");
  EXPECT_EQ(OrderByLine({}), "");
  const std::string sorted = PlaceOrderBy("select * from `t`\nLIMIT 0,100", "order by `x` ASC");
  EXPECT_EQ(sorted, "select * from `t`\n\norder by `x` ASC\nLIMIT 0,100");
  EXPECT_EQ(PlaceOrderBy(sorted, "order by `y` DESC"), "select * from `t`\n\norder by `y` DESC\nLIMIT 0,100");
  EXPECT_EQ(PlaceOrderBy(sorted, ""), "select * from `t`\n\nLIMIT 0,100");
  EXPECT_EQ(PlaceOrderBy("select * from `t`", "order by `x` ASC"), "select * from `t`\n\norder by `x` ASC");
  // A filter applied after the sort replaces only the empty slot.
  EXPECT_EQ(ApplyWhereLine(sorted, WhereLineFor("a > 2"), true, "LIMIT 0,100"),
            "select * from `t`\n where  a > 2\norder by `x` ASC\nLIMIT 0,100");
}

}  // namespace
}  // namespace lomarin::dataview
