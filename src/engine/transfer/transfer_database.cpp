#include "engine/transfer/transfer_database.h"

#include <istream>
#include <thread>

#include "engine/connect/ssh_error.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"
#include "engine/transfer/dump_catalog.h"
#include "engine/transfer/script_pipe.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

void ApplyTransferOption(TMyDump& dump, TTransferOption option, bool checked) {
  const auto toggle = [&](TMyDumpObject kind) {
    if (checked)
      dump.Objects.add(kind);
    else
      dump.Objects.remove(kind);
  };
  switch (option) {
    case TTransferOption::TransferTables:
      return toggle(TMyDumpObject::doTables);
    case TTransferOption::TransferData:
      return toggle(TMyDumpObject::doData);
    case TTransferOption::TransferViews:
      return toggle(TMyDumpObject::doViews);
    case TTransferOption::DropTable:
      if (checked) dump.Options.AddDrop = true;
      return;
  }
}

std::vector<std::string> TransferTableNames(TMyConnection& source, const std::string& database) {
  TDumpCatalog catalog(source, database, true);
  std::vector<std::string> names, views, viewTexts;
  for (auto& table : catalog.tables()) (table.isView ? views : names).push_back(std::move(table.name));
  for (const auto& view : views) viewTexts.push_back(catalog.createTable(view));
  for (size_t i : ViewOrder(views, viewTexts)) names.push_back(views[i]);
  return names;
}

std::vector<std::string> TransferRoutineNames(TMyConnection& source, const std::string& database) {
  return TDumpCatalog(source, database, true).routineNames();
}

TTransferDatabase::TTransferDatabase(TMyConnection& source, TMyConnection& target)
    : Dump(&source), source_(source), target_(target) {
  Dump.Options.GenerateHeader = false;
  Dump.Options.DisableKeys = true;
  Dump.Options.UseExtSyntax = false;
  // The rows go in one transaction per batch: a commit per row-statement would make the target
  // write (and, by its default, flush) its log once for every row.
  Dump.Options.CommitBatchSize = 5000;
  Dump.Objects = TMyDumpObjects(TMyDumpObject::doTables) | TMyDumpObject::doData | TMyDumpObject::doViews;
  Dump.OnBackupProgress = [this](const std::string& object, int, int, int percent) {
    if (OnProgress) OnProgress(object, percent);
  };
  Dump.StopRequested = [this] { return stop_.load(); };
}

TTransferDatabase::~TTransferDatabase() = default;

void TTransferDatabase::log(const std::string& line) {
  if (OnLog) OnLog(line);
}

std::string TTransferDatabase::errorLine(const ServerError& error) {
  return "Error : " + std::to_string(error.number()) + " " + error.message();
}

void TTransferDatabase::Stop() {
  stop_ = true;
  std::lock_guard lock(scriptMutex_);
  if (script_) script_->BreakExec();
}

bool TTransferDatabase::connectTarget(const TTransferPlan& plan) {
  try {
    if (ConnectTarget)
      ConnectTarget();
    else
      target_.Connect();
  } catch (const ServerError& error) {
    log(errorLine(error));
    return false;
  } catch (const TSshError& error) {
    log(std::string("Error : ") + error.what());
    return false;
  }
  log("Connected to database ....... " + plan.targetDatabase);
  return true;
}

bool TTransferDatabase::Run(const TTransferPlan& plan) {
  stop_ = false;
  errors_ = false;
  Dump.Database = plan.sourceDatabase;
  if (!connectTarget(plan)) {
    log("process finished with errors");
    return false;
  }
  log("Init export current database ....... " + plan.sourceDatabase);
  for (const std::string& table : plan.tables) {
    if (stop_) break;
    Dump.TableNames = table;
    transferObject(table, "Export table ....... ");
  }
  if (plan.storedProcedures) {
    // The object set is the boxes' again afterwards, so a second run sends tables as asked.
    const TMyDumpObjects boxes = Dump.Objects;
    Dump.Objects = TMyDumpObject::doStoredProcs;
    for (const std::string& procedure : plan.procedures) {
      if (stop_) break;
      if (OnProgress) OnProgress(procedure, 0);
      Dump.StoredProcNames = procedure;
      transferObject(procedure, "Export procedure ....... ");
    }
    Dump.Objects = boxes;
  }
  if (stop_) {
    log("Transfer stopped");
    errors_ = true;
  }
  log("Finish transfer database ....... " + plan.sourceDatabase);
  target_.Disconnect();
  log("Disconect to database ....... " + plan.targetDatabase);
  log(errors_ ? "process finished with errors" : "process finished without errors");
  return !errors_;
}

bool TTransferDatabase::statementRollback(const std::string& table) {
  try {
    TMyQuery query(target_);
    query.SQL = "SELECT ENGINE FROM information_schema.TABLES WHERE TABLE_SCHEMA = DATABASE() AND TABLE_NAME = " +
                QuotedString(target_, table);
    query.Open();
    return query.Next() && query.Value(0) == "InnoDB";
  } catch (const ServerError&) {
    // The rows then go one by one and meet the trouble themselves.
    return false;
  }
}

void TTransferDatabase::transferObject(const std::string& name, const char* exportLine) {
  // The dump stays on this thread, the one the source session is lent to; the target's runner
  // reads on a thread of its own.
  TScriptPipe pipe;
  std::vector<std::string> targetErrors;
  TMyScript script(target_);
  script.UseOptimization = true;
  // One multi-row INSERT costs the server far less than as many one-row statements, and what
  // reaches the table is the same where a refused row leaves nothing behind.
  script.FoldInserts = [&](const std::string&) { return statementRollback(name); };
  script.OnError = [&](const ServerError& error, const std::string&, TErrorAction& action) {
    targetErrors.push_back(errorLine(error));
    action = TErrorAction::eaContinue;
  };
  {
    std::lock_guard lock(scriptMutex_);
    script_ = &script;
  }
  std::thread reader([&] {
    try {
      std::istream in(&pipe);
      script.Execute(in, 0);
    } catch (const ServerError& error) {
      targetErrors.push_back(errorLine(error));
    }
    pipe.abort();
  });
  std::vector<std::string> errors;
  try {
    Dump.Backup(pipe);
    pipe.close();
  } catch (const TPipeAborted&) {
    // The runner has stopped; it says why.
  } catch (const ServerError& error) {
    errors.push_back(errorLine(error));
    pipe.abort();
  } catch (const DumpError& error) {
    if (!stop_) errors.push_back(std::string("Error : ") + error.what());
    pipe.abort();
  }
  reader.join();
  {
    std::lock_guard lock(scriptMutex_);
    script_ = nullptr;
  }
  errors.insert(errors.end(), targetErrors.begin(), targetErrors.end());

  log(exportLine + name);
  std::string text;
  for (const std::string& error : errors) {
    log(error);
    text += (text.empty() ? "" : "\n") + error;
  }
  log("Transfer  ....... " + name);
  if (!errors.empty()) {
    log(" Errors  \n" + text);
    errors_ = true;
  }
}

}  // namespace lomarin
