#include "engine/transfer/export_plan.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "engine/transfer/dump_catalog.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

using enum TMyDumpObject;

std::string backQuoted(const std::string& name) { return ScriptName(name, true); }

std::string statusWhere(const std::string& database,
                        const std::function<std::string(const std::string&)>& quote) {
  return " where lower(db) = lower(" + quote(database) + ")";
}

// "a,b,c " as the engine's name lists take it, each name followed by suffix.
std::string nameList(const std::vector<std::string>& names, const std::string& suffix = {}) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ",") + ListedName(name) + suffix;
  return list.empty() ? list : list + " ";
}

std::string fileNameFor(std::string object) {
  std::replace(object.begin(), object.end(), '/', '_');
  return object + ".sql";
}

bool isRoutine(const TExportItem& item) {
  return item.kind == TExportItemKind::Procedure || item.kind == TExportItemKind::Function;
}

// Splits "low AND high" at its first AND, in any letter case.
std::pair<std::string, std::string> betweenBounds(const std::string& value) {
  std::string lower = value;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const size_t at = lower.find(" and ");
  if (at == std::string::npos)
    throw std::invalid_argument("BETWEEN needs a value of the form \"low AND high\"");
  return {value.substr(0, at), value.substr(at + 5)};
}

}  // namespace

namespace exportsql {

std::string databases() { return "Show databases "; }

std::string tableStatus(const std::string& database) {
  return "show table status  from " + backQuoted(database);
}

std::string procedureStatus(const std::string& database,
                            const std::function<std::string(const std::string&)>& quote) {
  return "SHOW PROCEDURE STATUS " + statusWhere(database, quote);
}

std::string functionStatus(const std::string& database,
                           const std::function<std::string(const std::string&)>& quote) {
  return "SHOW FUNCTION STATUS " + statusWhere(database, quote);
}

std::string triggers(const std::string& database) {
  return "SHOW TRIGGERS FROM " + ScriptName(database, false);
}

std::string fields(const std::string& database, const std::string& table) {
  return "show fields FROM " + ScriptName(database, false) + "." + backQuoted(table);
}

}  // namespace exportsql

TMyDumpObjects ObjectsFromKinds(const TExportKinds& kinds) {
  TMyDumpObjects objects;
  if (kinds.tables) objects.add(doTables);
  if (kinds.data) objects.add(doData);
  if (kinds.database) objects.add(doDatabase);
  if (kinds.users) objects.add(doUsers);
  if (kinds.storedProcs) objects.add(doStoredProcs);
  if (kinds.views) objects.add(doViews);
  if (kinds.triggers) objects.add(doTriggers);
  return objects;
}

std::string UserSqlQuery(const TUserSqlState& state,
                         const std::function<std::string(const std::string&)>& quote) {
  if (state.table.empty()) throw std::invalid_argument("Choose a table");
  std::string where;
  for (size_t i = 0; i < state.conditions.size(); ++i) {
    if (i > 0 && state.joiners[i - 1].empty()) break;
    const TUserSqlCondition& c = state.conditions[i];
    if (c.column.empty()) continue;
    if (std::find(kUserSqlOperators.begin(), kUserSqlOperators.end(), c.op) == kUserSqlOperators.end())
      throw std::invalid_argument("Unknown operator \"" + c.op + "\"");
    std::string condition = backQuoted(c.column) + " " + c.op;
    if (c.op == "BETWEEN") {
      const auto [low, high] = betweenBounds(c.value);
      condition += " " + quote(low) + " AND " + quote(high);
    } else if (c.op != "IS NULL" && c.op != "IS NOT NULL") {
      condition += " " + quote(c.value);
    }
    where += where.empty() ? " WHERE " : " " + state.joiners[i - 1] + " ";
    where += condition;
  }
  return "SELECT * FROM " + backQuoted(state.database) + "." + backQuoted(state.table) + where;
}

