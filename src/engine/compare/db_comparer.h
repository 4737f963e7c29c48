#pragma once

#include <functional>
#include <memory>
#include <string>

#include "engine/compare/cmp_types.h"
#include "engine/compare/db_structure.h"
#include "engine/compare/my_sql_exec.h"
#include "engine/compare/mysql_script_extract.h"
#include "engine/compare/stop_flag.h"

namespace lomarin {

// Compares a source (master) structure with a target one and writes the script that turns the
// target into the source. The sections come in a fixed order: what depends on other objects is
// dropped first and created last.
class TDBComparer {
 public:
  std::string Name = "DBComparer";
  TDatabaseType DatabaseType = TDatabaseType::dbMySQL;
  TCmpObjSetType CompareObjects{TCmpObjType::coTable,      TCmpObjType::coView,       TCmpObjType::coIndex,
                                TCmpObjType::coPrimaryKey, TCmpObjType::coForeignKey, TCmpObjType::coUnique,
                                TCmpObjType::coCheck};
  TDBStructure* DBStructureMaster = nullptr;
  TDBStructure* DBStructureTarget = nullptr;
  TMySQLScriptExtract* ExtractorMaster = nullptr;
  TMySQLScriptExtract* ExtractorTarget = nullptr;
  // Runs the script on the target; the comparer makes its own when none is given.
  TMySQLExec* SQLExec = nullptr;
  TMySQLServerOptions MySQLServerOptions;
  TMySQLCompareOptions MySQLCompareOptions;
  // Logs every statement written, not only the sections.
  bool ShowFullLog = false;

  std::function<void(int percent)> OnProgressUpdate;
  std::function<void(const std::string& line)> OnLogNextLine;
  std::function<void(const std::string& message)> OnErrorMessage;
  std::function<void()> OnBeforeExtract;
  std::function<void()> OnAfterExtract;
  std::function<void()> OnBeforeExtractTarget;
  std::function<void()> OnAfterExtractTarget;

  // Extracts both sides through their extractors, then compares them. Throws CompareError when a
  // property is missing or the run was stopped.
  void CompareDatabases();
  // Compares the two structures as they are.
  void CompareStructures();

  // The synchronisation script of the last comparison, CR LF line ends.
  const std::string& Script() const { return script_; }
  // Statements in it; 0 when the two sides are equal.
  int StatementCount() const { return statements_; }

  TMySQLExec& Exec();
  // Any thread: the extraction stops between statements.
  void Stop() { stop_.requested = true; }

 private:
  void requireProperty(const void* value, const char* name) const;
  void extract(TMySQLScriptExtract& extractor, TDBStructure& into, const std::function<void()>& before,
               const std::function<void()>& after, int progressFrom);

  std::string script_;
  int statements_ = 0;
  std::unique_ptr<TMySQLExec> ownExec_;
  TStopFlag stop_;
};

}  // namespace lomarin
