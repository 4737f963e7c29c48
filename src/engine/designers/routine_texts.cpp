#include "engine/designers/routine_texts.h"

#include "engine/designers/sql_param.h"

namespace lomarin::designers {

// Only the folder text "Triggers" drops a trigger: the caller's word "trigger" is compared upper-cased
// against itself in lower case and so never matches, which keeps a loaded trigger from being dropped
// by a document opened on it by kind word.
std::string BuildRoutineDropSql(std::string_view kind, std::string_view name) {
  const std::string kindWord = AsciiUpper(kind);
  const std::string object = HyphenQuoted(name);
  if (kind == "Procedures" || kindWord == "PROCEDURE") return "drop procedure if exists " + object;
  if (kind == "Functions" || kindWord == "FUNCTION") return "drop function if exists " + object;
  if (kind == "Triggers") return "drop trigger " + object;
  return {};
}

}  // namespace lomarin::designers
