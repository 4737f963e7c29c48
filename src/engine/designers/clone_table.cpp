#include "engine/designers/clone_table.h"

#include "engine/dataview/browse_sql.h"
#include "engine/transfer/my_dump.h"

namespace lomarin::designers {

std::string CloneDefaultName(const std::string& table) { return table + "_new"; }

std::string RenameClonedScript(const std::string& script, const TCloneTableState& state) {
  const std::string name = dataview::BackQuote(state.Table);
  const std::string copy =
      state.TargetDatabase.empty() || state.TargetDatabase == state.CurrentDatabase
          ? dataview::BackQuote(state.NewName)
          : dataview::BackQuote(state.TargetDatabase) + "." + dataview::BackQuote(state.NewName);
  std::string out;
  size_t from = 0;
  for (size_t at = script.find(name); at != std::string::npos; at = script.find(name, at + name.size())) {
    const std::string_view before = std::string_view(script).substr(0, at);
    const bool head = before.ends_with("TABLE ") || before.ends_with("TABLES ") ||
                      before.ends_with("INTO ") || before.ends_with("EXISTS ");
    if (!head) continue;
    out.append(script, from, at - from).append(copy);
    from = at + name.size();
  }
  return out.append(script, from);
}

std::string CloneTableScript(TMyConnection& session, const TCloneTableState& state) {
  TMyDump dump(&session);
  dump.Database = state.SourceDatabase;
  dump.TableNames = state.Table;
  dump.Objects = TMyDumpObject::doTables;
  if (state.WithData) dump.Objects.add(TMyDumpObject::doData);
  dump.Options.GenerateHeader = false;
  dump.Options.AddDrop = false;
  dump.Options.QuoteNames = true;
  dump.Backup();
  return RenameClonedScript(dump.Text(), state);
}

}  // namespace lomarin::designers
