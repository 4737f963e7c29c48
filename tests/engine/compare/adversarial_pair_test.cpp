#include <gtest/gtest.h>

#include <fstream>
#include <regex>

#include "compare_fixture.h"
#include "engine/compare/data_sync_job.h"
#include "engine/compare/ddl_writer.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"

namespace lomarin {
namespace {

using enum TCmpObjType;

void load(const std::string& database, const std::string& file) {
  std::ifstream in(std::string(LOMARIN_COMPARE_DATA_DIR) + "/" + file, std::ios::binary);
  ASSERT_TRUE(in) << file;
  test::sideExec("DROP DATABASE IF EXISTS `" + database + "`");
  test::sideExec("CREATE DATABASE `" + database + "`");
  auto session = test::connect(database);
  TMyScript script(*session);
  script.SQL.assign(std::istreambuf_iterator<char>(in), {});
  script.Execute();
}

using test::column;

// Every row of a table, invisible columns too, each value as its bytes (a FLOAT widened first).
std::vector<std::string> rows(TMyConnection& session, const std::string& database, const std::string& table) {
  std::string columns;
  for (const auto& value :
       column(session,
              "SELECT CONCAT('IFNULL(HEX(CAST(', CONCAT('`', REPLACE(COLUMN_NAME, '`', '``'), '`'), "
              "IF(DATA_TYPE = 'float', ' * 1e0', ''), ' AS BINARY)), ''NULL'')') FROM "
              "information_schema.COLUMNS WHERE TABLE_SCHEMA = '" +
                  database + "' AND TABLE_NAME = '" + std::regex_replace(table, std::regex("'"), "''") +
                  "' ORDER BY ORDINAL_POSITION"))
    columns += (columns.empty() ? "" : ", ") + value;
  return column(session, "SELECT CONCAT_WS(',', " + columns + ") FROM " + QuotedName(database) + "." +
                             QuotedName(table) + " ORDER BY 1");
}

std::string checksum(TMyConnection& session, const std::string& database, const std::string& table) {
  return column(session, "CHECKSUM TABLE " + QuotedName(database) + "." + QuotedName(table) + " EXTENDED", 1)
      .at(0);
}

// The pair under tests/engine/compare/data holds what a server can hold and a script can get
// wrong. Each way round, the structure script and then the data script make the target equal the
// source: every SHOW CREATE, every row, every checksum.
TEST(AdversarialPair, StructureThenDataSyncMakeTheTargetEqualTheSource) {
  for (const auto& [from, to] : {std::pair{"adversarial_source.sql", "adversarial_target.sql"},
                                 std::pair{"adversarial_target.sql", "adversarial_source.sql"}}) {
    SCOPED_TRACE(from);
    load("adv_source", from);
    load("adv_target", to);
    const auto sourceShape = test::ShowCreateAll("adv_source");
    {
      test::LiveCompare compare("adv_source", "adv_target");
      for (auto kind : {coProcedure, coFunction, coTrigger}) compare.comparer.CompareObjects.add(kind);
      const auto& script = compare.run();
      EXPECT_EQ(std::vector<std::string>{}, compare.apply()) << script;
      EXPECT_EQ(sourceShape, test::ShowCreateAll("adv_target")) << script;
    }

    TDataSyncJob job;
    std::vector<std::string> log;
    job.OnLogNextLine = [&log](const std::string& line) { log.push_back(line); };
    TDataSyncSettings settings;
    settings.Master = settings.Target = test::serverSettings();
    settings.Master.Database = "adv_source";
    settings.Target.Database = "adv_target";
    auto source = test::connect("adv_source");
    auto target = test::connect("adv_target");
    settings.Pairs = AutoSelectTables(*source, *target, true);
    settings.HexBlobs = true;
    settings.Apply = true;
    const auto result = job.Run(settings);
    EXPECT_EQ(0, result.ApplyErrors) << result.Script;
    // Tables without a primary key cannot be matched row by row: refused, the others go on.
    std::vector<std::string> refused;
    for (const auto& line : log)
      if (line.starts_with("Error compare tables ")) refused.push_back(line);
    EXPECT_EQ(
        std::vector<std::string>(
            {"Error compare tables keyless : keyless There are no key-fields for comparison. Table: keyless",
             "Error compare tables unique_nulls : unique_nulls There are no key-fields for comparison. "
             "Table: unique_nulls"}),
        refused);
    for (const auto& [table, ignored] : settings.Pairs) {
      if (table == "keyless" || table == "unique_nulls") continue;
      EXPECT_EQ(rows(*source, "adv_source", table), rows(*target, "adv_target", table)) << table;
      // A versioned table's checksum takes in when each row version began, which no script can copy.
      if (test::scalar(*source,
                       "SELECT TABLE_TYPE FROM information_schema.TABLES WHERE TABLE_SCHEMA = "
                       "'adv_source' AND TABLE_NAME = '" +
                           table + "'") != "SYSTEM VERSIONED") {
        EXPECT_EQ(checksum(*source, "adv_source", table), checksum(*target, "adv_target", table)) << table;
      }
    }
  }
}

}  // namespace
}  // namespace lomarin
