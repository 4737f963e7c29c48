#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "engine/transfer/dump_options.h"

namespace lomarin {

// Statements the export dialog fills its lists with.
namespace exportsql {
std::string databases();
std::string tableStatus(const std::string& database);
// quote: the single-quoted, escaped form of a value.
std::string procedureStatus(const std::string& database,
                            const std::function<std::string(const std::string&)>& quote);
std::string functionStatus(const std::string& database,
                           const std::function<std::string(const std::string&)>& quote);
std::string triggers(const std::string& database);
std::string fields(const std::string& database, const std::string& table);
}  // namespace exportsql

// The object-kind boxes of the export dialog.
struct TExportKinds {
  bool tables = true, data = true, database = false, users = false, storedProcs = false, views = false,
       triggers = false;
};
// The set a run dumps. Each listed combination of boxes maps to the bits of those boxes and any
// other combination keeps the set the box clicks built, which is again their bits: so the set is
// always the union of the checked boxes.
TMyDumpObjects ObjectsFromKinds(const TExportKinds& kinds);

// The condition builder of the "User SQL" tab.
struct TUserSqlCondition {
  std::string column, op, value;
};
struct TUserSqlState {
  std::string database;
  std::string table;
  std::array<TUserSqlCondition, 3> conditions;
  std::array<std::string, 2> joiners;  // "AND", "OR" or empty: empty disables the next condition
};
inline const std::vector<std::string> kUserSqlOperators = {"=",  "<>",   ">",       ">=",          "<",
                                                           "<=", "LIKE", "BETWEEN", "IS NOT NULL", "IS NULL"};
// "SELECT * FROM `db`.`t` WHERE ..." from the tab (the session may be on another database). A condition
// without a column is left out; BETWEEN takes "low AND high" in its value. quote: the single-quoted, escaped
// form of a value.
std::string UserSqlQuery(const TUserSqlState& state,
                         const std::function<std::string(const std::string&)>& quote);

enum class TExportItemKind { Table, Procedure, Function, Trigger };
struct TExportItem {
  std::string name;
  TExportItemKind kind = TExportItemKind::Table;
  bool checked = true;
};

// Everything the dialog's OK button reads.
struct TExportDbState {
  std::string database;         // the chosen one
  std::string currentDatabase;  // the session's
  int serverMajorVersion = 5;
  std::vector<TExportItem> tables;
  std::vector<TExportItem> routines;  // procedures, functions and triggers
  bool fullExport = false;
  TExportKinds kinds;
  bool userSqlTab = false;
  TUserSqlState userSql;
  std::filesystem::path directory;
  std::string fileName;
  bool saveToFile = true;
  bool onlyFile = true;
};

// One engine run of an export.
struct TExportRun {
  TMyDumpObjects objects;
  std::string tableNames, storedProcNames, triggerNames;
  bool queryRun = false;  // BackupQuery with query, all options off but HexBlob
  std::string query;
  std::filesystem::path file;  // empty: the clipboard
  std::string objectName;      // a run of one list item: uncheck it when done
  bool isTableItem = false;
};

// The runs the OK button makes, in order, for the four modes: full export, User SQL, one file
// per object ("Only file" cleared), one script.
std::vector<TExportRun> PlanExport(const TExportDbState& state,
                                   const std::function<std::string(const std::string&)>& quote);

// The set a full export dumps on a server of that major version.
TMyDumpObjects FullExportObjects(int serverMajorVersion);
// The kinds of a set for the user to read, in script order ("the database, every account of the
// server with its grants and password hash, ...").
std::string DumpKindsText(TMyDumpObjects objects);

// The folder scripts go to: the stored one when it ends in a separator, else fallback.
std::filesystem::path BackupFolder(const std::string& stored, const std::filesystem::path& fallback);
// The folder the dialog starts with: the "Backup Directory " option when set (a folder chosen in
// the options has no separator at its end), else fallback.
std::filesystem::path ConfiguredBackupFolder(const std::string& option,
                                             const std::filesystem::path& fallback);

}  // namespace lomarin
