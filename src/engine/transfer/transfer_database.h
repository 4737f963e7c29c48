#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/transfer/my_dump.h"

namespace lomarin {

class TMyScript;

// The option boxes of the transfer that change the dump engine when clicked.
enum class TTransferOption { TransferTables, TransferData, TransferViews, DropTable };

// What a click on an option box does to the dump: the first three add or remove their object
// kind; "Drop table  if exist" only ever switches the drop statements on (clearing it leaves them on).
void ApplyTransferOption(TMyDump& dump, TTransferOption option, bool checked);

// The source's tables in the order a transfer sends them: base tables, then views, each view
// after the views it reads.
std::vector<std::string> TransferTableNames(TMyConnection& source, const std::string& database);
// Its stored procedures and functions by name.
std::vector<std::string> TransferRoutineNames(TMyConnection& source, const std::string& database);

struct TTransferPlan {
  std::string sourceDatabase;
  std::string targetDatabase;
  std::vector<std::string> tables;
  bool storedProcedures = false;
  std::vector<std::string> procedures;
};

// Copies objects of one database to another connection: each object's script streams from the
// dump engine (on the source) into a script runner (on the target) while it is written. Errors of
// the target are logged and the run goes on.
class TTransferDatabase {
 public:
  TTransferDatabase(TMyConnection& source, TMyConnection& target);
  ~TTransferDatabase();

  // Bound to the source, with the transfer's fixed options and the start state of the boxes.
  TMyDump Dump;

  // Connects the target, through the tunnel of its account for one; its own Connect when empty.
  // Throws ServerError or TSshError.
  std::function<void()> ConnectTarget;
  std::function<void(const std::string& line)> OnLog;
  std::function<void(const std::string& object, int percent)> OnProgress;

  // Connects the target (its Settings set by the caller), sends every object and disconnects.
  // Returns false when any object reported errors.
  bool Run(const TTransferPlan& plan);
  // Any thread: the statement under way is interrupted and no further object starts.
  void Stop();

 private:
  bool connectTarget(const TTransferPlan& plan);
  // Streams the dump's script of the object into the target; logs its lines.
  void transferObject(const std::string& name, const char* exportLine);
  // The target's table keeps nothing of a statement that fails (a transactional engine).
  bool statementRollback(const std::string& table);
  void log(const std::string& line);
  static std::string errorLine(const ServerError& error);

  TMyConnection& source_;
  TMyConnection& target_;
  std::atomic<bool> stop_ = false;
  std::mutex scriptMutex_;
  TMyScript* script_ = nullptr;
  bool errors_ = false;
};

}  // namespace lomarin
