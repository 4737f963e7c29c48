#include "engine/transfer/export_plan.h"

#include <gtest/gtest.h>

#include "engine/transfer/sql_text.h"
#include "test_server.h"

namespace lomarin {
namespace {

std::string plainQuote(const std::string& v) { return "'" + v + "'"; }

TEST(ExportStatements, ListFillingTexts) {
  EXPECT_EQ(exportsql::databases(), "Show databases ");
  EXPECT_EQ(exportsql::tableStatus("shop"), "show table status  from `shop`");
  EXPECT_EQ(exportsql::procedureStatus("shop", plainQuote),
            "SHOW PROCEDURE STATUS  where lower(db) = lower('shop')");
  EXPECT_EQ(exportsql::functionStatus("shop", plainQuote),
            "SHOW FUNCTION STATUS  where lower(db) = lower('shop')");
  EXPECT_EQ(exportsql::triggers("shop"), "SHOW TRIGGERS FROM shop");
  EXPECT_EQ(exportsql::triggers("my shop"), "SHOW TRIGGERS FROM `my shop`");
  EXPECT_EQ(exportsql::fields("shop", "or`ders"), "show fields FROM shop.`or``ders`");
}

TEST(ExportUserSql, ConditionsJoinersAndOperators) {
  TUserSqlState s;
  s.database = "shop";
  s.table = "items";
  EXPECT_EQ(UserSqlQuery(s, plainQuote), "SELECT * FROM `shop`.`items`");
  s.conditions[0] = {"price", ">=", "10"};
  s.conditions[1] = {"name", "LIKE", "pen%"};
  s.conditions[2] = {"note", "IS NULL", "ignored"};
  EXPECT_EQ(UserSqlQuery(s, plainQuote), "SELECT * FROM `shop`.`items` WHERE `price` >= '10'");
  s.joiners = {"OR", ""};
  EXPECT_EQ(UserSqlQuery(s, plainQuote),
            "SELECT * FROM `shop`.`items` WHERE `price` >= '10' OR `name` LIKE 'pen%'");
  s.joiners = {"", "AND"};  // an empty joiner disables every row after it
  EXPECT_EQ(UserSqlQuery(s, plainQuote), "SELECT * FROM `shop`.`items` WHERE `price` >= '10'");
  s.joiners = {"AND", "AND"};
  s.conditions[1] = {"id", "BETWEEN", "3 and 9"};
  EXPECT_EQ(
      UserSqlQuery(s, plainQuote),
      "SELECT * FROM `shop`.`items` WHERE `price` >= '10' AND `id` BETWEEN '3' AND '9' AND `note` IS NULL");
  s.conditions[1].value = "3";
  EXPECT_THROW(UserSqlQuery(s, plainQuote), std::invalid_argument);
  s.conditions[1] = {"id", "; DROP", "1"};
  EXPECT_THROW(UserSqlQuery(s, plainQuote), std::invalid_argument);
  s.table.clear();
  EXPECT_THROW(UserSqlQuery(s, plainQuote), std::invalid_argument);
}

TEST(ExportUserSql, ValuesAreEscapedByTheClientLibrary) {
  auto session = test::connect();
  TUserSqlState s;
  s.database = "shop";
  s.table = "t";
  s.conditions[0] = {"name", "=", "O'Brien\\"};
  EXPECT_EQ(UserSqlQuery(s, [&](const std::string& v) { return QuotedString(*session, v); }),
            "SELECT * FROM `shop`.`t` WHERE `name` = 'O\\'Brien\\\\'");
}

TExportDbState shopState() {
  TExportDbState s;
  s.database = "shop";
  s.currentDatabase = "shop";
  s.tables = {{"a", TExportItemKind::Table, true}, {"b", TExportItemKind::Table, true}};
  s.routines = {{"p", TExportItemKind::Procedure, true},
                {"f", TExportItemKind::Function, true},
                {"trg", TExportItemKind::Trigger, true}};
  s.directory = "/backups";
  s.fileName = "shop.sql";
  return s;
}

TEST(ExportPlan, FullExportNamesEveryObjectOnlyForAnotherDatabase) {
  TExportDbState s = shopState();
  s.fullExport = true;
  auto runs = PlanExport(s, plainQuote);
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].objects.bits(), 127);
  EXPECT_EQ(runs[0].tableNames, "");
  EXPECT_EQ(runs[0].file, "/backups/shop.sql");
  s.currentDatabase = "other";
  s.saveToFile = false;
  runs = PlanExport(s, plainQuote);
  EXPECT_EQ(runs[0].tableNames, "a.shop,b.shop ");
  EXPECT_EQ(runs[0].storedProcNames, "p.shop,f.shop ");
  EXPECT_TRUE(runs[0].file.empty()) << "clipboard";
  s.serverMajorVersion = 4;
  runs = PlanExport(s, plainQuote);
  EXPECT_EQ(runs[0].objects.bits(), 27);
  EXPECT_EQ(runs[0].storedProcNames, "");
}

