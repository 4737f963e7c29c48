#include "engine/app/explorer_nodes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/connect/server_version.h"
#include "test_escaper.h"

namespace lomarin::explorer {
namespace {

std::vector<std::string> foldersFor(const std::string& version) {
  return databaseFolders(ServerMajorVersion(version), ServerVersionNumber(version));
}

TEST(ExplorerNodes, FoldersFollowTheServerVersion) {
  EXPECT_EQ(foldersFor("4.1.22"), (std::vector<std::string>{"Tables", "UDFs"}));
  EXPECT_EQ(foldersFor("5.0.96"),
            (std::vector<std::string>{"Tables", "Views", "Procedures", "Functions", "Triggers", "UDFs"}));
  const std::vector<std::string> all{"Tables", "Views", "Procedures", "Functions", "Triggers", "Events", "UDFs"};
  EXPECT_EQ(foldersFor("5.1.73"), all);
  EXPECT_EQ(foldersFor("5.5.5-10.11.6-MariaDB"), all);
}

TEST(ExplorerNodes, RootAndDatabaseLevel) {
  EXPECT_EQ(rootText("127.0.0.1"), "MySQL Server[127.0.0.1]");
  EXPECT_EQ(showDatabasesSql("", test::marked), "Show databases ");
  EXPECT_EQ(showDatabasesSql("'shop'", test::marked), "Show databases like '<shop>'");
  EXPECT_EQ(showDatabasesSql("'o'brien'", test::marked), "Show databases like '<o'brien>'");
  EXPECT_EQ(showDatabasesSql("''", test::marked), "Show databases like '<>'");

  const auto entries = databaseEntries({"a", "shop", "z"}, "shop", "shop");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].imageIndex, image::Database);
  EXPECT_EQ(entries[1].imageIndex, image::CurrentDatabase);
  // Without rights to list databases the account's own one is still shown.
  const auto alone = databaseEntries({}, "", "shop");
  ASSERT_EQ(alone.size(), 1u);
  EXPECT_EQ(alone[0].name, "shop");
  EXPECT_EQ(alone[0].imageIndex, image::Database);
  EXPECT_TRUE(databaseEntries({}, "", "").empty());
}

TEST(ExplorerNodes, FolderStatements) {
  const auto sql = [](const std::string& folder, int major = 5, const std::string& filter = "") {
    return folderStatement({folder, "Shop`DB", "order items"}, major, filter, test::marked)
        .value_or("<none>");
  };
  EXPECT_EQ(sql("Tables", 4), "show tables  from `Shop``DB`");
  EXPECT_EQ(sql("Tables"), "show full tables  from `Shop``DB`");
  EXPECT_EQ(sql("Tables", 5, "ord%"), "show full tables  from `Shop``DB` like '<ord%>'");
  EXPECT_EQ(sql("Views", 5, "v_%"), "show full tables  from `Shop``DB` like '<v_%>'");
  EXPECT_EQ(sql("Procedures"), "SHOW PROCEDURE STATUS where lower(db) = '<shop`db>'");
  EXPECT_EQ(sql("Functions"), "SHOW FUNCTION STATUS where lower(db) = '<shop`db>'");
  EXPECT_EQ(sql("Triggers"), "SHOW TRIGGERS FROM `Shop``DB`");
  EXPECT_EQ(sql("Events"), "show events from `Shop``DB`");
  EXPECT_EQ(sql("UDFs"), "SELECT * FROM mysql.func ");
  EXPECT_EQ(sql("Users"), " SELECT distinct user FROM mysql.user WHERE LENGTH(user)> 0");
  EXPECT_EQ(sql("Index"), "show index from `order items` from `Shop``DB`");
  EXPECT_EQ(sql("Columns"), "DESC `Shop``DB`.`order items`");
  EXPECT_EQ(sql("orders"), "<none>");
}

