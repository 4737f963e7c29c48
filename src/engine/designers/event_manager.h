#pragma once

#include <array>
#include <string>
#include <string_view>

#include "engine/app/explorer_nodes.h"

namespace lomarin::designers {

inline constexpr std::array<std::string_view, 14> kEventIntervalUnits = {
    "YEAR",   "QUARTER",    "MONTH",    "DAY",        "HOUR",       "MINUTE",      "WEEK",
    "SECOND", "YEAR_MONTH", "DAY_HOUR", "DAY_MINUTE", "DAY_SECOND", "HOUR_MINUTE", "HOUR_SECOND"};

// The event manager's fields. Times are as typed or shown ("YYYY-MM-DD HH:MM:SS") or an expression.
struct TEventState {
  std::string Name;
  bool Enabled = true;
  bool Recurring = false;
  // One-time: AT At, plus INTERVAL AtInterval AtIntervalUnit when a value is given.
  std::string At;
  std::string AtInterval;
  std::string AtIntervalUnit;
  // Recurring: EVERY EveryValue EveryUnit, with optional start and end.
  std::string EveryValue;
  std::string EveryUnit{kEventIntervalUnits[0]};
  bool HasStart = false;
  std::string Starts;
  bool HasEnd = false;
  std::string Ends;
  bool NotPreserve = true;
  std::string Comment;
  std::string Body;
  bool Alter = false;
  // In alter mode, the name the server holds the event under; another Name renames it.
  std::string AlterName;
};

// The message that stops the statement, or empty when it can be built.
std::string CheckEvent(const TEventState& state);
// How a schedule time is written: a date-time literal between single quotes, an expression bare.
std::string ScheduleTime(std::string_view time);
// How an interval value is written: a compound one ("1:30", "1 2") between single quotes.
std::string IntervalValue(std::string_view value);
// The CREATE EVENT lines joined by "\n", or the ALTER EVENT text in alter mode. The comment goes
// through escape (the session's client library, which knows the SQL mode).
std::string BuildEventSql(const TEventState& state, const explorer::ValueEscaper& escape);
std::string EventEditCaption(std::string_view database, std::string_view name);

// Bound parameters :db and :event.
inline constexpr std::string_view kLoadEventSql =
    "select event_schema, event_name, event_definition, event_type, execute_at,\r\n"
    "       interval_value,interval_field, starts, ends, status,\r\n"
    "       on_completion, created, last_altered, last_executed, event_comment\r\n"
    "from information_schema.events\r\n"
    "where event_schema=:db and\r\n"
    "      event_name=:event";

}  // namespace lomarin::designers
