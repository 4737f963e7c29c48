#include "engine/compare/schema_compare_job.h"

#include <fstream>
#include <sstream>

#include "engine/compare/compare_error.h"
#include "engine/compare/sync_wizard_rules.h"

namespace lomarin {

std::string ReadScriptFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CompareError("Cannot read " + path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void ConnectSide(const TCompareSide& side, TMyConnection& connection, TSshTunnel& tunnel) {
  connection.Settings = side.Server;
  connection.Settings.Database.clear();
  if (side.Tunnel) {
    tunnel.Open(*side.Tunnel);
    connection.Settings.TunnelPort = tunnel.LocalPort();
  }
  connection.Connect();
}

std::vector<std::string> ListDatabases(const TCompareSide& side) {
  TSshTunnel tunnel;
  TMyConnection connection;
  ConnectSide(side, connection, tunnel);
  return ListDatabases(connection);
}

TSchemaCompareJob::TSchemaCompareJob() {
  comparer_.DBStructureMaster = &sourceStructure_;
  comparer_.DBStructureTarget = &targetStructure_;
  comparer_.ExtractorMaster = &source_;
  comparer_.ExtractorTarget = &target_;
  comparer_.SQLExec = &exec_;
}

TSchemaCompareJob::~TSchemaCompareJob() = default;

void TSchemaCompareJob::open(const TCompareSide& side, TMySQLScriptExtract& extract, LiveSide& live) {
  if (!side.Live) {
    extract.ExtractFrom = TExtractFromType::efScript;
    extract.Script = ReadScriptFile(side.ScriptFile);
    return;
  }
  live.connection = std::make_unique<TMyConnection>();
  ConnectSide(side, *live.connection, live.tunnel);
  extract.ExtractFrom = TExtractFromType::efDatabase;
  extract.Connection = live.connection.get();
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
  open(settings.Source, source_, sourceLive_);
  open(settings.Target, target_, targetLive_);
  comparer_.CompareDatabases();
}

TMySQLExec::Result TSchemaCompareJob::Apply() {
  if (!settings_.Target.Live) throw CompareError("The target is a script file");
  exec_.Connection = targetLive_.connection.get();
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
