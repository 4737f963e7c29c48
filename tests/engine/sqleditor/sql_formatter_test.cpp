#include "engine/sqleditor/sql_formatter.h"

#include <gtest/gtest.h>

namespace lomarin {
namespace {

TEST(SqlFormatter, BreaksByClauseAndIndentsItems) {
  const TFormatResult r = FormatSql(
      "select a, count(b) as n from t1 join t2 on t1.id=t2.id where a = 'x, y' and b between 1 and 2 or c is "
      "null "
      "group by a order by n desc limit 5; update t set a=1, b=2");
  EXPECT_EQ(r.ErrorLine, -1);
  EXPECT_EQ(r.Text, R"(SELECT
  a,
  COUNT(b) AS n
FROM
  t1
  JOIN t2 ON t1.id = t2.id
WHERE
  a = 'x, y'
  AND b BETWEEN 1 AND 2
  OR c IS NULL
GROUP BY
  a
ORDER BY
  n DESC
LIMIT
  5;

UPDATE
  t
SET
  a = 1,
  b = 2)");
}

TEST(SqlFormatter, SubqueriesCommentsAndSettings) {
  TFormatterSettings settings = ParseFormatterSettings(
      "<formatter><indent>4</indent><keywordCase>lower</keywordCase><breakLists>0</breakLists></formatter>");
  EXPECT_EQ(settings.Indent, 4);
  const TFormatResult r = FormatSql("SELECT a, b -- two\nFROM (SELECT a, b FROM t) x", settings);
  EXPECT_EQ(r.Text, R"(select
    a, b -- two
from
    (
        select
            a, b
        from
            t) x)");
  // Unreadable entries keep the defaults.
  settings = ParseFormatterSettings("<indent>lots</indent><keywordCase>shouting</keywordCase>");
  EXPECT_EQ(settings.Indent, 2);
  EXPECT_EQ(settings.KeywordCase, TFormatterSettings::Case::Upper);
  EXPECT_TRUE(settings.BreakLists);
}

TEST(SqlFormatter, ReportsTheLineOfTheFirstFault) {
  const TFormatResult open = FormatSql("select 1\nfrom t\nwhere (a = 1");
  EXPECT_EQ(open.ErrorLine, 3);
  EXPECT_EQ(open.Text, "select 1\nfrom t\nwhere (a = 1");
  EXPECT_EQ(FormatSql("select 1)\n").ErrorLine, 1);
  EXPECT_EQ(FormatSql("select 1,\n'open").ErrorLine, 2);
  EXPECT_EQ(FormatSql("select 1 /* open\n").ErrorLine, 1);
  EXPECT_EQ(FormatSql("").Text, "");
}

}  // namespace
}  // namespace lomarin
