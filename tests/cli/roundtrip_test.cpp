#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <regex>

#include "cli_options.h"
#include "cli_test_support.h"
#include "dump_command.h"
#include "engine/connect/my_query.h"
#include "engine/transfer/export_plan.h"
#include "engine/transfer/my_dump.h"
#include "exec_command.h"
#include "test_server.h"

namespace lomarin::cli {
namespace {

using test::connectionArgs;
using test::slurp;

const std::string kSource = "rt_source";
const std::string kCopy = "rt_copy";

std::vector<std::vector<std::string>> rows(TMyConnection& session, const std::string& sql) {
  TMyQuery query(session);
  query.SQL = sql;
  query.Open();
  std::vector<std::vector<std::string>> result;
  while (query.Next()) {
    auto& row = result.emplace_back();
    for (size_t i = 0; i < query.Fields().size(); ++i)
      row.emplace_back(query.IsNull(i) ? "NULL" : std::string(query.Value(i)));
  }
  return result;
}

std::string quoted(const std::string& name) { return "`" + std::regex_replace(name, std::regex("`"), "``") + "`"; }

// Every value of a column as text that hides nothing: FLOAT widened, strings and binaries in
// hexadecimal, the long ones by length and digest.
std::string exactValue(const std::string& column, const std::string& type) {
  const std::string c = quoted(column);
  if (type == "float") return c + " * 1e0";
  if (std::regex_match(type, std::regex("(tiny|medium|long)?(blob|text)|json")))
    return "CONCAT(LENGTH(" + c + "), ':', SHA2(" + c + ", 256))";
  if (std::regex_match(type, std::regex("(var)?(char|binary)|set|.*(geometry|point|linestring|polygon)")))
    return "HEX(" + c + ")";
  // The empty error value of an ENUM reads like an empty member: its index tells them apart.
  if (type == "enum") return "CONCAT(HEX(" + c + "), ':', " + c + " + 0)";
  if (type == "bit") return c + " + 0";
  return c;
}

// Everything the server holds for one database, with its name taken out: each object's SHOW
// CREATE text and the settings its code runs under, each table's checksum and every row.
std::vector<std::string> snapshot(const std::string& db) {
  auto session = test::connect(db);
  ExecSQLText(*session, "SET time_zone = '+00:00', sql_mode = ''");
  std::vector<std::string> print;
  auto add = [&](std::string text) {
    print.push_back(std::regex_replace(text, std::regex(quoted(db) + "\\.?"), "<db>"));
  };
  add(rows(*session, "SHOW CREATE DATABASE " + quoted(db)).at(0).at(1));
  const std::string schema = "'" + db + "'";
  for (const auto& table : rows(*session, "SELECT TABLE_NAME, TABLE_TYPE FROM information_schema.TABLES "
                                          "WHERE TABLE_SCHEMA = " + schema + " ORDER BY 1")) {
    const std::string name = quoted(table[0]);
    add(table[1] + " " + rows(*session, "SHOW CREATE TABLE " + name).at(0).at(1));
    if (table[1] == "VIEW") continue;
    // A versioned table's checksum covers the times its rows were written, which a restore renews.
    if (table[1] != "SYSTEM VERSIONED")
      add("checksum " + name + " " + rows(*session, "CHECKSUM TABLE " + name).at(0).at(1));
    std::string values;
    for (const auto& column : rows(*session, "SELECT COLUMN_NAME, DATA_TYPE FROM information_schema.COLUMNS "
                                             "WHERE TABLE_SCHEMA = " + schema + " AND TABLE_NAME = '" +
                                                 table[0] + "' ORDER BY ORDINAL_POSITION"))
      values += (values.empty() ? "" : ", ") + std::string("QUOTE(") + exactValue(column[0], column[1]) + ")";
    for (const auto& row : rows(*session, "SELECT CONCAT_WS(',', " + values + ") FROM " + name + " ORDER BY 1"))
      add(row[0]);
  }
  for (const char* kind : {"PROCEDURE", "FUNCTION"})
    for (const auto& routine : rows(*session, std::string("SHOW ") + kind + " STATUS WHERE Db = " + schema)) {
      const auto create = rows(*session, std::string("SHOW CREATE ") + kind + " " + quoted(routine[1])).at(0);
      add(create[1] + "|" + create[2] + "|" + create[3] + "|" + create[4]);
    }
  for (const auto& trigger : rows(*session, "SELECT TRIGGER_NAME, ACTION_ORDER FROM information_schema.TRIGGERS "
                                            "WHERE TRIGGER_SCHEMA = " + schema + " ORDER BY 1")) {
    const auto create = rows(*session, "SHOW CREATE TRIGGER " + quoted(trigger[0])).at(0);
    add(trigger[1] + "|" + create[1] + "|" + create[2] + "|" + create[3] + "|" + create[4]);
  }
  for (const auto& event : rows(*session, "SHOW EVENTS FROM " + quoted(db))) {
    const auto create = rows(*session, "SHOW CREATE EVENT " + quoted(event[1])).at(0);
    add(create[1] + "|" + create[2] + "|" + create[3] + "|" + create[4]);
  }
  return print;
}

// The entries of one snapshot missing from the other, each cut short: the rows are long.
std::string differences(const std::vector<std::string>& got, const std::vector<std::string>& want) {
  std::string text;
  auto missing = [&](const std::vector<std::string>& from, const std::vector<std::string>& in, const char* sign) {
    for (const auto& entry : from)
      if (std::find(in.begin(), in.end(), entry) == in.end()) text += sign + entry.substr(0, 400) + "\n";
  };
  missing(want, got, "- ");
  missing(got, want, "+ ");
  if (text.empty() && got != want) text = "same entries in another order\n";
  return text;
}

std::string shellArgs() {
  const auto s = test::serverSettings();
  return " --protocol=tcp --host=" + s.Server + " --port=" + std::to_string(s.Port) + " --user=" + s.Username +
         " --password=" + s.Password;
}

std::filesystem::path scriptFile(const std::string& name) {
  return std::filesystem::temp_directory_path() / ("lomarin_roundtrip_" + name + ".sql");
}

// A way of writing a dump of the source to a file. A whole dump carries the database itself; the
// others are restored into a copy. The server's own client is the measure for its dump client's
// scripts, whose values and order are not ours to mend.
struct Way {
  const char* name;
  bool whole;
  bool clientIsMeasure;
  std::function<void(const std::filesystem::path&)> write;
};

// Runs a script with the server's own client, on through errors; gives its error lines.
std::string clientLoad(const std::string& database, const std::filesystem::path& file) {
  const auto errors = std::filesystem::temp_directory_path() / "lomarin_roundtrip_client.err";
  const std::string command = "mariadb --force --comments" + shellArgs() + " " + database + " < " + file.string() +
                              " > /dev/null 2> " + errors.string();
  std::system(command.c_str());
  std::FILE* in = std::fopen(errors.c_str(), "r");
  std::string text = slurp(in);
  std::fclose(in);
  std::filesystem::remove(errors);
  return text;
}

// The error lines of our runner's report, without the statements.
std::string errorLines(const std::string& report) {
  static const std::regex error("(^|\n)(ERROR [^\n]*\n)");
  std::string lines;
  for (std::sregex_iterator m(report.begin(), report.end(), error), end; m != end; ++m) lines += (*m)[2].str();
  return lines;
}

void cliDump(const std::vector<std::string>& flags, const std::filesystem::path& file) {
  auto args = connectionArgs();
  args.insert(args.end(), flags.begin(), flags.end());
  args.push_back("--result-file=" + file.string());
  args.push_back(kSource);
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
  EXPECT_EQ(runDump(parseArgs(args), out, err), 0) << slurp(err);
  std::fclose(out);
  std::fclose(err);
}

// The export dialog's full export, run from a session on another database, with its boxes as they
// open: each table is named in the engine's list.
void dialogDump(const std::filesystem::path& file) {
  auto session = test::connect("lomarin_test");
  TExportDbState state;
  state.database = kSource;
  state.currentDatabase = "lomarin_test";
  state.fullExport = true;
  for (const auto& table : rows(*session, "SHOW TABLE STATUS FROM " + quoted(kSource)))
    state.tables.push_back({table[0]});
  const TExportRun run = PlanExport(state, [&](const std::string& v) { return "'" + v + "'"; }).at(0);
  TMyDump dump(session.get());
  dump.Database = kSource;
  dump.Objects = run.objects;
  dump.TableNames = run.tableNames;
  dump.StoredProcNames = run.storedProcNames;
  TMyDumpOptions& o = dump.Options;
  o.GenerateHeader = o.AddLock = o.UseExtSyntax = false;
  o.AddDrop = o.DisableKeys = true;
  TFileDumpSink sink(file);
  dump.Backup(sink);
  sink.commit();
}

int exec(const std::string& database, const std::filesystem::path& file, bool optimize, std::string* errors) {
  auto args = connectionArgs();
  args.insert(args.end(), {"--database", database, file.string()});
  if (optimize) args.push_back("--optimize");
  std::FILE* err = std::tmpfile();
  const int status = runExec(parseArgs(args), err);
  *errors = slurp(err);
  std::fclose(err);
  return status;
}

// Dumps of a database holding what servers hold and others write, made by our dump engine (as the
// command line and the export dialog run it) and by the server's own dump client, restored by our
// script runner: every object, checksum and row comes back as it was.
TEST(DumpExecRoundTrip, EveryObjectAndValueComesBackExactly) {
  test::sideExec("DROP DATABASE IF EXISTS " + kSource);
  test::sideExec("CREATE DATABASE " + kSource + " DEFAULT CHARACTER SET latin1 COLLATE latin1_german1_ci");
  ASSERT_EQ(clientLoad(kSource, LOMARIN_TEST_SOURCE_DIR "/roundtrip_database.sql"), "");
  const auto original = snapshot(kSource);
  ASSERT_GT(original.size(), 60u);
  const std::string createCopy =
      std::regex_replace(original.front(), std::regex("<db>"), quoted(kCopy));

  const std::vector<Way> ways = {
      {"command line, defaults", false, false, [](const auto& file) { cliDump({}, file); }},
      {"command line, every switch", false, false,
       [](const auto& file) {
         cliDump({"--quote-names", "--complete-insert", "--hex-blob", "--no-extended-insert", "--disable-keys",
                  "--no-lock", "--commit-batch=2", "--replace", "--no-header"},
                 file);
       }},
      {"server's dump client", false, true,
       [](const auto& file) {
         const std::string command = "mariadb-dump --routines --events --triggers" + shellArgs() + " " + kSource +
                                     " > " + file.string();
         ASSERT_EQ(std::system(command.c_str()), 0);
       }},
      // These drop and create the source again: last.
      {"command line, database and all", true, false,
       [](const auto& file) { cliDump({"--objects=all", "--hex-blob"}, file); }},
      {"export dialog, full export", true, false, dialogDump},
  };
  for (const Way& way : ways) {
    const auto file = scriptFile("dump");
    way.write(file);
    const auto fresh = [&] {
      test::sideExec(way.whole ? "DROP DATABASE " + kSource : "DROP DATABASE IF EXISTS " + kCopy);
      if (!way.whole) test::sideExec(createCopy);
    };
    auto expected = original;
    std::string expectedErrors;
    if (way.clientIsMeasure) {
      fresh();
      expectedErrors = errorLines(clientLoad(kCopy, file));
      expected = snapshot(kCopy);
    }
    for (bool optimize : {false, true}) {
      SCOPED_TRACE(std::string(way.name) + (optimize ? ", optimized" : ""));
      fresh();
      std::string errors;
      exec(way.whole ? "mysql" : kCopy, file, optimize, &errors);
      EXPECT_EQ(errorLines(errors), expectedErrors) << errors;
      EXPECT_EQ(differences(snapshot(way.whole ? kSource : kCopy), expected), "");
    }
    std::filesystem::remove(file);
  }
  test::sideExec("DROP DATABASE IF EXISTS " + kCopy);
  test::sideExec("DROP DATABASE IF EXISTS " + kSource);
}

}  // namespace
}  // namespace lomarin::cli
