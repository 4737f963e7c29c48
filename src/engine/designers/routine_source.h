#pragma once

#include <string>
#include <string_view>

#include "engine/connect/my_connection.h"

namespace lomarin::designers {

// What a routine document holds, from a tree folder text ("Procedures") or a caller's kind word
// ("PROCEDURE", "trigger", "events"); the words compare without regard to case.
enum class TRoutineKind { Procedure, Function, Trigger, Event, Other };
TRoutineKind RoutineKindOf(std::string_view kind);

// The SHOW CREATE statement that loads a procedure, function or event, and the column of its
// result that holds the text; empty for the other kinds (a trigger comes from the dump engine).
std::string RoutineLoadSql(TRoutineKind kind, std::string_view database, std::string_view name);
int RoutineSourceColumn(TRoutineKind kind);
// A loaded CREATE text as the editor shows it: between DELIMITER lines, so that compiling it as a
// script sends a compound body whole.
std::string RoutineScript(std::string_view createText);
// A trigger's CREATE TRIGGER text as the dump engine writes it, without the script header and
// the drop before it. Throws ServerError or DumpError.
std::string DumpTriggerSource(TMyConnection& session, std::string_view database, std::string_view name);

// The name and the kind word a compiled text declares ("my-proc" and "PROCEDURE" for
// "CREATE PROCEDURE `my-proc` ( )"); empty when the text has none.
std::string RoutineNameInText(std::string_view text);
std::string RoutineKindInText(std::string_view text);

}  // namespace lomarin::designers
