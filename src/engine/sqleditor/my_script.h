#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/run_stop.h"
#include "engine/sqleditor/macros.h"

namespace lomarin {

enum class TErrorAction { eaFail, eaContinue };

// Runs a script statement by statement on a session. Without an OnError handler (or when the
// handler leaves the action at eaFail) the first failing statement ends the run by throwing its
// ServerError.
class TMyScript {
 public:
  using ErrorHandler = std::function<void(const ServerError& error, const std::string& statement, TErrorAction& action)>;
  // Bytes of the script done so far and its size (0 when unknown).
  using ProgressHandler = std::function<void(uint64_t done, uint64_t total)>;

  explicit TMyScript(TMyConnection& session);
  TMyScript(const TMyScript&) = delete;
  TMyScript& operator=(const TMyScript&) = delete;

  std::string SQL;
  std::string Delimiter = ";";
  // Consecutive statements travel in multi-statement requests: fewer round trips, and each
  // statement still runs (and commits) on its own.
  bool UseOptimization = false;
  // With UseOptimization: asked once for each head ("INSERT INTO `t` VALUES ") met, whether
  // consecutive one-row INSERTs of that head may go as one multi-row INSERT. Only where a failed
  // statement leaves nothing behind: the rows of a folded INSERT that fails go again one by one.
  std::function<bool(const std::string& head)> FoldInserts;
  ErrorHandler OnError;
  ProgressHandler OnProgress;
  // Values for the "&name" macros of each statement.
  TMacros Macros;

  void Execute();
  // Runs the script read from `in`, `total` bytes long, without holding it in memory.
  void Execute(std::istream& in, uint64_t total);

  // Any thread: no further statement starts, and the one in progress is interrupted.
  void BreakExec();
  // On the thread that hands the run to a worker, before it starts: a BreakExec from then on
  // stops the run even when it comes before Execute has begun. Without it Execute forgets a
  // BreakExec that came before it.
  void PrepareBreak();
  // The last run ended because of BreakExec.
  bool Stopped() const { return stopped_; }
  // Line of the script (from 1) where the statement last given to OnError begins.
  uint64_t StatementLine() const { return statementLine_; }

 private:
  class Runner;

  bool beginStatement();
  void endStatement();
  bool stopRequested();

  TMyConnection& session_;
  TRunStop stop_;
  std::atomic<bool> breakPrepared_ = false;
  bool stopped_ = false;
  uint64_t statementLine_ = 0;
};

}  // namespace lomarin
