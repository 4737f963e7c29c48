#include "engine/compare/my_sql_exec.h"

#include <memory>
#include <sstream>

#include "engine/compare/blob_file.h"
#include "engine/compare/compare_error.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/statement_splitter.h"

namespace lomarin {

namespace {

bool hasStatement(const std::string& script) {
  std::istringstream in(script);
  TStatementSplitter splitter(in);
  std::string statement;
  return splitter.next(statement);
}

}  // namespace

void TMySQLExec::log(const std::string& line) const {
  if (OnLogNextLine) OnLogNextLine(line);
}

void TMySQLExec::logSkipped(const std::string& statement) const {
  log("< Skipping statement >:");
  std::istringstream lines(statement);
  std::string line;
  while (std::getline(lines, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    log("// " + line);
  }
}

TMySQLExec::Result TMySQLExec::ExecuteScript(const std::string& script) {
  if (!Connection) throw CompareError("(" + Name + "): Connection property not assigned.");
  if (!hasStatement(script)) throw CompareError("Update script is empty.");
  TStopFlag::RunScope run{stop_};
  log("Updating target database...");

  Result result;
  // Set by "SET BLOBFILE": binary values of later statements are read back from that file.
  std::unique_ptr<TBlobFileReader> blobs;
  std::istringstream in(script);
  TStatementSplitter splitter(in);
  std::string statement;
  while (splitter.next(statement)) {
    if (stop_.requested) {
      result.Stopped = true;
      return result;
    }
    try {
      if (const std::string blobFile = BlobFileOfStatement(statement); !blobFile.empty()) {
        blobs = std::make_unique<TBlobFileReader>(blobFile);
      } else {
        TMyQuery query(*Connection);
        query.SQL = blobs ? blobs->Expand(statement) : statement;
        query.Execute();
      }
    } catch (const std::runtime_error& error) {
      ++result.Errors;
      if (OnErrorMessage) OnErrorMessage(error.what());
      if (BreakOnError) {
        log("< Break on Error! >");
        result.BrokeOnError = true;
        return result;
      }
      logSkipped(statement);
    }
    if (OnProgress) OnProgress(splitter.position(), script.size());
  }
  if (result.Errors > 0)
    log("< Script executed: " + std::to_string(result.Errors) + " errors... >");
  else
    log("< Script executed succesfully! >");
  return result;
}

}  // namespace lomarin