TEST(ExplorerNodes, ChildrenFromResults) {
  const ResultTable tables{{"Tables_in_shop", "Table_type"},
                           {{"orders", "BASE TABLE"}, {"v_totals", "VIEW"}, {"log", "SYSTEM VERSIONED"}}};
  const auto names = [](const std::vector<ChildNode>& nodes) {
    std::vector<std::pair<std::string, int>> out;
    for (const auto& n : nodes) out.emplace_back(n.text, n.imageIndex);
    return out;
  };
  using Pairs = std::vector<std::pair<std::string, int>>;
  EXPECT_EQ(names(folderChildren("Tables", tables)), (Pairs{{"orders", 24}, {"log", 24}}));
  EXPECT_EQ(names(folderChildren("Views", tables)), (Pairs{{"v_totals", 151}}));
  EXPECT_EQ(names(folderChildren("Tables", {{"Tables_in_shop"}, {{"orders"}}})), (Pairs{{"orders", 24}}));

  const ResultTable index{{"Table", "Non_unique", "Key_name", "Seq_in_index"},
                          {{"t", "0", "PRIMARY", "1"}, {"t", "1", "ix_ab", "1"}, {"t", "1", "ix_ab", "2"}}};
  EXPECT_EQ(names(folderChildren("Index", index)), (Pairs{{"PRIMARY", 41}, {"ix_ab", 130}}));

  const ResultTable desc{{"Field", "Type", "Null", "Key"},
                         {{"id", "int", "NO", "PRI"}, {"cust", "int", "YES", "MUL"}, {"note", "text", "YES", "UNI"}}};
  EXPECT_EQ(names(folderChildren("Columns", desc)), (Pairs{{"id", 41}, {"cust", 130}, {"note", 39}}));

  EXPECT_EQ(names(folderChildren("Triggers", {{"Trigger", "Event"}, {{"trg", "UPDATE"}}})), (Pairs{{"trg", 171}}));
  EXPECT_EQ(names(folderChildren("Events", {{"Db", "Name"}, {{"d", "ev"}}})), (Pairs{{"ev", 292}}));
  EXPECT_EQ(names(folderChildren("UDFs", {{"name", "ret"}, {{"f", "0"}}})), (Pairs{{"f", 115}}));
  EXPECT_EQ(names(folderChildren("Users", {{"user"}, {{"root"}}})), (Pairs{{"root", 37}}));
  EXPECT_EQ(names(folderChildren("Functions", {{"Db", "Name"}, {{"d", "fn"}}})), (Pairs{{"fn", 114}}));
}

TEST(ExplorerNodes, KindsAndRefresh) {
  EXPECT_EQ(kindOf(0, 0, "MySQL Server[h]"), NodeKind::Server);
  EXPECT_EQ(kindOf(1, 138, "shop"), NodeKind::CurrentDatabase);
  EXPECT_EQ(kindOf(1, 36, "Users"), NodeKind::UsersFolder);
  EXPECT_EQ(kindOf(2, 37, "root"), NodeKind::User);
  EXPECT_EQ(kindOf(2, 8, "Views"), NodeKind::ObjectFolder);
  EXPECT_EQ(kindOf(3, 151, "v"), NodeKind::View);
  EXPECT_EQ(kindOf(3, 292, "ev"), NodeKind::Event);
  EXPECT_EQ(kindOf(4, 8, "Index"), NodeKind::TableSubFolder);
  EXPECT_EQ(kindOf(5, 41, "PRIMARY", "Index"), NodeKind::PrimaryIndex);
  EXPECT_EQ(kindOf(5, 130, "ix", "Index"), NodeKind::OtherIndex);
  EXPECT_EQ(kindOf(5, 41, "id", "Columns"), NodeKind::PrimaryKeyColumn);
  EXPECT_EQ(kindOf(5, 130, "c", "Columns"), NodeKind::MultipleKeyColumn);
  EXPECT_EQ(kindOf(5, 39, "c", "Columns"), NodeKind::PlainColumn);
  EXPECT_EQ(kindOf(3, 24, "/-1"), NodeKind::Placeholder);
  EXPECT_EQ(kindOf(3, 1, "x"), NodeKind::Unknown);

  EXPECT_EQ(refreshActionFor(0, 0, 0), RefreshAction::RebuildRoot);
  EXPECT_EQ(refreshActionFor(2, 8, kFolderTag), RefreshAction::RefetchFolder);
  EXPECT_EQ(refreshActionFor(1, 36, kFolderTag), RefreshAction::RefetchFolder);
  EXPECT_EQ(refreshActionFor(1, 138, 0), RefreshAction::RebuildDatabase);
  EXPECT_EQ(refreshActionFor(3, 24, kObjectTag), RefreshAction::Nothing);
}

}  // namespace
}  // namespace lomarin::explorer
