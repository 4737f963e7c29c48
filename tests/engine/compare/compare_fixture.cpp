#include "compare_fixture.h"

#include <regex>
#include <sstream>

#include "engine/compare/ddl_writer.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/statement_splitter.h"
#include "engine/transfer/my_dump.h"

namespace lomarin::test {

void MakeDatabase(const std::string& database, const std::vector<std::string>& statements) {
  sideExec("DROP DATABASE IF EXISTS `" + database + "`");
  auto session = connect(database);
  for (const auto& sql : statements) {
    TMyQuery query(*session);
    query.SQL = sql;
    query.Execute();
  }
}

void CopyDemo(const std::string& copy) {
  auto demo = connect("lomarin_demo");
  TMyDump dump(demo.get());
  dump.Objects = TMyDumpObjects(124);  // everything but the database and the users
  dump.Options.GenerateHeader = false;
  dump.Backup();
  sideExec("DROP DATABASE IF EXISTS `" + copy + "`");
  sideExec("CREATE DATABASE `" + copy + "` DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_unicode_ci");
  auto session = connect(copy);
  TMyScript script(*session);
  script.SQL = dump.Text();
  script.Execute();
}

LiveCompare::LiveCompare(const std::string& source, const std::string& target)
    : sourceSession(connect(source)), targetSession(connect(target)) {
  sourceExtract.ExtractFrom = targetExtract.ExtractFrom = TExtractFromType::efDatabase;
  sourceExtract.Connection = sourceSession.get();
  sourceExtract.Database = source;
  targetExtract.Connection = targetSession.get();
  targetExtract.Database = target;
  comparer.DBStructureMaster = &sourceStructure;
  comparer.DBStructureTarget = &targetStructure;
  comparer.ExtractorMaster = &sourceExtract;
  comparer.ExtractorTarget = &targetExtract;
  comparer.OnLogNextLine = [this](const std::string& line) { log.push_back(line); };
  comparer.OnErrorMessage = [this](const std::string& line) { log.push_back("ERROR " + line); };
}

const std::string& LiveCompare::run() {
  comparer.CompareDatabases();
  return comparer.Script();
}

std::vector<std::string> LiveCompare::apply() {
  std::vector<std::string> errors;
  TMySQLExec exec;
  exec.Connection = targetSession.get();
  exec.OnErrorMessage = [&](const std::string& message) { errors.push_back(message); };
  exec.ExecuteScript(comparer.Script());
  return errors;
}

std::vector<std::string> ShowCreateAll(const std::string& database) {
  auto session = connect(database);
  std::vector<std::string> print;
  const std::string db = "'" + database + "'";
  auto add = [&](const std::string& kind, const std::string& list, size_t textColumn) {
    for (const auto& name : column(*session, list)) {
      auto text = column(*session, "SHOW CREATE " + kind + " " + QuotedName(name), textColumn).at(0);
      text = std::regex_replace(text, std::regex(" DEFINER=`[^`]*`@`[^`]*`"), "");
      text = std::regex_replace(text, std::regex(" AUTO_INCREMENT=[0-9]+"), "");
      // The dump engine puts a trigger's body on a line of its own.
      text = std::regex_replace(text, std::regex("FOR EACH ROW\\s+"), "FOR EACH ROW ");
      print.push_back(kind + " " + text);
    }
  };
  add("TABLE",
      "SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA = " + db +
          " AND TABLE_TYPE <> 'SEQUENCE' ORDER BY 1",
      1);
  add("SEQUENCE",
      "SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA = " + db +
          " AND TABLE_TYPE = 'SEQUENCE' ORDER BY 1",
      1);
  add("PROCEDURE",
      "SELECT ROUTINE_NAME FROM information_schema.ROUTINES WHERE ROUTINE_TYPE = 'PROCEDURE' AND "
      "ROUTINE_SCHEMA = " +
          db + " ORDER BY 1",
      2);
  add("FUNCTION",
      "SELECT ROUTINE_NAME FROM information_schema.ROUTINES WHERE ROUTINE_TYPE = 'FUNCTION' AND "
      "ROUTINE_SCHEMA = " +
          db + " ORDER BY 1",
      2);
  add("TRIGGER",
      "SELECT TRIGGER_NAME FROM information_schema.TRIGGERS WHERE TRIGGER_SCHEMA = " + db + " ORDER BY 1", 2);
  add("EVENT", "SELECT EVENT_NAME FROM information_schema.EVENTS WHERE EVENT_SCHEMA = " + db + " ORDER BY 1",
      3);
  return print;
}

std::vector<std::string> Statements(const std::string& script) {
  std::istringstream in(script);
  TStatementSplitter splitter(in);
  std::vector<std::string> statements;
  std::string statement;
  while (splitter.next(statement)) {
    // Section comments travel in front of the statement they precede.
    statement = std::regex_replace(statement, std::regex(R"(^(\s*/\*[^*]*\*/\s*)+)"), "");
    statements.push_back(statement);
  }
  return statements;
}

}  // namespace lomarin::test
