#include "engine/designers/event_manager.h"

#include <algorithm>

#include "engine/dataview/browse_sql.h"

namespace lomarin::designers {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

}  // namespace

std::string CheckEvent(const TEventState& state) {
  if (state.Name.empty()) return "Missing name.";
  if (state.Body.empty()) return "Missing event source.";
  return {};
}

// A text that starts with a digit and holds only digits, blanks and the separators of a date-time
// ("-", ":", ".", "/") is a literal and goes between quotes; the quotes then never enclose a quote.
// Anything else (CURRENT_TIMESTAMP, NOW() + INTERVAL 1 DAY, an already quoted text) is an
// expression and is written as typed.
std::string ScheduleTime(std::string_view time) {
  const bool literal =
      !time.empty() && isDigit(time.front()) && std::all_of(time.begin(), time.end(), [](char c) {
        return isDigit(c) || c == ' ' || c == '-' || c == ':' || c == '.' || c == '/';
      });
  return literal ? "'" + std::string(time) + "'" : std::string(time);
}

// A compound value ("1:30" for HOUR_MINUTE) reads as one only between quotes; a whole number and
// anything else are written as typed.
std::string IntervalValue(std::string_view value) {
  const bool number = !value.empty() && std::all_of(value.begin(), value.end(), isDigit);
  return number ? std::string(value) : ScheduleTime(value);
}

std::string BuildEventSql(const TEventState& state, const explorer::ValueEscaper& escape) {
  std::string schedule;
  if (!state.Recurring) {
    schedule = "ON SCHEDULE AT " + ScheduleTime(state.At);
    if (!state.AtInterval.empty()) schedule += " + INTERVAL " + IntervalValue(state.AtInterval) + " " + state.AtIntervalUnit;
  } else {
    schedule = "ON SCHEDULE EVERY " + IntervalValue(state.EveryValue) + " " + state.EveryUnit;
    if (state.HasStart) schedule += " STARTS " + ScheduleTime(state.Starts);
    if (state.HasEnd) schedule += " ENDS " + ScheduleTime(state.Ends);
  }
  const bool renamed = state.Alter && !state.AlterName.empty() && state.AlterName != state.Name;
  const std::string sql = "CREATE EVENT " + dataview::BackQuote(renamed ? state.AlterName : state.Name) +
                          "\n" + schedule + "\n" +
                          (state.NotPreserve ? "ON COMPLETION NOT PRESERVE" : "ON COMPLETION PRESERVE") + "\n" +
                          (renamed ? "RENAME TO " + dataview::BackQuote(state.Name) + "\n" : std::string()) +
                          (state.Enabled ? "ENABLE" : "DISABLE") + "\n" +            //
                          "COMMENT '" + escape(state.Comment) + "'" + " DO" + "\n" +  //
                          state.Body;
  return state.Alter ? replaceAll(sql, "CREATE EVENT", "ALTER EVENT") : sql;
}

std::string EventEditCaption(std::string_view database, std::string_view name) {
  return "EVENT [" + std::string(database) + "." + std::string(name) + "]";
}

}  // namespace lomarin::designers
