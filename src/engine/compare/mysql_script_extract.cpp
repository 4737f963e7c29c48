#include "engine/compare/mysql_script_extract.h"

#include <sstream>

#include "engine/compare/compare_error.h"
#include "engine/compare/ddl_reader.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/statement_splitter.h"
#include "engine/transfer/my_dump.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

std::string firstLine(const std::string& statement) {
  const size_t start = statement.find_first_not_of(" \t\r\n");
  if (start == std::string::npos) return {};
  const size_t end = statement.find_first_of("\r\n", start);
  return statement.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

}  // namespace

void TMySQLScriptExtract::log(const std::string& line) const {
  if (OnLogNextLine) OnLogNextLine(line);
}

void TMySQLScriptExtract::dumpDatabase() {
  if (!Connection) throw CompareError("(" + Name + "): Connection property not assigned.");
  log("Extracting database " + Database + "...");
  using enum TCmpObjType;
  TMyDump dump(Connection);
  dump.Database = Database;
  TMyDumpObjects objects(TMyDumpObject::doTables);
  if (Objects.has(coView)) objects.add(TMyDumpObject::doViews);
  // Events travel with the stored routines, and events are always compared.
  objects.add(TMyDumpObject::doStoredProcs);
  if (Objects.has(coTrigger)) objects.add(TMyDumpObject::doTriggers);
  dump.Objects = objects;
  dump.Options.GenerateHeader = false;
  dump.Options.AddDrop = false;
  dump.Options.AddLock = false;
  dump.Options.UseExtSyntax = false;
  dump.StopRequested = StopRequested;
  if (OnProgressUpdate)
    dump.OnBackupProgress = [this](const std::string&, int num, int count, int) {
      if (count > 0) OnProgressUpdate(num * 50 / count);
    };
  try {
    dump.Backup();
  } catch (const DumpError& e) {
    throw CompareError(StopRequested && StopRequested() ? "Stopped by the user" : e.what());
  }
  Script = dump.Text();
  if (Objects.has(coTable)) appendSequences();
}

// The dump holds a sequence only in its table form, which says nothing of its values.
void TMySQLScriptExtract::appendSequences() {
  TMyQuery list(*Connection);
  list.SQL =
      "SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_TYPE = 'SEQUENCE' AND TABLE_SCHEMA = " +
      QuotedString(*Connection, Database) + " ORDER BY TABLE_NAME";
  list.Open();
  std::vector<std::string> names;
  while (list.Next()) names.emplace_back(list.Value(0));
  for (const auto& name : names) {
    TMyQuery create(*Connection);
    create.SQL = "SHOW CREATE SEQUENCE " + ScriptName(Database, true) + "." + ScriptName(name, true);
    create.Open();
    if (create.Next()) Script += std::string(create.Value(1)) + ";\n";
  }
}

void TMySQLScriptExtract::Extract(TDBStructure& into) {
  into.Clear();
  if (ExtractFrom == TExtractFromType::efDatabase) {
    dumpDatabase();
    into.Database = Database;
  }
  const int base = ExtractFrom == TExtractFromType::efDatabase ? 50 : 0;
  log("Reading script...");
  TDdlReader reader(into, CaseSensitiveIdentifiers);
  std::istringstream in(Script);
  TStatementSplitter splitter(in);
  std::string statement;
  int lastPercent = -1;
  while (splitter.next(statement)) {
    if (StopRequested && StopRequested()) throw CompareError("Stopped by the user");
    if (reader.read(statement) == TDdlReader::Outcome::NotModelled)
      log("Statement skipped (line " + std::to_string(splitter.statementLine()) +
          "): " + firstLine(statement));
    const int percent =
        base + static_cast<int>(splitter.position() * (100 - base) / std::max<size_t>(1, Script.size()));
    if (OnProgressUpdate && percent != lastPercent) OnProgressUpdate(lastPercent = percent);
  }
  log("Tables: " + std::to_string(into.Tables.size()) + ", views: " + std::to_string(into.Views.size()) +
      ", procedures: " + std::to_string(into.Procedures.size()) + ", functions: " +
      std::to_string(into.Functions.size()) + ", triggers: " + std::to_string(into.Triggers.size()) +
      ", events: " + std::to_string(into.Events.size()));
}

}  // namespace lomarin
