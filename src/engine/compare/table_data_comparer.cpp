#include "engine/compare/table_data_comparer.h"

#include <algorithm>

#include "engine/compare/blob_file.h"
#include "engine/compare/compare_error.h"
#include "engine/compare/my_sql_exec.h"
#include "engine/compare/sync_merge.h"
#include "engine/compare/sync_script_output.h"
#include "engine/connect/my_query.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

struct TTableDataComparer::Run {
  TMyConnection* master = nullptr;
  TMyConnection* target = nullptr;
  std::unique_ptr<TBlobFileWriter> ownBlobFile;
};

namespace {

bool writesBinary(const TSyncSidePlan& side) {
  auto binary = [](const TSyncColumn* c) { return c->ValueKind == TSyncValueKind::Binary; };
  return std::any_of(side.Keys.begin(), side.Keys.end(), binary) ||
         std::any_of(side.Data.begin(), side.Data.end(), binary);
}

uint64_t countRows(TMyConnection& connection, const std::string& table) {
  TMyQuery query(connection);
  query.SQL = "Select count(*) from " + ScriptName(table, true);
  query.Open();
  query.Next();
  return std::stoull(std::string(query.Value(0)));
}

std::string lookUp(TMyConnection& connection, const std::string& database, const std::string& table,
                   bool caseSensitive) {
  if (auto found = FindTable(connection, table, caseSensitive)) return *found;
  throw CompareError("Database: " + database + " Table: " + table + " not exists.");
}

}  // namespace

void TTableDataComparer::log(const std::string& line) const {
  if (OnLogNextLine) OnLogNextLine(line);
}

void TTableDataComparer::error(const std::string& message) {
  ++counters_.Errors;
  log("Error: " + message);
  if (OnErrorMessage) OnErrorMessage(message);
}

void TTableDataComparer::CompareData() {
  stop_ = false;
  counters_ = {};
  if (!DBCConnectionMaster) throw CompareError("TTableDataComparer: Master connection not assigned...");
  if (!DBCConnectionTarget) throw CompareError("TTableDataComparer: Target connection not assigned...");
  Run r;
  try {
    run(r);
  } catch (const std::exception& e) {
    error(e.what());
    log("Errors: " + std::to_string(counters_.Errors));
    DBCConnectionMaster->Disconnect();
    DBCConnectionTarget->Disconnect();
    throw;
  }
  DBCConnectionMaster->Disconnect();
  log("Disconnecting from master database: Ok.");
  DBCConnectionTarget->Disconnect();
  log("Disconnecting from target database: Ok.");
}

void TTableDataComparer::run(Run& r) {
  log("Connecting to master-database...: " + DBCConnectionMaster->Database());
  r.master = &DBCConnectionMaster->Connect();
  log("Connecting to target-database...: " + DBCConnectionTarget->Database());
  r.target = &DBCConnectionTarget->Connect();
  log("Connecting: Successfull...");

  const std::string masterTable =
      lookUp(*r.master, DBCConnectionMaster->Database(), TableNameMaster, CaseSensitive);
  const std::string targetTable =
      lookUp(*r.target, DBCConnectionTarget->Database(), TableNameTarget, CaseSensitive);
  const TSyncTableInfo masterInfo = ReadTableInfo(*r.master, masterTable);
  const TSyncTableInfo targetInfo = ReadTableInfo(*r.target, targetTable);
  TSyncPlan plan = PlanSync(masterInfo, targetInfo, TableOptionsMaster, TableOptionsTarget,
                            {CustomKeyFields, CustomDataFields, IncludeBlobs, IgnoreComputedFields});
  for (size_t i = 0; i < plan.KeyOrders.size(); ++i)
    if (plan.KeyOrders[i].Kind == TKeyOrderKind::Weight)
      plan.KeyOrders[i].SpaceWeight = SpaceWeight(*r.master, plan.Master.Keys[i]->Collation);

  TBlobFileWriter* blobFile = BlobFile;
  if ((writesBinary(plan.Master) || writesBinary(plan.Target)) && !blobFile && !HexBlobs) {
    if (BlobFileName.empty()) throw CompareError("BlobFileName is not specified. Cann't save BLOBs.");
    r.ownBlobFile = std::make_unique<TBlobFileWriter>(BlobFileName);
    blobFile = r.ownBlobFile.get();
  }

  uint64_t masterTotal = 0, targetTotal = 0;
  if (CountRows) {
    masterTotal = countRows(*r.master, masterTable);
    targetTotal = countRows(*r.target, targetTable);
  }

  TMyQuery masterRows(*r.master);
  TMyQuery targetRows(*r.target);
  for (TMyQuery* q : {&masterRows, &targetRows}) {
    q->UniDirectional = true;
    q->FetchAll = false;
  }
  masterRows.SQL = plan.Master.Select;
  targetRows.SQL = plan.Target.Select;
  log("Select-SQL for master table:\r\n" + masterRows.SQL);
  log("Select-SQL for target table:\r\n" + targetRows.SQL);
  masterRows.Open();
  targetRows.Open();

  TSyncScriptOutput output(ScriptFileName, OnScriptText, Script);
  if (ScriptOptions.WriteHeader) {
    TSyncScriptHeader header{ScriptOptions.CharacterSet, ScriptOptions.Names, {}, {}};
    if (ScriptOptions.UseDatabase)
      header.Database = ScriptName(DBCConnectionTarget->Database(), TableOptionsTarget.QuoteNames);
    if (blobFile) header.BlobFile = blobFile->path();
    output.write(ScriptHeader(header));
  }

  TSyncMergeOptions options;
  options.Allowed = {AllowedOperations.Insert, AllowedOperations.Update, AllowedOperations.Delete};
  options.CompareData = !ExcludeDataFields;
  options.CompareBlobs = CompareBlobs;
  options.TrimCharFields = TrimCharFields;
  options.RewriteKeySpelling = CaseSensitive;
  TSyncMerge merge(plan, options, TSyncValueWriter{*r.target, blobFile}, counters_, stop_);
  std::string statements;
  merge.OnStatement = [&](const std::string& statement) {
    output.write(statement + "\r\n");
    if (UpdateImmediately) statements += statement + "\r\n";
  };
  if (OnProgress)
    merge.OnProgress = [&] {
      OnProgress(counters_.ReadMaster, masterTotal, counters_.ReadTarget, targetTotal);
    };
  merge.Run(masterRows, targetRows);

  if (r.ownBlobFile) r.ownBlobFile->Commit();
  output.Commit();
  log("All: " + std::to_string(counters_.All()) + ", Deleted: " + std::to_string(counters_.Deleted) +
      ", Updated: " + std::to_string(counters_.Updated) + ", Inserted: " +
      std::to_string(counters_.Inserted) + ", Equal: " + std::to_string(counters_.Equal) + ".");
  if (UpdateImmediately && !statements.empty()) {
    if (blobFile) statements.insert(0, ScriptHeader({{}, {}, {}, blobFile->path()}));
    TMySQLExec own;
    TMySQLExec& exec = SQLExec ? *SQLExec : own;
    exec.Connection = r.target;
    if (!SQLExec) exec.OnLogNextLine = OnLogNextLine;
    counters_.Errors += static_cast<uint64_t>(exec.ExecuteScript(statements).Errors);
  }
}

}  // namespace lomarin
