#include "engine/admin/admin_statements.h"

#include "engine/dataview/browse_sql.h"

namespace lomarin::admin {

std::string KillSQL(unsigned long long connectionId) { return "kill " + std::to_string(connectionId); }

std::string TableStatusSQL(std::string_view database) {
  return "show table status " + std::string(" from ") + dataview::BackQuote(database);
}

bool PluginsTabShown(int serverVersionNumber) { return serverVersionNumber >= 51; }

TProcessColour ProcessColourOf(std::string_view command) {
  if (command == "Query") return TProcessColour::Query;
  if (command == "Sleep") return TProcessColour::Sleep;
  if (command == "Killed") return TProcessColour::Killed;
  return TProcessColour::None;
}

}  // namespace lomarin::admin
