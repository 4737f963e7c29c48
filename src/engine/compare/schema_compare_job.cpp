#include "engine/compare/schema_compare_job.h"

#include <fstream>
#include <sstream>

#include "engine/compare/compare_error.h"
#include "engine/connect/my_query.h"

namespace lomarin {

std::string ReadScriptFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CompareError("Cannot read " + path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::string> ListDatabases(const TMySessionSettings& server) {
  TMyConnection connection;
  connection.Settings = server;
  connection.Settings.Database.clear();
  connection.Connect();
  TMyQuery query(connection);
  query.SQL = "SHOW DATABASES";
  query.Open();
  std::vector<std::string> names;
  while (query.Next()) names.emplace_back(query.Value(0));
  return names;
}

TSchemaCompareJob::TSchemaCompareJob() {
  comparer_.DBStructureMaster = &sourceStructure_;
  comparer_.DBStructureTarget = &targetStructure_;
  comparer_.ExtractorMaster = &source_;
  comparer_.ExtractorTarget = &target_;
  comparer_.SQLExec = &exec_;
}

TSchemaCompareJob::~TSchemaCompareJob() = default;

void TSchemaCompareJob::open(const TCompareSide& side, TMySQLScriptExtract& extract,
                             std::unique_ptr<TMyConnection>& connection) {
  if (!side.Live) {
    extract.ExtractFrom = TExtractFromType::efScript;
    extract.Script = ReadScriptFile(side.ScriptFile);
    return;
  }
  connection = std::make_unique<TMyConnection>();
  connection->Settings = side.Server;
  connection->Settings.Database.clear();
  connection->Connect();
  extract.ExtractFrom = TExtractFromType::efDatabase;
  extract.Connection = connection.get();
  extract.Database = side.Database;
}

void TSchemaCompareJob::Run(const TSchemaCompareSettings& settings) {
  settings_ = settings;
  comparer_.CompareObjects = settings.Objects;
  comparer_.MySQLCompareOptions.CaseSensitiveIdentifiers = settings.CaseSensitive;
  comparer_.MySQLServerOptions = settings.Server;
  comparer_.OnLogNextLine = OnLogNextLine;
  comparer_.OnErrorMessage = OnLogNextLine;
  comparer_.OnProgressUpdate = OnProgressUpdate;
  open(settings.Source, source_, sourceConnection_);
  open(settings.Target, target_, targetConnection_);
  comparer_.CompareDatabases();
}

TMySQLExec::Result TSchemaCompareJob::Apply() {
  if (!settings_.Target.Live) throw CompareError("The target is a script file");
  exec_.Connection = targetConnection_.get();
  exec_.OnLogNextLine = OnLogNextLine;
  exec_.OnErrorMessage = [this](const std::string& message) {
    if (OnLogNextLine) OnLogNextLine("Error: " + message);
  };
  return exec_.ExecuteScript(Script());
}

void TSchemaCompareJob::Stop() {
  comparer_.Stop();
  exec_.Stop();
}

}  // namespace lomarin
