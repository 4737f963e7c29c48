#include "engine/designers/routine_source.h"

#include <regex>

#include "engine/dataview/browse_sql.h"
#include "engine/designers/sql_param.h"
#include "engine/transfer/my_dump.h"

namespace lomarin::designers {

namespace {

std::string firstMatch(std::string_view text, const std::regex& pattern) {
  std::string spaced(text);
  // Quoted names are matched like bare ones.
  for (char& c : spaced)
    if (c == '`') c = ' ';
  std::smatch match;
  return std::regex_search(spaced, match, pattern) ? match.str(2) : std::string();
}

}  // namespace

TRoutineKind RoutineKindOf(std::string_view kind) {
  const std::string word = AsciiUpper(kind);
  if (word == "PROCEDURES" || word == "PROCEDURE") return TRoutineKind::Procedure;
  if (word == "FUNCTIONS" || word == "FUNCTION") return TRoutineKind::Function;
  if (word == "TRIGGERS" || word == "TRIGGER") return TRoutineKind::Trigger;
  if (word == "EVENTS" || word == "EVENT") return TRoutineKind::Event;
  return TRoutineKind::Other;
}

std::string RoutineLoadSql(TRoutineKind kind, std::string_view database, std::string_view name) {
  const std::string object = dataview::BackQuote(database) + "." + HyphenQuoted(name);
  switch (kind) {
    case TRoutineKind::Procedure:
      return "SHOW CREATE PROCEDURE " + object;
    case TRoutineKind::Function:
      return "SHOW CREATE FUNCTION " + object;
    case TRoutineKind::Event:
      return "SHOW CREATE EVENT " + object;
    default:
      return {};
  }
}

int RoutineSourceColumn(TRoutineKind kind) { return kind == TRoutineKind::Event ? 3 : 2; }

std::string RoutineScript(std::string_view createText) {
  return "DELIMITER $$\n\n" + std::string(createText) + "$$\n\nDELIMITER ;\n";
}

std::string DumpTriggerSource(TMyConnection& session, std::string_view database, std::string_view name) {
  TMyDump dump(&session);
  dump.Database = database;
  dump.TriggerNames = name;
  dump.Objects = TMyDumpObject::doTriggers;
  dump.Options.GenerateHeader = false;
  dump.Options.AddDrop = false;
  dump.Backup();
  return dump.Text();
}

// A name may hold a hyphen: quoted names are matched with their quotes blanked.
std::string RoutineNameInText(std::string_view text) {
  static const std::regex pattern(
      R"((CREATE PROCEDURE|CREATE FUNCTION |create procedure|create function)[\s]*([-_a-zA-Z0-9]+)[\s\n]+)",
      std::regex::icase);
  return firstMatch(text, pattern);
}

std::string RoutineKindInText(std::string_view text) {
  static const std::regex pattern(R"((CREATE |create)[\s]*([-_a-zA-Z0-9]+)[\s\n]+)", std::regex::icase);
  return firstMatch(text, pattern);
}

}  // namespace lomarin::designers
