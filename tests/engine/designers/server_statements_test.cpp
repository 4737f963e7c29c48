// The builders' statements as the server takes them, read back from the server.
#include <gtest/gtest.h>

#include "designer_rows.h"
#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/designers/alter_column.h"
#include "engine/designers/constraint_manager.h"
#include "engine/designers/create_table.h"
#include "engine/designers/database_dialogs.h"
#include "engine/designers/index_manager.h"
#include "engine/sqleditor/script_services.h"
#include "test_server.h"

namespace lomarin::designers {
namespace {

constexpr const char* kDb = "designers_engine";

class DesignerStatements : public ::testing::Test {
 protected:
  void SetUp() override {
    test::sideExec(std::string("DROP DATABASE IF EXISTS ") + kDb);
    session = test::connect(kDb);
  }
  void TearDown() override { test::sideExec(std::string("DROP DATABASE IF EXISTS ") + kDb); }

  void exec(const std::string& sql) {
    ASSERT_TRUE(ExecSQLText(*session, sql, [&](const ServerError& e) {
      ADD_FAILURE() << e.message() << "\n" << sql;
    }));
  }
  std::string createText(const std::string& table) {
    TMyQuery query(*session);
    query.SQL = "show create table " + table;
    query.Open();
    query.Next();
    return std::string(query.Value(1));
  }

