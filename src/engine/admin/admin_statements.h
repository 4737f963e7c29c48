#pragma once

#include <string>
#include <string_view>

namespace lomarin::admin {

// The fixed statements of the administration windows, as the server is sent them.
inline constexpr std::string_view kProcessListSQL = "show full processlist ";
inline constexpr std::string_view kVariablesSQL = "SHOW VARIABLES ";
inline constexpr std::string_view kServerStatusSQL = "SHOW STATUS ";
inline constexpr std::string_view kPluginsSQL = "show plugins";
inline constexpr std::string_view kShowDatabasesSQL = "Show databases ";

// The process list's row key and the field that colours a row.
inline constexpr std::string_view kProcessIdField = "ID";
inline constexpr std::string_view kCommandField = "Command";
// The statement text of a process row.
inline constexpr int kProcessInfoColumn = 7;

std::string KillSQL(unsigned long long connectionId);

// "show table status  from `db`": the tables of one database with their sizes.
std::string TableStatusSQL(std::string_view database);

// "show plugins" exists from 5.1 on (version number 51).
bool PluginsTabShown(int serverVersionNumber);

enum class TProcessColour { None, Query, Sleep, Killed };
// How a process row is painted, by its "Command" value.
TProcessColour ProcessColourOf(std::string_view command);

}  // namespace lomarin::admin
