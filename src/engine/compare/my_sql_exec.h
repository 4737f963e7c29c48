#pragma once

#include <functional>
#include <string>

#include "engine/compare/stop_flag.h"
#include "engine/connect/my_connection.h"

namespace lomarin {

// Runs a synchronisation script on the target, statement by statement, on the connection it is
// given (the wizards give it one of their own). A failed statement is logged and skipped, or ends
// the run when BreakOnError is set.
class TMySQLExec {
 public:
  // Names the component in its refusals.
  std::string Name = "MySQLExec";
  TMyConnection* Connection = nullptr;
  bool BreakOnError = false;

  std::function<void(const std::string& line)> OnLogNextLine;
  std::function<void(const std::string& message)> OnErrorMessage;
  // Bytes of the script done and its size, after each statement.
  std::function<void(size_t done, size_t total)> OnProgress;

  struct Result {
    int Errors = 0;
    bool BrokeOnError = false;
    bool Stopped = false;
  };

  // Throws CompareError without a connection or with a script of nothing but blanks and comments.
  Result ExecuteScript(const std::string& script);

  // Any thread: no further statement starts, also when called just before the run begins.
  void Stop() { stop_.requested = true; }

 private:
  void log(const std::string& line) const;
  void logSkipped(const std::string& statement) const;

  TStopFlag stop_;
};

}  // namespace lomarin
