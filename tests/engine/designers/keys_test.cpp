#include <gtest/gtest.h>

#include "engine/designers/constraint_manager.h"
#include "engine/designers/database_dialogs.h"
#include "engine/designers/index_manager.h"

namespace lomarin::designers {
namespace {

TEST(IndexManager, CreateIndexHeadsAndColumnList) {
  TCreateIndexState state{1, "ix_a", "t", {"a", "b"}};
  EXPECT_EQ(BuildCreateIndexSql(state), "CREATE UNIQUE INDEX ix_a  on t(a,b)");
  state = {0, "ix", "t", {"a"}};
  EXPECT_EQ(BuildCreateIndexSql(state), "CREATE INDEX ix  on t(a)");
  state.Kind = 2;
  EXPECT_EQ(BuildCreateIndexSql(state), "CREATE FULLTEXT INDEX ix  on t(a)");
  state.Kind = 3;
  EXPECT_EQ(BuildCreateIndexSql(state), "CREATE SPATIAL INDEX ix  on t(a)");
  EXPECT_EQ(IndexCreatedMessage("ix"), "Index ix created ");
}

TEST(IndexManager, NameAndColumnAreRequired) {
  EXPECT_EQ(CheckCreateIndex({0, "", "t", {"a"}}), "Missing index name.");
  EXPECT_EQ(CheckCreateIndex({0, "ix", "t", {}}), "There is not an select column.");
  EXPECT_EQ(CheckCreateIndex({0, "ix", "t", {"a"}}), "");
}

TEST(IndexManager, DropListHasEachSecondaryIndexOnce) {
  const std::vector<TIndexRow> rows = {
      {"PRIMARY", "1", "id"}, {"PRIMARY", "2", "k"}, {"ix", "1", "a"}, {"ix", "2", "b"}, {"u", "1", "c"}};
  EXPECT_EQ(IndexesForDrop(rows), (std::vector<std::string>{"ix", "u"}));
  EXPECT_EQ(BuildDropIndexSql("ix", "d", "t"), " DROP INDEX ix ON d.t");
}

TEST(KeyLists, DatabaseInBackQuotes) {
  EXPECT_EQ(ShowTableStatusSql("my`db"), "show table status  from `my``db`");
  EXPECT_EQ(ShowTableFieldsSql("d", "t"), "show fields FROM `d`.t");
  EXPECT_EQ(ShowIndexSql("d", "t"), "show index from `d`.t");
  EXPECT_EQ(ShowCreateTableSql("d", "t"), "show create table `d`.t");
}

TEST(ConstraintManager, HyphenDatabaseQuotedForUniqueAndForeignButNotPrimary) {
  TAddConstraintState state;
  state.Database = "my-db";
  state.Table = "t";
  state.Columns = {"a"};
  EXPECT_EQ(BuildAddConstraintSql(state, true), "ALTER TABLE my-db.t ADD PRIMARY KEY ( a);");
  state.Kind = TConstraintKind::UniqueKey;
  state.Columns = {"a", "b"};
  EXPECT_EQ(BuildAddConstraintSql(state, true), "ALTER TABLE `my-db`.t ADD UNIQUE ( a,b);");
  state.Database = "d";
  EXPECT_EQ(BuildAddConstraintSql(state, true), "ALTER TABLE d.t ADD UNIQUE ( a,b);");
}

TEST(ConstraintManager, ForeignKeyOnTheRefersTableWithItsIndexFirstWhenMissing) {
  TAddConstraintState state;
  state.Kind = TConstraintKind::ForeignKey;
  state.Database = "my-db";
  state.Table = "customers";
  state.Columns = {"id"};
  state.Refers = "orders";
  state.ReferedColumn = "cid";
  state.OnDelete = "cascade";
  state.OnUpdate = "set null";
  EXPECT_EQ(BuildAddConstraintSql(state, false),
            "CREATE INDEX cid on orders(cid);\rALTER TABLE `my-db`.orders ADD FOREIGN KEY ( cid)  REFERENCES "
            "`my-db`.customers (id) ON DELETE cascade ON UPDATE set null;");
  state.Database = "d";
  state.OnDelete.clear();
  EXPECT_EQ(BuildAddConstraintSql(state, true),
            "ALTER TABLE d.orders ADD FOREIGN KEY ( cid)  REFERENCES d.customers (id) ON UPDATE set null;");
  EXPECT_TRUE(ColumnHasIndex({{"PRIMARY", "1", "id"}, {"k", "1", "CID"}}, "cid"));
  EXPECT_FALSE(ColumnHasIndex({{"PRIMARY", "1", "id"}}, "cid"));
}

const char* const kCreateText =
    "CREATE TABLE `orders` (\n"
    "  `id` int(11) NOT NULL,\n"
    "  `cid` int(11) DEFAULT NULL,\n"
    "  `code` varchar(5) DEFAULT NULL,\n"
    "  `a` int(11) DEFAULT NULL,\n"
    "  PRIMARY KEY (`id`,`code`),\n"
    "  UNIQUE KEY `code` (`code`),\n"
    "  UNIQUE KEY `pair` (`a`,`cid`),\n"
    "  KEY `cid` (`cid`),\n"
    "  CONSTRAINT `orders_ibfk_1` FOREIGN KEY (`cid`) REFERENCES `customers` (`id`) ON DELETE CASCADE,\n"
    "  CONSTRAINT `fk-2` FOREIGN KEY (`a`) REFERENCES `my-db`.`other` (`id`)\n"
    ") ENGINE=InnoDB DEFAULT CHARSET=latin1";

TEST(ConstraintManager, DropListFromTheCreateText) {
  const std::vector<TConstraintRow> rows = ConstraintsForDrop(kCreateText);
  ASSERT_EQ(rows.size(), 5u);
  EXPECT_EQ(rows[0].Text, "PRIMARY KEY (`id`,`code`)");
  EXPECT_EQ(rows[0].Kind, "PRIMARY");
  EXPECT_EQ(rows[1].Text, "UNIQUE KEY `code` (`code`)");
  EXPECT_EQ(rows[2].Text, "UNIQUE KEY `pair` (`a`,`cid`)");
  EXPECT_EQ(rows[2].Kind, "UNIQUE KEY");
  EXPECT_EQ(rows[3].Text, "CONSTRAINT `orders_ibfk_1` FOREIGN KEY (`cid`) REFERENCES `customers`");
  EXPECT_EQ(rows[3].Kind, "FOREING KEY");
  EXPECT_EQ(rows[4].Text, "CONSTRAINT `fk-2` FOREIGN KEY (`a`) REFERENCES `my-db`");

  EXPECT_EQ(BuildDropConstraintSql(rows[0], "d", "orders"), "ALTER TABLE  `d`.orders DROP PRIMARY KEY ");
  EXPECT_EQ(BuildDropConstraintSql(rows[1], "d", "orders"), "");
  EXPECT_EQ(BuildDropConstraintSql(rows[3], "d", "orders"),
            " ALTER TABLE `d`.orders DROP FOREIGN KEY orders_ibfk_1");
  EXPECT_EQ(BuildDropConstraintSql(rows[4], "d", "orders"), " ALTER TABLE `d`.orders DROP FOREIGN KEY fk-2");
}

TEST(DatabaseDialogs, Statements) {
  EXPECT_EQ(ShowDatabasesSql(), "Show databases ");
  EXPECT_EQ(ShowTablesSql(""), "show tables ");
  EXPECT_EQ(ShowTablesSql("d"), "show tables  from d");
  EXPECT_EQ(BuildRenameTableSql("d", "a", "b"), "RENAME TABLE d.a TO d.b ");
  EXPECT_EQ(BuildCreateDatabaseSql("new-db"), "create database `new-db`");
  EXPECT_EQ(BuildDropDatabaseSql("o`dd-db"), "drop database `o``dd-db`");
}

}  // namespace
}  // namespace lomarin::designers