TEST(ExportPlan, UserSqlTabRunsOneQuery) {
  TExportDbState s = shopState();
  s.userSqlTab = true;
  s.userSql.table = "a";
  const auto runs = PlanExport(s, plainQuote);
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_TRUE(runs[0].queryRun);
  EXPECT_EQ(runs[0].query, "SELECT * FROM `shop`.`a`");
  EXPECT_EQ(runs[0].objects.bits(), 16);
}

TEST(ExportPlan, OneFilePerCheckedObject) {
  TExportDbState s = shopState();
  s.onlyFile = false;
  s.tables[1].checked = false;
  s.routines[0].checked = false;
  s.kinds = {true, true, false, false, false, true, false};
  const auto runs = PlanExport(s, plainQuote);
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_EQ(runs[0].tableNames, "a.shop");
  EXPECT_EQ(runs[0].objects.bits(), 56);
  EXPECT_EQ(runs[0].file, "/backups/a.sql");
  EXPECT_TRUE(runs[0].isTableItem);
  EXPECT_EQ(runs[1].storedProcNames, "f");
  EXPECT_EQ(runs[1].objects.bits(), 4);
  EXPECT_EQ(runs[1].file, "/backups/f.sql");
  EXPECT_EQ(runs[2].triggerNames, "trg");
  EXPECT_EQ(runs[2].objects.bits(), 64);
  EXPECT_EQ(runs[2].objectName, "trg");
}

TEST(ExportPlan, OneScriptNamesOnlyAPartialChoice) {
  TExportDbState s = shopState();
  auto runs = PlanExport(s, plainQuote);
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].tableNames, "") << "every table checked: tables created meanwhile are dumped too";
  EXPECT_EQ(runs[0].storedProcNames, "");
  EXPECT_EQ(runs[0].objects.bits(), 24);
  s.tables[0].checked = false;
  s.routines[1].checked = false;
  runs = PlanExport(s, plainQuote);
  EXPECT_EQ(runs[0].tableNames, "b ");
  EXPECT_EQ(runs[0].storedProcNames, "p ");
  EXPECT_EQ(runs[0].triggerNames, "trg ");
}

TEST(ExportPlan, BackupFolderNeedsATrailingSeparator) {
  EXPECT_EQ(BackupFolder("/srv/dumps/", "/data/Backups/"), "/srv/dumps/");
  EXPECT_EQ(BackupFolder("/srv/dumps", "/data/Backups/"), "/data/Backups/");
  EXPECT_EQ(BackupFolder("", "/data/Backups/"), "/data/Backups/");
}

TEST(ExportPlan, ConfiguredBackupFolderIsTakenWithOrWithoutItsSeparator) {
  EXPECT_EQ(ConfiguredBackupFolder("/srv/dumps", "/data/Backups/"), "/srv/dumps/");
  EXPECT_EQ(ConfiguredBackupFolder("/srv/dumps/", "/data/Backups/"), "/srv/dumps/");
  EXPECT_EQ(ConfiguredBackupFolder("", "/data/Backups/"), "/data/Backups/");
}

TEST(ExportPlan, FullExportKindsAreNamedUsersAndTheirHashesIncluded) {
  EXPECT_EQ(
      DumpKindsText(FullExportObjects(10)),
      "the database, every account of the server with its grants and password hash, stored procedures and "
      "functions, table scripts, table data, views, triggers");
  EXPECT_EQ(DumpKindsText(FullExportObjects(4)),
            "the database, every account of the server with its grants and password hash, table scripts, "
            "table data");
  EXPECT_EQ(FullExportObjects(4).bits(), 27);
  EXPECT_EQ(FullExportObjects(5).bits(), 127);
}

}  // namespace
}  // namespace lomarin
