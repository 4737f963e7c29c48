#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "dump_fixture.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"

namespace lomarin {
namespace {

const std::string kDemo = "lomarin_demo";
const std::string kCopy = "dump_roundtrip";

using test::column;

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
  add("SELECT ROUTINE_NAME, ROUTINE_TYPE, ROUTINE_DEFINITION, DTD_IDENTIFIER, SQL_MODE, CHARACTER_SET_CLIENT,"
      " COLLATION_CONNECTION FROM information_schema.ROUTINES WHERE ROUTINE_SCHEMA");
  add("SELECT TRIGGER_NAME, ACTION_TIMING, EVENT_MANIPULATION, EVENT_OBJECT_TABLE, ACTION_STATEMENT, "
      "SQL_MODE,"
      " CHARACTER_SET_CLIENT, COLLATION_CONNECTION FROM information_schema.TRIGGERS WHERE TRIGGER_SCHEMA");
  add("SELECT EVENT_NAME, EVENT_DEFINITION, INTERVAL_VALUE, INTERVAL_FIELD, STARTS, ON_COMPLETION, STATUS,"
      " SQL_MODE, TIME_ZONE FROM information_schema.EVENTS WHERE EVENT_SCHEMA");
  return print;
}

void runScript(TMyConnection& session, const std::string& script) {
  TMyScript run(session);
  run.SQL = script;
  run.UseOptimization = true;
  run.Execute();
}

// As the command line's exec runs a file: streamed, one statement at a time.
void execScript(TMyConnection& session, const std::string& script) {
  std::istringstream in(script);
  TMyScript run(session);
  run.Execute(in, script.size());
}

std::string everyByte() {
  std::string hex;
  for (int b = 0; b < 256; ++b) {
    static constexpr char digits[] = "0123456789ABCDEF";
    hex += digits[b >> 4];
    hex += digits[b & 15];
  }
  return hex;
}

// Each value at an edge of what its type holds; FLOAT values the server's own text cuts short.
const std::vector<std::string> kEdges = {
    "SET time_zone = '+00:00'",
    "CREATE TABLE edges (id INT NOT NULL PRIMARY KEY, f FLOAT NULL, fd FLOAT(7,4) NULL, g DOUBLE NULL,"
    " d DECIMAL(65,30) NULL, sb BIGINT NULL, ub BIGINT UNSIGNED NULL, ts TIMESTAMP(6) NULL, dt DATETIME(6) "
    "NULL,"
    " tm TIME(6) NULL, bl LONGBLOB NULL, bn BINARY(3) NULL, s VARCHAR(40) NULL) ENGINE=InnoDB",
    "INSERT INTO edges VALUES"
    " (1, 1234567, 123.4567, 0.1e0 + 0.2e0, "
    "99999999999999999999999999999999999.999999999999999999999999999999,"
    " -9223372036854775808, 18446744073709551615, '2038-01-19 03:14:07.999999', '9999-12-31 23:59:59.999999',"
    " '838:59:58.999999', UNHEX('" +
        everyByte() +
        "'), X'00275C', 'It''s \\\\ \"q\" %_'),"
        " (2, 0.1, -999.9999, 1.7976931348623157e308, "
        "-99999999999999999999999999999999999.999999999999999999999999999999,"
        " 9223372036854775807, 0, '1970-01-01 00:00:01.000001', '1000-01-01 00:00:00.000001', "
        "'-838:59:59.000000',"
        " X'', X'000000', ''),"
        " (3, 16777216, 0.0001, 4.9e-324, 0.000000000000000000000000000001, 0, 1, NULL, NULL, NULL, NULL, "
        "NULL, NULL),"
        " (4, 3.4028234e38, NULL, -2.2250738585072014e-308, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, "
        "NULL),"
        " (5, 1.4e-45, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL),"
        " (6, -1.17549435e-38, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL),"
        " (7, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL)",
    "CREATE VIEW v_small AS SELECT id, f FROM edges WHERE id > 1",
    "CREATE VIEW v_smaller AS SELECT s.id FROM v_small s JOIN edges e ON e.id = s.id WHERE s.f < 1",
    // Code keeps the settings it was created under, unlike the session restoring it.
    "SET sql_mode = 'STRICT_ALL_TABLES,NO_ZERO_DATE'",
    "CREATE PROCEDURE p_strict(IN x VARCHAR(10))\nBEGIN\n  INSERT INTO edges (id, f) VALUES (100, x);\nEND",
    "SET sql_mode = 'NO_BACKSLASH_ESCAPES', collation_connection = 'utf8mb4_unicode_ci'",
    "CREATE FUNCTION f_path() RETURNS VARCHAR(20) DETERMINISTIC RETURN 'C:\\tmp'",
    "CREATE TRIGGER t_edges BEFORE UPDATE ON edges FOR EACH ROW SET NEW.s = 'x\\y'",
    "SET sql_mode = 'PIPES_AS_CONCAT', time_zone = '+03:00'",
    "CREATE EVENT e_edges ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 10:00:00' DO UPDATE edges SET s = 'a' "
    "|| 'b'",
    // Code typed in another character set comes back in its own bytes.
    "SET NAMES latin1",
    "CREATE FUNCTION f_latin() RETURNS VARCHAR(5) CHARSET utf8mb4 DETERMINISTIC RETURN '\xE9'",
    "SET NAMES utf8mb4",
};

// What the server holds, read on a session of its own: every column of every row, FLOAT and
// DOUBLE widened so that no digit is hidden, binary values in hexadecimal.
std::vector<std::string> exactRows(const std::string& db) {
  auto session = test::connect(db);
  return column(*session,
                "SELECT CONCAT_WS('|', id, f * 1e0, fd * 1e0, g, d, sb, ub, ts, dt, tm, HEX(bl), HEX(bn), s,"
                " ISNULL(f), ISNULL(bl), ISNULL(s)) FROM edges ORDER BY id");
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

TEST(DumpRoundTrip, RestoresIntoAnotherDatabaseWhateverTheSessionsSqlMode) {
  const std::string source = "dump_edges", target = "dump_edges_copy";
  test::DumpFixture f(source, kEdges);
  const auto original = fingerprint(*f.session, source);
  const auto rows = exactRows(source);
  ASSERT_EQ(rows.size(), 7u);
  ASSERT_EQ(rows[0].substr(0, 14), "1|1234567|123.") << "the float was stored whole";

  // The user works in another database, in modes that change how the server writes texts.
  ExecSQLText(*f.session, "USE mysql");
  ExecSQLText(*f.session, "SET sql_mode = 'ANSI_QUOTES,NO_BACKSLASH_ESCAPES', time_zone = '+05:00'");
  f.dump.Database = source;
  f.dump.Objects = TMyDumpObjects(124);
  const std::string script = f.script();
  EXPECT_EQ(test::scalar(*f.session, "SELECT CONCAT_WS(' ', DATABASE(), @@sql_mode, @@time_zone)"),
            "mysql ANSI_QUOTES,NO_BACKSLASH_ESCAPES +05:00");
  EXPECT_EQ(script.find("`" + source + "`"), std::string::npos) << script;
  EXPECT_NE(script.find("\r\n(1, 1234567, 123.4567, 0.30000000000000004, "), std::string::npos) << script;
  // The largest FLOAT: its shortest text reads as a DOUBLE beyond the FLOAT range.
  EXPECT_NE(script.find("\r\n(4, 3.4028234663852886e38, NULL, "), std::string::npos) << script;
  EXPECT_NE(script.find("\r\n(5, 1e-45, NULL, "), std::string::npos) << script;
  EXPECT_NE(script.find("\r\n/*!50003 SET SQL_MODE='STRICT_ALL_TABLES,NO_ZERO_DATE', "
                        "CHARACTER_SET_CLIENT=utf8mb4, COLLATION_CONNECTION=utf8mb4_general_ci */;\r\n"
                        "-- \r\n-- StoredProc  p_strict\r\n"),
            std::string::npos)
      << script;

  test::sideExec("DROP DATABASE IF EXISTS " + target);
  test::sideExec("CREATE DATABASE " + target);
  auto restore = test::connect(target);
  execScript(*restore, script);
  // The source goes first: a view or routine still reading it would now fail.
  test::sideExec("DROP DATABASE " + source);
  EXPECT_EQ(fingerprint(*restore, target), original);
  EXPECT_EQ(exactRows(target), rows);
  EXPECT_EQ(column(*restore, "SELECT id FROM v_smaller ORDER BY id"),
            (std::vector<std::string>{"2", "5", "6"}));
  EXPECT_EQ(test::scalar(*restore, "SELECT f_path()"), "C:\\tmp");
  EXPECT_EQ(test::scalar(*restore, "SELECT HEX(f_latin())"), "C3A9");
  TMyQuery strict(*restore);
  strict.SQL = "CALL p_strict('abc')";
  EXPECT_THROW(strict.Execute(), ServerError) << "strict: a text is no FLOAT";
  test::sideExec("DROP DATABASE " + target);
}

}  // namespace
}  // namespace lomarin
