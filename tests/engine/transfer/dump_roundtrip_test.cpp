#include <gtest/gtest.h>

#include <regex>

#include "dump_fixture.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"

namespace lomarin {
namespace {

const std::string kDemo = "lomarin_demo";
const std::string kCopy = "dump_roundtrip";

std::vector<std::string> column(TMyConnection& session, const std::string& sql, size_t index = 0) {
  TMyQuery query(session);
  query.SQL = sql;
  query.Open();
  std::vector<std::string> values;
  while (query.Next()) values.emplace_back(query.IsNull(index) ? "NULL" : query.Value(index));
  return values;
}

// Everything a restore must bring back, with the database name taken out of the texts.
std::vector<std::string> fingerprint(TMyConnection& session, const std::string& db) {
  std::vector<std::string> print;
  for (const auto& table :
       column(session, "SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA = '" + db +
                           "' AND TABLE_TYPE = 'BASE TABLE' ORDER BY 1")) {
    print.push_back(table + " " + column(session, "CHECKSUM TABLE `" + db + "`.`" + table + "`", 1).at(0));
  }
  const std::string where = " = '" + db + "' ORDER BY 1";
  auto add = [&](const std::string& sql) {
    TMyQuery query(session);
    query.SQL = sql + where;
    query.Open();
    while (query.Next()) {
      std::string row;
      for (size_t i = 0; i < query.Fields().size(); ++i) row += std::string(query.Value(i)) + "|";
      // The script runner joins the lines of a statement with CR LF, so bodies come back with them.
      row = std::regex_replace(row, std::regex("\r\n"), "\n");
      print.push_back(std::regex_replace(row, std::regex("`" + db + "`\\."), ""));
    }
  };
  add("SELECT TABLE_NAME, VIEW_DEFINITION FROM information_schema.VIEWS WHERE TABLE_SCHEMA");
  add("SELECT ROUTINE_NAME, ROUTINE_TYPE, ROUTINE_DEFINITION, DTD_IDENTIFIER FROM information_schema.ROUTINES"
      " WHERE ROUTINE_SCHEMA");
  add("SELECT TRIGGER_NAME, ACTION_TIMING, EVENT_MANIPULATION, EVENT_OBJECT_TABLE, ACTION_STATEMENT"
      " FROM information_schema.TRIGGERS WHERE TRIGGER_SCHEMA");
  add("SELECT EVENT_NAME, EVENT_DEFINITION, INTERVAL_VALUE, INTERVAL_FIELD, STARTS, ON_COMPLETION, STATUS"
      " FROM information_schema.EVENTS WHERE EVENT_SCHEMA");
  return print;
}

void runScript(TMyConnection& session, const std::string& script) {
  TMyScript run(session);
  run.SQL = script;
  run.UseOptimization = true;
  run.Execute();
}

TEST(DumpRoundTrip, DemoDatabaseComesBackWhole) {
  auto session = test::connect(kDemo);
  const auto original = fingerprint(*session, kDemo);
  ASSERT_EQ(original.size(), 8u + 2 + 2 + 1 + 1) << "demo: 8 tables, 2 views, 2 routines, 1 trigger, 1 event";

  // A copy to work on, so the demo database is never dropped: everything but database and users.
  TMyDump dump(session.get());
  dump.Objects = TMyDumpObjects(124);
  dump.Backup();
  test::sideExec("DROP DATABASE IF EXISTS " + kCopy);
  test::sideExec("CREATE DATABASE " + kCopy + " DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_unicode_ci");
  auto copy = test::connect(kCopy);
  runScript(*copy, dump.Text());
  ASSERT_EQ(fingerprint(*copy, kCopy), original);

  struct Variant {
    const char* name;
    bool hexBlob, extended;
  };
  for (const Variant v : {Variant{"defaults", false, true}, Variant{"hex blob", true, true},
                          Variant{"one row per insert", false, false}}) {
    SCOPED_TRACE(v.name);
    TMyDump full(copy.get());
    full.Objects = TMyDumpObjects::all();
    full.Options.HexBlob = v.hexBlob;
    full.Options.UseExtSyntax = v.extended;
    full.Backup();
    const std::string script = full.Text();
    EXPECT_NE(script.find("\r\nGRANT ALL PRIVILEGES ON `lomarin_demo`.* TO `lomarin_demo`@`localhost`;\r\n"),
              std::string::npos);
    EXPECT_EQ(script.find("0x89504E47") != std::string::npos, v.hexBlob);
    test::sideExec("DROP DATABASE " + kCopy);
    auto restore = test::connect("mysql");
    runScript(*restore, script);
    EXPECT_EQ(fingerprint(*restore, kCopy), original);
    copy = test::connect(kCopy);
  }
  test::sideExec("DROP DATABASE " + kCopy);
}

}  // namespace
}  // namespace lomarin
