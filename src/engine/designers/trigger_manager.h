#pragma once

#include <array>
#include <string>
#include <string_view>

namespace lomarin::designers {

inline constexpr std::array<std::string_view, 2> kTriggerTimes = {"BEFORE", "AFTER"};
inline constexpr std::array<std::string_view, 3> kTriggerEvents = {"INSERT", "UPDATE", "DELETE"};

// The trigger manager's fields.
struct TTriggerState {
  std::string Database;
  std::string Table;
  std::string Name;
  std::string Time;
  std::string Event;
  std::string Body;
};

// The message that stops the statement, or empty when it can be built.
std::string CheckCreateTrigger(const TTriggerState& state);
std::string BuildCreateTriggerSql(const TTriggerState& state);
// The drop that precedes re-creating the loaded trigger.
std::string BuildDropTriggerSql(std::string_view database, std::string_view name);
std::string TriggerEditCaption(std::string_view database, std::string_view name);

std::string TriggerTablesSql(std::string_view database);
// Bound parameters :db and :name.
inline constexpr std::string_view kLoadTriggerSql =
    "select  trigger_schema,trigger_name,event_manipulation,\r\n"
    "       event_object_table,action_order,\r\n"
    "       action_condition,action_statement,action_orientation,action_timing\r\n"
    "from information_schema.triggers \r\n"
    "where trigger_schema =:db and\r\n"
    "      trigger_name =:name";

}  // namespace lomarin::designers
