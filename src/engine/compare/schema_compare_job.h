#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/compare/db_comparer.h"
#include "engine/connect/session_settings.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin {

// One side of a structure comparison: a database on a server, reached on a connection of its own,
// or a script file.
struct TCompareSide {
  bool Live = true;
  TMySessionSettings Server;
  // A stored account's SSH tunnel, opened for the comparison's own connection.
  std::optional<TSshTunnelSettings> Tunnel;
  std::string Database;
  std::string ScriptFile;
};

// What the structure synchronisation wizard asks for.
struct TSchemaCompareSettings {
  TCompareSide Source;
  TCompareSide Target;
  TCmpObjSetType Objects{TCmpObjType::coTable,      TCmpObjType::coView,       TCmpObjType::coIndex,
                         TCmpObjType::coPrimaryKey, TCmpObjType::coForeignKey, TCmpObjType::coUnique,
                         TCmpObjType::coCheck};
  bool CaseSensitive = true;
  TMySQLServerOptions Server;
};

// Extracts both sides, compares them and, on request, runs the script on the target; any thread.
class TSchemaCompareJob {
 public:
  TSchemaCompareJob();
  ~TSchemaCompareJob();

  std::function<void(const std::string& line)> OnLogNextLine;
  std::function<void(int percent)> OnProgressUpdate;

  void Run(const TSchemaCompareSettings& settings);
  // Runs the last script on the target database (a connection of its own).
  TMySQLExec::Result Apply();
  void Stop();

  const std::string& SourceScript() const { return source_.Script; }
  const std::string& TargetScript() const { return target_.Script; }
  const std::string& Script() const { return comparer_.Script(); }
  int StatementCount() const { return comparer_.StatementCount(); }

 private:
  struct LiveSide {
    TSshTunnel tunnel;
    std::unique_ptr<TMyConnection> connection;
  };
  void open(const TCompareSide& side, TMySQLScriptExtract& extract, LiveSide& live);

  TSchemaCompareSettings settings_;
  LiveSide sourceLive_, targetLive_;
  TMySQLScriptExtract source_, target_;
  TDBStructure sourceStructure_, targetStructure_;
  TDBComparer comparer_;
  TMySQLExec exec_;
};

// Connects to the side's server with no database chosen, through its tunnel when it has one (the
// tunnel must outlive the connection). Throws ServerError or TSshError.
void ConnectSide(const TCompareSide& side, TMyConnection& connection, TSshTunnel& tunnel);

// The databases of a side's server, on a connection opened for it.
std::vector<std::string> ListDatabases(const TCompareSide& side);

// The text of a script file; throws CompareError when it cannot be read.
std::string ReadScriptFile(const std::string& path);

}  // namespace lomarin
