#include "engine/compare/data_sync_job.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <utility>

#include "engine/compare/blob_file.h"
#include "engine/compare/compare_error.h"
#include "engine/compare/my_sql_exec.h"
#include "engine/compare/sync_statements.h"
#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::vector<std::string> baseTables(TMyConnection& connection) {
  TMyQuery query(connection);
  query.SQL = "SHOW FULL TABLES";
  query.Open();
  std::vector<std::string> tables;
  while (query.Next())
    if (query.Value(1) == "BASE TABLE") tables.emplace_back(query.Value(0));
  return tables;
}

// Whether a target table of the run has a foreign key or is referenced by one; a side connection,
// as the comparers open their own. Unknown counts as no: the comparers report the failure.
bool takesPartInForeignKeys(const TMySessionSettings& target, const std::vector<TDataSyncPair>& pairs) {
  if (pairs.empty()) return false;
  try {
    TMyConnection connection;
    connection.Settings = target;
    connection.Connect();
    std::string names;
    for (const TDataSyncPair& pair : pairs)
      names += (names.empty() ? "'" : ", '") + EscapeString(connection, pair.Target) + "'";
    const std::string db = "'" + EscapeString(connection, target.Database) + "'";
    TMyQuery query(connection);
    query.SQL = "SELECT COUNT(*) FROM information_schema.REFERENTIAL_CONSTRAINTS WHERE (CONSTRAINT_SCHEMA = " +
                db + " AND TABLE_NAME IN (" + names + ")) OR (UNIQUE_CONSTRAINT_SCHEMA = " + db +
                " AND REFERENCED_TABLE_NAME IN (" + names + "))";
    query.Open();
    return query.Next() && query.Value(0) != "0";
  } catch (const std::exception&) {
    return false;
  }
}

void addTotals(TSyncCounters& totals, const TSyncCounters& pair) {
  totals.Inserted += pair.Inserted;
  totals.Updated += pair.Updated;
  totals.Deleted += pair.Deleted;
  totals.Equal += pair.Equal;
  totals.Errors += pair.Errors;
  totals.ReadMaster += pair.ReadMaster;
  totals.ReadTarget += pair.ReadTarget;
}

}  // namespace

std::vector<TDataSyncPair> AutoSelectTables(TMyConnection& master, TMyConnection& target,
                                            bool caseSensitive) {
  const std::vector<std::string> targetTables = baseTables(target);
  std::vector<TDataSyncPair> pairs;
  for (const std::string& name : baseTables(master)) {
    auto same = [&](const std::string& t) { return caseSensitive ? t == name : lower(t) == lower(name); };
    // An exact match wins over one that differs only in case.
    auto found = std::find(targetTables.begin(), targetTables.end(), name);
    if (found == targetTables.end()) found = std::find_if(targetTables.begin(), targetTables.end(), same);
    if (found != targetTables.end()) pairs.push_back({name, *found});
  }
  return pairs;
}

void TDataSyncJob::log(const std::string& line) const {
  if (OnLogNextLine) OnLogNextLine(line);
}

void TDataSyncJob::Stop() { stop_ = true; }

TDataSyncResult TDataSyncJob::Run(const TDataSyncSettings& settings) {
  TDataSyncResult result;
  auto write = [&](std::string_view text) {
    if (settings.OnScriptText) settings.OnScriptText(text);
    if (!settings.OnScriptText || settings.Apply) result.Script += text;
  };

  std::unique_ptr<TBlobFileWriter> blobFile;
  if (!settings.BlobFileName.empty()) blobFile = std::make_unique<TBlobFileWriter>(settings.BlobFileName);
  const bool charset = !settings.Charset.empty() && settings.Charset != "default";
  write(ScriptHeader({charset ? settings.Charset : "", charset ? settings.Charset : "",
                      ScriptName(settings.Target.Database, true), blobFile ? blobFile->path() : ""}));

  // Rows go in key order, table by table, so a foreign key may see its row only later; nor may a
  // cascade of the target's keys remove rows the source keeps. Tables without keys between them
  // get the plain script.
  const bool foreignKeys = takesPartInForeignKeys(settings.Target, settings.Pairs);
  bool checksOff = false;
  auto writeStatements = [&](std::string_view text) {
    if (foreignKeys && !std::exchange(checksOff, true)) write("SET FOREIGN_KEY_CHECKS=0;\r\n");
    write(text);
  };

  TDBCConnectionMySql masterSide, targetSide;
  masterSide.Settings = settings.Master;
  targetSide.Settings = settings.Target;
  if (charset) masterSide.Settings.Charset = targetSide.Settings.Charset = settings.Charset;

  for (size_t i = 0; i < settings.Pairs.size(); ++i) {
    const TDataSyncPair& pair = settings.Pairs[i];
    const std::string names = pair.Master + " : " + pair.Target;
    if (stop_) {
      ++result.FailedPairs;
      log("Error compare tables " + names + " Stopped.");
      break;
    }
    TTableDataComparer comparer;
    comparer.TableNameMaster = pair.Master;
    comparer.TableNameTarget = pair.Target;
    comparer.DBCConnectionMaster = &masterSide;
    comparer.DBCConnectionTarget = &targetSide;
    comparer.CaseSensitive = settings.CaseSensitive;
    comparer.ScriptOptions.WriteHeader = false;
    comparer.BlobFile = blobFile.get();
    comparer.HexBlobs = settings.HexBlobs;
    comparer.OnScriptText = writeStatements;
    comparer.OnLogNextLine = OnLogNextLine;
    // The comparer is asked to stop from its own thread, so no other thread touches it.
    comparer.OnProgress = [&](uint64_t m, uint64_t mt, uint64_t t, uint64_t tt) {
      if (stop_) comparer.Stop();
      if (OnProgress) OnProgress(i, m, mt, t, tt);
    };
    try {
      comparer.CompareData();
      log("Compare tables " + names + " finalized with out errors");
    } catch (const std::exception& e) {
      ++result.FailedPairs;
      log("Error compare tables " + names + " " + e.what());
    }
    addTotals(result.Totals, comparer.Counters());
  }
  if (checksOff) write("SET FOREIGN_KEY_CHECKS=1;\r\n");
  result.Stopped = stop_;
  if (blobFile) blobFile->Commit();
  log("All: " + std::to_string(result.Totals.All()) + ", Deleted: " + std::to_string(result.Totals.Deleted) +
      ", Updated: " + std::to_string(result.Totals.Updated) + ", Inserted: " +
      std::to_string(result.Totals.Inserted) + ", Equal: " + std::to_string(result.Totals.Equal) + ".");

  if (settings.Apply && !result.Stopped && result.Totals.Differences()) {
    TMyConnection target;
    target.Settings = targetSide.Settings;
    target.Connect();
    TMySQLExec exec;
    exec.Connection = &target;
    exec.OnLogNextLine = OnLogNextLine;
    exec.OnErrorMessage = [this](const std::string& message) { log("Error: " + message); };
    result.ApplyErrors = exec.ExecuteScript(result.Script).Errors;
  }
  return result;
}

}  // namespace lomarin