  std::unique_ptr<TMyConnection> session;
  const explorer::ValueEscaper escape = [this](std::string_view value) { return EscapeString(*session, value); };
};

TEST_F(DesignerStatements, DesignedTablesWithKeysIndexForeignKeyAndPartitions) {
  TTableColumnRow id = column("id", "int");
  id.Key = id.Mandatory = id.AutoIncrement = "Y";
  TTableColumnRow name = column("name", "varchar");
  name.Lenght = "40";
  name.Index = "Y";
  name.Default = "nobody";
  TCreateTableState parent = table({id, name}, "InnoDB", kDb, "customers");
  exec(BuildCreateTableSql(parent, session->ServerVersionNumber(), escape));

  TCreateTableState child = parent;
  child.Name = "orders";
  child.Comment = "kept";
  TTableColumnRow cid = column("cid", "int");
  cid.Index = "Y";
  cid.ForeignKey = BuildForeignKeyClause({"cid", "customers", "id", "DELETE", "CASCADE"});
  TTableColumnRow flags = column("flags", "set");
  flags.ExtraValues = "('a','b')";
  child.Rows = {id, cid, flags};
  exec(BuildCreateTableSql(child, session->ServerVersionNumber(), escape));
  const std::string orders = createText("orders");
  EXPECT_NE(orders.find("`flags` set('a','b')"), std::string::npos) << orders;
  EXPECT_NE(orders.find("PRIMARY KEY (`id`)"), std::string::npos) << orders;
  EXPECT_NE(orders.find("KEY `cid` (`cid`)"), std::string::npos) << orders;
  EXPECT_NE(orders.find("FOREIGN KEY (`cid`) REFERENCES `customers` (`id`) ON DELETE CASCADE"),
            std::string::npos)
      << orders;
  EXPECT_NE(orders.find("COMMENT='kept'"), std::string::npos) << orders;

  TCreateTableState parted = table({id}, "MyISAM", kDb, "parted");
  parted.PartitionType = TPartitionType::Hash;
  parted.Expression = "id";
  parted.PartitionCount = 3;
  exec(BuildCreateTableSql(parted, session->ServerVersionNumber(), escape));
  EXPECT_NE(createText("parted").find("PARTITION BY HASH (`id`)\nPARTITIONS 3"), std::string::npos)
      << createText("parted");
}

TEST_F(DesignerStatements, ColumnsAddedChangedAndModified) {
  exec("CREATE TABLE t (id INT PRIMARY KEY, old INT, e ENUM('x','y'))");
  TAlterColumnState add = alterColumn("n", "varchar");
  add.Length = "10";
  add.Default = "'dflt'";
  add.NotNull = true;
  exec(BuildAddColumnSql(add, escape));
  TAlterColumnState change = alterColumn("renamed", "bigint");
  change.PresentName = "old";
  change.Unsigned = true;
  exec(BuildChangeColumnSql(change, escape));
  TAlterColumnState modify = alterColumn("", "enum");
  modify.PresentName = "e";
  modify.Values = "x,y,z";
  modify.Default = "z";
  modify.NotNull = true;
  exec(BuildChangeColumnSql(modify, escape));
  const std::string created = createText("t");
  EXPECT_EQ(created.substr(0, created.find(") ENGINE")),
            "CREATE TABLE `t` (\n  `id` int(11) NOT NULL,\n  `n` varchar(10) NOT NULL DEFAULT 'dflt',\n"
            "  `renamed` bigint(20) unsigned DEFAULT NULL,\n  `e` enum('x','y','z') NOT NULL DEFAULT 'z',\n"
            "  PRIMARY KEY (`id`)\n");
}

// A user's default, comment and enum items reach the server as typed, whatever the session's
// escaping rules.
TEST_F(DesignerStatements, QuotesBackslashesAndLineBreaksInTextsArriveExactly) {
  const std::string text = "it's a \\ path\nand 'more'";
  for (const std::string mode : {"", "NO_BACKSLASH_ESCAPES"}) {
    SCOPED_TRACE(mode);
    exec("SET SESSION sql_mode = '" + mode + "'");
    exec("DROP TABLE IF EXISTS t");
    TTableColumnRow id = column("id", "int");
    id.Key = id.Mandatory = "Y";
    TTableColumnRow note = column("note", "varchar");
    note.Lenght = "60";
    note.Default = text;
    TCreateTableState state = table({id, note}, "InnoDB", kDb);
    state.Comment = text;
    exec(BuildCreateTableSql(state, session->ServerVersionNumber(), escape));
    TAlterColumnState kind = alterColumn("kind", "enum");
    kind.Values = "o'clock,back\\slash";
    kind.Default = "o'clock";
    kind.After = "note";
    exec(BuildAddColumnSql(kind, escape));
    exec("INSERT INTO t (id) VALUES (1)");
    EXPECT_EQ(test::scalar(*session, "SELECT note FROM t"), text);
    EXPECT_EQ(test::scalar(*session, "SELECT kind FROM t"), "o'clock");
    EXPECT_EQ(test::scalar(*session,
                           "SELECT table_comment FROM information_schema.tables WHERE table_schema = "
                           "DATABASE() AND table_name = 't'"),
              text);
    EXPECT_EQ(test::scalar(*session,
                           "SELECT column_type FROM information_schema.columns WHERE table_schema = "
                           "DATABASE() AND table_name = 't' AND column_name = 'kind'"),
              "enum('o''clock','back\\\\slash')");
  }
}

TEST_F(DesignerStatements, IndexesAndConstraintsAddedAndDropped) {
  exec("CREATE TABLE p (id INT NOT NULL, code VARCHAR(5), body TEXT, g POINT NOT NULL) ENGINE=InnoDB");
  exec("CREATE TABLE c (id INT PRIMARY KEY, pid INT) ENGINE=InnoDB");
  for (int kind = 0; kind < 4; ++kind) {
    const std::vector<std::vector<std::string>> columns = {{"id", "code"}, {"code"}, {"body"}, {"g"}};
    exec(BuildCreateIndexSql({kind, "ix" + std::to_string(kind), "p", columns[kind]}));
  }
  const std::string indexed = createText("p");
  EXPECT_NE(indexed.find("KEY `ix0` (`id`,`code`)"), std::string::npos) << indexed;
  EXPECT_NE(indexed.find("UNIQUE KEY `ix1` (`code`)"), std::string::npos) << indexed;
  EXPECT_NE(indexed.find("FULLTEXT KEY `ix2` (`body`)"), std::string::npos) << indexed;
  EXPECT_NE(indexed.find("SPATIAL KEY `ix3` (`g`)"), std::string::npos) << indexed;
  for (int kind = 0; kind < 4; ++kind) exec(BuildDropIndexSql("ix" + std::to_string(kind), kDb, "p"));
  EXPECT_EQ(createText("p").find("KEY"), std::string::npos);

  TAddConstraintState key;
  key.Database = kDb;
  key.Table = "p";
  key.Columns = {"id"};
  ASSERT_TRUE(ExecScriptText(*session, BuildAddConstraintSql(key, true)));
  key.Kind = TConstraintKind::UniqueKey;
  key.Columns = {"code"};
  ASSERT_TRUE(ExecScriptText(*session, BuildAddConstraintSql(key, true)));
  key.Kind = TConstraintKind::ForeignKey;
  key.Columns = {"id"};
  key.Refers = "c";
  key.ReferedColumn = "pid";
  key.OnDelete = "set null";
  ASSERT_TRUE(ExecScriptText(*session, BuildAddConstraintSql(key, false)));
  EXPECT_NE(createText("c").find("KEY `pid` (`pid`)"), std::string::npos);

  std::vector<TConstraintRow> rows = ConstraintsForDrop(createText("p"));
  const std::vector<TConstraintRow> childRows = ConstraintsForDrop(createText("c"));
  ASSERT_EQ(rows.size(), 2u);
  ASSERT_EQ(childRows.size(), 2u);
  EXPECT_EQ(childRows[1].Text, "CONSTRAINT `c_ibfk_1` FOREIGN KEY (`pid`) REFERENCES `p`");
  exec(BuildDropConstraintSql(childRows[1], kDb, "c"));
  exec(BuildDropConstraintSql(rows[0], kDb, "p"));
  EXPECT_EQ(ConstraintsForDrop(createText("p")).size(), 1u);
  EXPECT_EQ(ConstraintsForDrop(createText("c")).size(), 1u);
}

TEST_F(DesignerStatements, TablesRenamedAndDatabasesCreatedAndDropped) {
  exec("CREATE TABLE a (id INT)");
  exec(BuildRenameTableSql(kDb, "a", "b"));
  EXPECT_EQ(test::scalar(*session, "show tables"), "b");
  test::sideExec("DROP DATABASE IF EXISTS `designers-new`");
  exec(BuildCreateDatabaseSql("designers-new"));
  EXPECT_EQ(test::scalar(*session, "show databases like 'designers-new'"), "designers-new");
  exec(BuildDropDatabaseSql("designers-new"));
  EXPECT_EQ(
      test::scalar(*session,
                   "select count(*) from information_schema.schemata where schema_name = 'designers-new'"),
      "0");
}

}  // namespace
}  // namespace lomarin::designers
