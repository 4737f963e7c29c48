#include "engine/compare/db_comparer.h"

#include "engine/compare/compare_error.h"
#include "engine/compare/sync_script.h"

namespace lomarin {

void TDBComparer::requireProperty(const void* value, const char* name) const {
  if (!value) throw CompareError("(" + Name + "): property " + name + " not assigned.");
}

TMySQLExec& TDBComparer::Exec() {
  if (SQLExec) return *SQLExec;
  if (!ownExec_) {
    ownExec_ = std::make_unique<TMySQLExec>();
    ownExec_->OnLogNextLine = OnLogNextLine;
    ownExec_->OnErrorMessage = OnErrorMessage;
  }
  return *ownExec_;
}

void TDBComparer::extract(TMySQLScriptExtract& extractor, TDBStructure& into,
                          const std::function<void()>& before, const std::function<void()>& after,
                          int progressFrom) {
  if (before) before();
  extractor.Objects = CompareObjects;
  extractor.CaseSensitiveIdentifiers = MySQLCompareOptions.CaseSensitiveIdentifiers;
  extractor.OnLogNextLine = OnLogNextLine;
  extractor.OnErrorMessage = OnErrorMessage;
  extractor.OnProgressUpdate = [this, progressFrom](int percent) {
    if (OnProgressUpdate) OnProgressUpdate(progressFrom + percent * 45 / 100);
  };
  extractor.StopRequested = [this] { return stop_.requested.load(); };
  try {
    extractor.Extract(into);
  } catch (const std::exception& e) {
    if (OnErrorMessage) OnErrorMessage(e.what());
    throw;
  }
  if (after) after();
}

void TDBComparer::CompareDatabases() {
  requireProperty(DBStructureMaster, "DBStructureMaster");
  requireProperty(ExtractorMaster, "ExtractorMaster");
  requireProperty(DBStructureTarget, "DBStructureTarget");
  requireProperty(ExtractorTarget, "ExtractorTarget");
  TStopFlag::RunScope run{stop_};
  extract(*ExtractorMaster, *DBStructureMaster, OnBeforeExtract, OnAfterExtract, 0);
  extract(*ExtractorTarget, *DBStructureTarget, OnBeforeExtractTarget, OnAfterExtractTarget, 45);
  CompareStructures();
}

void TDBComparer::CompareStructures() {
  requireProperty(DBStructureMaster, "DBStructureMaster");
  requireProperty(DBStructureTarget, "DBStructureTarget");
  if (OnLogNextLine) OnLogNextLine("Comparing databases...");
  TSyncScriptSettings settings;
  settings.Objects = CompareObjects;
  if (MySQLServerOptions.SQLServerVersion < 5)
    for (auto kind :
         {TCmpObjType::coView, TCmpObjType::coProcedure, TCmpObjType::coFunction, TCmpObjType::coTrigger})
      settings.Objects.remove(kind);
  settings.CaseSensitive = MySQLCompareOptions.CaseSensitiveIdentifiers;
  settings.Server = MySQLServerOptions;
  settings.ShowFullLog = ShowFullLog;
  settings.Log = OnLogNextLine;
  auto result = WriteSyncScript(*DBStructureMaster, *DBStructureTarget, settings);
  script_ = std::move(result.Text);
  statements_ = result.Statements;
  if (OnProgressUpdate) OnProgressUpdate(100);
}

}  // namespace lomarin
