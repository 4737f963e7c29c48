#include "engine/designers/alter_column.h"

#include <gtest/gtest.h>

#include "designer_rows.h"
#include "test_escaper.h"

namespace lomarin::designers {
namespace {

TEST(AddColumn, DefaultIsWrittenAsTypedExceptForEnumAndSet) {
  TAlterColumnState n = alterColumn("n", "int");
  n.Length = "11";
  n.Default = "5";
  n.NotNull = n.Unsigned = true;
  EXPECT_EQ(BuildAddColumnSql(n, test::backslashEscaped),
            "Alter table t Add n int(11)  UNSIGNED  Default 5 Not Null  After id");
  TAlterColumnState s = alterColumn("s", "enum");
  s.Values = "a,b c,it's";
  s.Default = "it's";
  EXPECT_EQ(BuildAddColumnSql(s, test::backslashEscaped),
            R"(Alter table t Add s enum('a','b c','it\'s')   Default 'it\'s'   After id)");
}

TEST(AddColumn, WithoutDefaultTheOtherTemplate) {
  TAlterColumnState v = alterColumn("v", "varchar");
  v.Length = "20";
  EXPECT_EQ(BuildAddColumnSql(v, test::backslashEscaped), "Alter table t Add v varchar(20)     After id");
  TAlterColumnState z = alterColumn("z", "int");
  z.Unsigned = z.Zerofill = z.AutoIncrement = true;
  EXPECT_EQ(BuildAddColumnSql(z, test::backslashEscaped),
            "Alter table t Add z int  UNSIGNED ZEROFILL   AUTO_INCREMENT After id");
}

TEST(ChangeColumn, RenamesAndRetypesInOneChange) {
  TAlterColumnState c = alterColumn("new", "bigint");
  c.PresentName = "old";
  c.Length = "20";
  c.NotNull = c.AutoIncrement = true;
  EXPECT_EQ(BuildChangeColumnSql(c, test::backslashEscaped),
            "Alter table t change `old`  `new` bigint(20)   Not Null AUTO_INCREMENT ");
  c.Default = "'x'";
  c.AutoIncrement = false;
  c.PresentName = "o`ld";
  EXPECT_EQ(BuildChangeColumnSql(c, test::backslashEscaped),
            "Alter table t change `o``ld`  `new` bigint(20)   Default 'x' Not Null  ");
}

TEST(ChangeColumn, EnumAndSetAreModifiedAndKeepTheirName) {
  TAlterColumnState e = alterColumn("renamed", "enum");
  e.PresentName = "c";
  e.Values = "x,y";
  e.NotNull = true;
  e.Unsigned = true;
  // No placeholder of the template reaches the server, unsigned or not.
  EXPECT_EQ(BuildChangeColumnSql(e, test::backslashEscaped),
            "ALTER TABLE t MODIFY COLUMN `c` enum('x','y')  Not Null  ");
  TAlterColumnState s = alterColumn("c", "set");
  s.PresentName = "c";
  s.Values = "x,y";
  s.Default = "x";
  EXPECT_EQ(BuildChangeColumnSql(s, test::backslashEscaped),
            "ALTER TABLE t MODIFY COLUMN `c` set('x','y') Default 'x'   ");
}

TEST(ColumnStatements, ShowFields) {
  EXPECT_EQ(ShowFieldsSql("t"), "show fields FROM t");
  EXPECT_EQ(ShowFieldSql("t", "a", test::backslashEscaped), "show fields FROM t like 'a'");
  EXPECT_EQ(ShowFieldSql("t", "it's", test::backslashEscaped), R"(show fields FROM t like 'it\'s')");
}

TEST(ReadColumn, SplitsTheTypeText) {
  TAlterColumnState state;
  ReadColumn({"id", "int(10) unsigned zerofill", "NO", "PRI", "", "auto_increment"}, state);
  EXPECT_EQ(state.Name, "id");
  EXPECT_EQ(state.DataType, "int");
  EXPECT_EQ(state.Length, "10");
  EXPECT_TRUE(state.Unsigned && state.Zerofill && state.NotNull && state.AutoIncrement && state.Key);
  EXPECT_EQ(state.Values, "");

  ReadColumn({"e", "enum('a','b c')", "YES", "", "a", ""}, state);
  EXPECT_EQ(state.DataType, "enum");
  EXPECT_EQ(state.Values, "a,b c");
  EXPECT_EQ(state.Length, "");
  EXPECT_EQ(state.Default, "a");
  EXPECT_FALSE(state.Unsigned || state.Zerofill || state.NotNull || state.AutoIncrement || state.Key);

  ReadColumn({"n", "int unsigned", "YES", "MUL", "", ""}, state);
  EXPECT_EQ(state.DataType, "int");
  EXPECT_TRUE(state.Unsigned);
  ReadColumn({"d", "decimal(10,2)", "YES", "", "", ""}, state);
  EXPECT_EQ(state.Length, "10,2");
}

}  // namespace
}  // namespace lomarin::designers