std::vector<TExportRun> PlanExport(const TExportDbState& s,
                                   const std::function<std::string(const std::string&)>& quote) {
  const bool routinesKnown = s.serverMajorVersion >= 5;
  const std::filesystem::path outputFile = s.saveToFile ? s.directory / s.fileName : std::filesystem::path();
  const std::string suffix = "." + s.database;
  if (s.fullExport) {
    TExportRun run;
    run.objects = FullExportObjects(s.serverMajorVersion);
    if (s.database != s.currentDatabase) {
      std::vector<std::string> tables, routines;
      for (const auto& t : s.tables) tables.push_back(t.name);
      for (const auto& r : s.routines)
        if (isRoutine(r)) routines.push_back(r.name);
      run.tableNames = nameList(tables, suffix);
      if (routinesKnown) run.storedProcNames = nameList(routines, suffix);
    }
    run.file = outputFile;
    return {run};
  }
  if (s.userSqlTab) {
    TExportRun run;
    run.objects = doData;
    run.queryRun = true;
    TUserSqlState query = s.userSql;
    query.database = s.database;
    run.query = UserSqlQuery(query, quote);
    run.file = outputFile;
    return {run};
  }
  const TMyDumpObjects objects = ObjectsFromKinds(s.kinds);
  if (!s.onlyFile) {
    std::vector<TExportRun> runs;
    for (const auto& t : s.tables) {
      if (!t.checked) continue;
      TExportRun& run = runs.emplace_back();
      run.objects = objects;
      run.tableNames = ListedName(t.name) + suffix;
      run.file = s.directory / fileNameFor(t.name);
      run.objectName = t.name;
      run.isTableItem = true;
    }
    for (const auto& r : routinesKnown ? s.routines : std::vector<TExportItem>{}) {
      if (!r.checked) continue;
      TExportRun& run = runs.emplace_back();
      if (r.kind == TExportItemKind::Trigger) {
        run.objects = doTriggers;
        run.triggerNames = ListedName(r.name);
      } else {
        run.objects = doStoredProcs;
        run.storedProcNames = ListedName(r.name);
      }
      run.file = s.directory / fileNameFor(r.name);
      run.objectName = r.name;
    }
    return runs;
  }
  TExportRun run;
  run.objects = objects;
  const auto checkedNames = [](const std::vector<TExportItem>& items, auto pick) {
    std::vector<std::string> names;
    for (const auto& item : items)
      if (item.checked && pick(item)) names.push_back(item.name);
    return names;
  };
  const auto all = [](const std::vector<TExportItem>& items) {
    return std::all_of(items.begin(), items.end(), [](const auto& i) { return i.checked; });
  };
  if (!all(s.tables)) run.tableNames = nameList(checkedNames(s.tables, [](const auto&) { return true; }));
  if (!all(s.routines)) {
    run.storedProcNames = nameList(checkedNames(s.routines, isRoutine));
    run.triggerNames =
        nameList(checkedNames(s.routines, [](const auto& i) { return i.kind == TExportItemKind::Trigger; }));
  }
  run.file = outputFile;
  return {run};
}

TMyDumpObjects FullExportObjects(int serverMajorVersion) {
  return TMyDumpObjects(serverMajorVersion >= 5 ? 127 : 27);
}

std::string DumpKindsText(TMyDumpObjects objects) {
  static const std::pair<TMyDumpObject, const char*> kinds[] = {
      {doDatabase, "the database"},
      {doUsers, "every account of the server with its grants and password hash"},
      {doStoredProcs, "stored procedures and functions"},
      {doTables, "table scripts"},
      {doData, "table data"},
      {doViews, "views"},
      {doTriggers, "triggers"},
  };
  std::string text;
  for (const auto& [kind, words] : kinds)
    if (objects.has(kind)) text += (text.empty() ? "" : ", ") + std::string(words);
  return text;
}

std::filesystem::path ConfiguredBackupFolder(const std::string& option,
                                             const std::filesystem::path& fallback) {
  if (option.empty()) return fallback;
  std::filesystem::path folder(option);
  return folder.has_filename() ? folder / "" : folder;
}

std::filesystem::path BackupFolder(const std::string& stored, const std::filesystem::path& fallback) {
  if (stored.empty() || stored.back() != std::filesystem::path::preferred_separator) return fallback;
  return stored;
}

}  // namespace lomarin
