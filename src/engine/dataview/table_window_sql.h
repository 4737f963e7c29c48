#pragma once

#include <string>

#include "engine/connect/my_connection.h"

namespace lomarin::dataview {

// Statements behind the tabs of the table window. `name` is the window's quoted name; database
// and table are plain names, escaped here where they become string literals.
std::string ColumnsTabSQL(const std::string& name);
std::string TriggersTabSQL(TMyConnection& session, const std::string& database, const std::string& table);
std::string PartitionsTabSQL(TMyConnection& session, const std::string& database, const std::string& table);
std::string ScriptTabSQL(const std::string& name, bool isView);

}  // namespace lomarin::dataview
