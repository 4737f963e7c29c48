#include "engine/designers/trigger_manager.h"

#include "engine/dataview/browse_sql.h"
#include "engine/transfer/sql_text.h"

namespace lomarin::designers {

std::string CheckCreateTrigger(const TTriggerState& state) {
  if (state.Name.empty()) return "Missing name.";
  if (state.Time.empty()) return "Missing trigger time.";
  if (state.Event.empty()) return "Missing trigger event.";
  if (state.Body.empty()) return "Missing trigger source.";
  return {};
}

// The table comes from the server's list, so one that would not read back bare (a hyphen, a
// reserved word) is back-quoted; the name is typed and stays as typed.
std::string BuildCreateTriggerSql(const TTriggerState& state) {
  return "CREATE TRIGGER " + dataview::BackQuote(state.Database) + "." + state.Name + " " + state.Time + " " +
         state.Event + "\n" +                                                      //
         " ON " + ScriptName(state.Table, false) + "\n" + " FOR EACH ROW " + "\n" +  //
         state.Body;
}

// Only a hyphen in the database makes the name quoted too: it is what would cut the bare name.
std::string BuildDropTriggerSql(std::string_view database, std::string_view name) {
  const std::string qualified = database.find('-') == std::string_view::npos
                                    ? dataview::BackQuote(database) + "." + std::string(name)
                                    : dataview::BackQuote(database) + "." + dataview::BackQuote(name);
  return "drop trigger " + qualified;
}

std::string TriggerEditCaption(std::string_view database, std::string_view name) {
  return "Trigger [" + std::string(database) + "." + std::string(name) + "]";
}

std::string TriggerTablesSql(std::string_view database) {
  return "show table status " + std::string(" from ") + dataview::BackQuote(database);
}

}  // namespace lomarin::designers
