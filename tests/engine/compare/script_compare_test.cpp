#include <gtest/gtest.h>

#include "engine/compare/compare_error.h"
#include "engine/compare/db_comparer.h"

namespace lomarin {
namespace {

using enum TCmpObjType;

// Compares two scripts as the wizard compares two script files.
struct ScriptCompare {
  ScriptCompare(const std::string& source, const std::string& target) {
    sourceExtract.Script = source;
    targetExtract.Script = target;
    comparer.DBStructureMaster = &sourceStructure;
    comparer.DBStructureTarget = &targetStructure;
    comparer.ExtractorMaster = &sourceExtract;
    comparer.ExtractorTarget = &targetExtract;
    comparer.OnLogNextLine = [this](const std::string& line) { log.push_back(line); };
  }
  const std::string& run() {
    comparer.CompareDatabases();
    return comparer.Script();
  }
  TMySQLScriptExtract sourceExtract, targetExtract;
  TDBStructure sourceStructure, targetStructure;
  TDBComparer comparer;
  std::vector<std::string> log;
};

const std::string kOrders =
    "CREATE TABLE `Orders` (`id` int(11) NOT NULL, PRIMARY KEY (`id`)) ENGINE=InnoDB;\n";

TEST(ScriptCompare, EqualSidesGiveTheSectionLinesOnly) {
  ScriptCompare compare(kOrders, kOrders);
  compare.comparer.MySQLServerOptions.CharSet = "utf8";
  compare.comparer.MySQLServerOptions.Names = "utf8mb4";
  compare.targetStructure.Database = "ignored: extraction fills it";
  EXPECT_EQ(
      "SET CHARACTER SET utf8;\r\n"
      "SET NAMES utf8mb4;\r\n"
      "/* Drop Index... */\r\n"
      "/* Create index... */\r\n"
      "/* Alter index (Drop, Create)... */\r\n"
      "/* Create check(not null)... */\r\n"
      "/* Create Default... */\r\n"
      "/* Create Primary Key... */\r\n"
      "/* Create Unique... */\r\n"
      "/* Create Foreign Key... */\r\n"
      "/* Create Check... */\r\n"
      "/* Create event... */\r\n"
      "/* Alter event... */\r\n"
      "/* Drop event... */\r\n",
      compare.run());
  EXPECT_EQ(0, compare.comparer.StatementCount());
}

TEST(ScriptCompare, SectionsFollowTheChosenKindsAndEventsAlwaysCome) {
  ScriptCompare compare(kOrders + "USE shop;\n", "");
  compare.comparer.CompareObjects = {};
  EXPECT_EQ("/* Create event... */\r\n/* Alter event... */\r\n/* Drop event... */\r\n", compare.run());
  EXPECT_EQ(std::vector<std::string>({"Reading script...",
                                      "Tables: 1, views: 0, procedures: 0, functions: 0, "
                                      "triggers: 0, events: 0",
                                      "Reading script...",
                                      "Tables: 0, views: 0, procedures: 0, functions: 0, "
                                      "triggers: 0, events: 0",
                                      "Comparing databases...", "/* Create event... */",
                                      "/* Alter event... */", "/* Drop event... */"}),
            compare.log);

  ScriptCompare tablesOnly(kOrders, "");
  tablesOnly.comparer.CompareObjects = {coTable};
  EXPECT_EQ(
      "CREATE TABLE `Orders` (\r\n"
      "  `id` int(11) NOT NULL,\r\n"
      "  PRIMARY KEY (`id`)\r\n"
      ")\r\n"
      "ENGINE=InnoDB;\r\n"
      "/* Create event... */\r\n/* Alter event... */\r\n/* Drop event... */\r\n",
      tablesOnly.run());
}

TEST(ScriptCompare, ServersBeforeVersion5HaveNoViewsOrCode) {
  const std::string views = "CREATE VIEW v AS SELECT 1 AS a;\nCREATE PROCEDURE p() SELECT 1;\n";
  ScriptCompare version5(views, "");
  version5.comparer.CompareObjects = {coView, coProcedure};
  EXPECT_EQ(2, (version5.run(), version5.comparer.StatementCount()));
  ScriptCompare version4(views, "");
  version4.comparer.CompareObjects = {coView, coProcedure};
  version4.comparer.MySQLServerOptions.SQLServerVersion = 4;
  EXPECT_EQ("/* Create event... */\r\n/* Alter event... */\r\n/* Drop event... */\r\n", version4.run());
}

TEST(ScriptCompare, LetterCaseOfTableNamesCountsOnlyWhenCaseSensitive) {
  const std::string lower =
      "CREATE TABLE `orders` (`id` int(11) NOT NULL, PRIMARY KEY (`id`)) ENGINE=InnoDB;\n";
  ScriptCompare insensitive(kOrders, lower);
  insensitive.comparer.MySQLCompareOptions.CaseSensitiveIdentifiers = false;
  insensitive.run();
  EXPECT_EQ(0, insensitive.comparer.StatementCount()) << insensitive.comparer.Script();

  ScriptCompare sensitive(kOrders, lower);
  sensitive.comparer.CompareObjects = {coTable};
  EXPECT_NE(std::string::npos, sensitive.run().find("CREATE TABLE `Orders`"));
  EXPECT_NE(std::string::npos,
            sensitive.run().find("/* Data loss: the rows of table `orders` */\r\nDROP TABLE `orders`;"));
}

TEST(ScriptCompare, RefusesWithoutItsParts) {
  TDBComparer comparer;
  comparer.Name = "Comparer1";
  TDBStructure structure;
  TMySQLScriptExtract extract;
  auto refusal = [&] {
    try {
      comparer.CompareDatabases();
    } catch (const CompareError& e) {
      return std::string(e.what());
    }
    return std::string("ran");
  };
  EXPECT_EQ("(Comparer1): property DBStructureMaster not assigned.", refusal());
  comparer.DBStructureMaster = &structure;
  EXPECT_EQ("(Comparer1): property ExtractorMaster not assigned.", refusal());
  comparer.ExtractorMaster = &extract;
  EXPECT_EQ("(Comparer1): property DBStructureTarget not assigned.", refusal());
  comparer.DBStructureTarget = &structure;
  EXPECT_EQ("(Comparer1): property ExtractorTarget not assigned.", refusal());
  // Without an SQLExec of its own the comparer runs the script with one it makes.
  EXPECT_EQ(&comparer.Exec(), &comparer.Exec());
}

}  // namespace
}  // namespace lomarin
