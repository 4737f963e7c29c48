#include "engine/designers/create_table.h"

#include <gtest/gtest.h>

#include "designer_rows.h"
#include "engine/designers/column_types.h"
#include "engine/designers/sql_param.h"
#include "test_escaper.h"

namespace lomarin::designers {
namespace {

TEST(CreateTable, KeyAndIndexAsTheDesignerWritesThem) {
  TTableColumnRow id = column("id", "int");
  id.Key = id.Mandatory = id.AutoIncrement = "Y";
  TTableColumnRow name = column("name", "varchar");
  name.Lenght = "50";
  name.Index = "Y";
  const TCreateTableState state = table({id, name}, "InnoDB");
  EXPECT_EQ(BuildCreateTableSql(state, 50, test::backslashEscaped),
            " CREATE TABLE d.t( \nid int NOT NULL  AUTO_INCREMENT , \nname varchar(50) ,  PRIMARY KEY (id),\n"
            "INDEX(name)) TYPE = InnoDB ROW_FORMAT =DEFAULT");
  // From 5.5 the server knows only ENGINE; nothing else changes.
  EXPECT_EQ(BuildCreateTableSql(state, 55, test::backslashEscaped),
            " CREATE TABLE d.t( \nid int NOT NULL  AUTO_INCREMENT , \nname varchar(50) ,  PRIMARY KEY (id),\n"
            "INDEX(name)) ENGINE = InnoDB ROW_FORMAT =DEFAULT");
}

TEST(CreateTable, WithoutPrimaryKeyTheLastCommaGoesAndIndexAndForeignKeysAreDropped) {
  TTableColumnRow a = column("a", "int");
  a.Index = "Y";
  TTableColumnRow b = column("b", "char");
  b.Lenght = "3";
  b.Default = "x";
  b.ForeignKey = " FOREIGN KEY (b) REFERENCES p (id)";
  EXPECT_EQ(BuildCreateTableSql(table({a, b}), 55, test::backslashEscaped),
            " CREATE TABLE d.t( \na int , \nb char(3) DEFAULT 'x'   )\n ENGINE = MyISAM ROW_FORMAT =DEFAULT");
}

TEST(CreateTable, PrimaryKeyWithoutIndexClosesAtOnceAndDropsForeignKeys) {
  TTableColumnRow id = column("id", "int");
  id.Key = "Y";
  TTableColumnRow c = column("c", "int");
  c.ForeignKey = " FOREIGN KEY (c) REFERENCES p (id)";
  EXPECT_EQ(BuildCreateTableSql(table({id, c}), 50, test::backslashEscaped),
            " CREATE TABLE d.t( \nid int , \nc int ,  PRIMARY KEY (id)) TYPE = MyISAM ROW_FORMAT =DEFAULT");
}

TEST(CreateTable, ForeignKeysFollowTheIndexAndKeyColumnsStayOutOfIt) {
  TTableColumnRow id = column("id", "int");
  id.Key = id.Mandatory = id.Index = "Y";
  TTableColumnRow code = column("code", "int");
  code.Key = "Y";
  TTableColumnRow cid = column("cid", "int");
  cid.Unsigned = cid.Index = "Y";
  cid.ForeignKey = " FOREIGN KEY (cid) REFERENCES customers (id) ON DELETE  CASCADE";
  TTableColumnRow pid = column("pid", "int");
  pid.Unsigned = pid.Zerofill = pid.Index = "Y";
  pid.ForeignKey = " FOREIGN KEY (pid) REFERENCES products (id)";
  TCreateTableState state = table({id, code, cid, pid}, "InnoDB");
  state.RowFormat = "DYNAMIC";
  state.Comment = "two\nlines";
  EXPECT_EQ(BuildCreateTableSql(state, 55, test::backslashEscaped),
            " CREATE TABLE d.t( \nid int NOT NULL  , \ncode int , \ncid int UNSIGNED  , \npid int UNSIGNED "
            "ZEROFILL  ,  "
            "PRIMARY KEY (id,code),\nINDEX(cid,pid) , FOREIGN KEY (cid) REFERENCES customers (id) ON DELETE  "
            "CASCADE, FOREIGN KEY (pid) REFERENCES products (id) ) ENGINE = InnoDB ROW_FORMAT =DYNAMIC "
            "COMMENT = 'two\nlines'");
}

TEST(CreateTable, EnumValuesGoBeforeTheLength) {
  TTableColumnRow s = column("s", "enum");
  s.ExtraValues = "('a','b')";
  s.Default = "a";
  EXPECT_EQ(BuildCreateTableSql(table({s}), 55, test::backslashEscaped),
            " CREATE TABLE d.t( \ns enum('a','b') DEFAULT 'a'   )\n ENGINE = MyISAM ROW_FORMAT =DEFAULT");
}

TEST(CreateTable, PartitionsOnlyFrom51) {
  TTableColumnRow id = column("id", "int");
  id.Key = "Y";
  TCreateTableState state = table({id});
  state.PartitionType = TPartitionType::Range;
  state.Expression = "id";
  state.PartitionValues = "PARTITION p0 VALUES LESS THAN (10),\nPARTITION p1 VALUES LESS THAN MAXVALUE";
  const std::string head =
      " CREATE TABLE d.t( \nid int ,  PRIMARY KEY (id)) TYPE = MyISAM ROW_FORMAT =DEFAULT";
  EXPECT_EQ(BuildCreateTableSql(state, 50, test::backslashEscaped), head);
  EXPECT_EQ(BuildCreateTableSql(state, 51, test::backslashEscaped),
            head +
                "\nPARTITION BY  RANGE  (id) (  \nPARTITION p0 VALUES LESS THAN (10),\n"
                "PARTITION p1 VALUES LESS THAN MAXVALUE)");
  state.PartitionType = TPartitionType::List;
  EXPECT_EQ(BuildCreateTableSql(state, 51, test::backslashEscaped).substr(head.size()),
            "\nPARTITION BY  LIST  (id) (  \nPARTITION p0 VALUES LESS THAN (10),\nPARTITION p1 VALUES LESS "
            "THAN MAXVALUE)");
  state.PartitionType = TPartitionType::Hash;
  state.PartitionCount = 4;
  EXPECT_EQ(BuildCreateTableSql(state, 51, test::backslashEscaped).substr(head.size()),
            "\nPARTITION BY  HASH  (id)\n PARTITIONS 4");
  state.PartitionType = TPartitionType::Key;
  EXPECT_EQ(BuildCreateTableSql(state, 51, test::backslashEscaped).substr(head.size()),
            "\nPARTITION BY  KEY  (id)\n PARTITIONS 4");
  EXPECT_FALSE(PartitionsSupported(50));
  EXPECT_TRUE(PartitionsSupported(51));
}

TEST(CreateTable, FlagsAreComparedAgainstTheOneConstant) {
  TTableColumnRow id = column("id", "int");
  id.Key = "y";
  id.Mandatory = "yes";
  EXPECT_EQ(BuildCreateTableSql(table({id}), 55, test::backslashEscaped),
            " CREATE TABLE d.t( \nid int   )\n ENGINE = MyISAM ROW_FORMAT =DEFAULT");
}

TEST(ForeignKeyClause, RuleOnlyWithBothEventAndAction) {
  TForeignKeyChoice choice{"cid", "customers", "id", "DELETE", "SET NULL "};
  EXPECT_EQ(BuildForeignKeyClause(choice),
            " FOREIGN KEY (cid) REFERENCES customers (id) ON DELETE  SET NULL ");
  choice.Rule.clear();
  EXPECT_EQ(BuildForeignKeyClause(choice), " FOREIGN KEY (cid) REFERENCES customers (id)");
}

TEST(AddColumnRow, RefusesVarcharWithoutSizeAndRepeatedNames) {
  TColumnEntry entry;
  entry.Name = "n";
  entry.DataType = "varchar";
  EXPECT_EQ(AddColumnRow({}, entry).Warning, "The varchar field most have a size !! ");
  EXPECT_FALSE(AddColumnRow({}, entry).Row);
  entry.Length = "10";
  EXPECT_EQ(AddColumnRow({column("N", "int")}, entry).Warning, "The name already exists ");
  EXPECT_TRUE(AddColumnRow({column("m", "int")}, entry).Row);
}

TEST(AddColumnRow, WritesEachCellFromItsSource) {
  TColumnEntry entry;
  entry.Name = "cid";
  entry.DataType = "enum";
  entry.ExtraValue = "'a','b'";
  entry.Default = "a";
  entry.Index = entry.Unsigned = entry.Zerofill = true;
  entry.ForeignKeyClause = " FOREIGN KEY (cid) REFERENCES c (id)";
  TTableColumnRow row = *AddColumnRow({}, entry).Row;
  EXPECT_EQ(row.ExtraValues, "('a','b')");
  EXPECT_EQ(row.Default, "a");
  EXPECT_EQ(row.Index + row.Unsigned + row.Zerofill, "YYY");
  EXPECT_EQ(row.Key + row.Mandatory + row.AutoIncrement + row.Lenght, "");
  // The clause the dialog left behind counts only while the box is checked.
  EXPECT_EQ(row.ForeignKey, "");
  entry.ForeignKey = true;
  EXPECT_EQ(AddColumnRow({}, entry).Row->ForeignKey, " FOREIGN KEY (cid) REFERENCES c (id)");
}

TEST(ColumnTypes, EnablingRules) {
  const auto designer = [](std::string_view type) {
    return ColumnTypeRules(ColumnTypeIndex(type), TColumnDialog::Designer);
  };
  EXPECT_FALSE(designer("bool").Flags);
  EXPECT_TRUE(designer("int").Flags);
  EXPECT_TRUE(designer("varchar").Length);
  EXPECT_FALSE(designer("date").Length);
  EXPECT_TRUE(designer("year").Default);
  EXPECT_FALSE(designer("timestamp").Default);
  EXPECT_TRUE(designer("datetime").Default);
  EXPECT_FALSE(designer("text").Default);
  EXPECT_FALSE(designer("enum").Default);
  EXPECT_TRUE(ColumnTypeRules(ColumnTypeIndex("enum"), TColumnDialog::AlterTable).Default);
  EXPECT_TRUE(ColumnTypeRules(ColumnTypeIndex("set"), TColumnDialog::AlterTable).Default);
  EXPECT_TRUE(designer("numeric").AutoIncrement);
  EXPECT_FALSE(designer("char").AutoIncrement);
  EXPECT_TRUE(designer("set").ExtraValue);
  EXPECT_FALSE(designer("longtext").ExtraValue);
  EXPECT_TRUE(designer("tinyint").UnsignedZerofill);
  EXPECT_FALSE(designer("bit").UnsignedZerofill);
  EXPECT_TRUE(designer("smallint").UnsignedZerofill);
  EXPECT_TRUE(designer("numeric").UnsignedZerofill);
  EXPECT_FALSE(designer("char").UnsignedZerofill);
  EXPECT_EQ(ColumnTypeIndex("VARCHAR"), ColumnTypeIndex("varchar"));
  EXPECT_EQ(ColumnTypeIndex("json"), -1);
}

TEST(ReplaceSqlParam, QuotesOnYAndReplacesInOnePass) {
  EXPECT_EQ(ReplaceSqlParam("show fields FROM &table", "table", "t", "N"), "show fields FROM t");
  EXPECT_EQ(ReplaceSqlParams("show fields FROM &table like &field", {{"table", "t"}, {"field", "a", true}}),
            "show fields FROM t like 'a'");
  // A value holding a placeholder's text is not replaced again, and unknown placeholders stay.
  EXPECT_EQ(ReplaceSqlParams("&a &b &c", {{"a", "&b"}, {"b", "x"}}), "&b x &c");
  // Names are whole words: &newfield is not &field followed by text.
  EXPECT_EQ(ReplaceSqlParams("&field &newfield", {{"field", "f"}, {"newfield", "n"}}), "f n");
}

TEST(CreateTable, DefaultAndCommentAreEscapedLiterals) {
  TTableColumnRow path = column("path", "varchar");
  path.Lenght = "20";
  path.Default = R"(C:\it's)";
  TCreateTableState state = table({path});
  state.Comment = "a 'b'";
  EXPECT_EQ(
      BuildCreateTableSql(state, 55, test::backslashEscaped),
      " CREATE TABLE d.t( \npath varchar(20) DEFAULT 'C:\\\\it\\'s'   )\n ENGINE = MyISAM ROW_FORMAT =DEFAULT"
      " COMMENT = 'a \\'b\\''");
}

}  // namespace
}  // namespace lomarin::designers
