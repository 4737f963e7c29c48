#pragma once

#include <string>

namespace lomarin {
class TMyConnection;
}

namespace lomarin::designers {

// Where a copied table goes. An empty SourceDatabase means the session's current database.
struct TCloneTableState {
  std::string SourceDatabase;
  std::string Table;
  std::string NewName;
  std::string TargetDatabase;
  std::string CurrentDatabase;
  bool WithData = false;
};

// The new name starts as the table's with "_new" after it.
std::string CloneDefaultName(const std::string& table);

// Renames the table in its dumped script so that running it makes the copy: the name after
// TABLE, TABLES, INTO and EXISTS becomes the new name, qualified with the target database unless
// that is the current one (the script runs there). A column that shares the table's name keeps it.
std::string RenameClonedScript(const std::string& script, const TCloneTableState& state);

// The CREATE script of the table, with its rows when asked, renamed to land as the copy. Nothing
// is dropped: an existing table of the new name makes the script fail.
std::string CloneTableScript(TMyConnection& session, const TCloneTableState& state);

}  // namespace lomarin::designers
