#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "engine/connect/session_settings.h"

namespace lomarin {

// Stops a run of statements on a session from any thread, at any moment of the run: once stopped,
// no further statement starts, and the one under way is killed on the server.
class TRunStop {
 public:
  TRunStop() = default;
  ~TRunStop();
  TRunStop(const TRunStop&) = delete;
  TRunStop& operator=(const TRunStop&) = delete;

  // Clears a stop, on the thread that hands the run over, before the worker starts it: a stop
  // from then on counts, however early it comes.
  void reset();
  // Returns at once; the kill goes from a thread of its own.
  void stop();
  bool stopped() const;

  // Around each statement of the run, on the worker: begin is false once the run is stopped, and
  // the statement must not be sent.
  bool begin(const TMySessionSettings& settings, unsigned long threadId);
  void end();

  // One statement of a run, between begin and end; a stopped run sends none and ends as a killed
  // statement does (server error 1317).
  class Statement {
   public:
    Statement(TRunStop& stop, const TMySessionSettings& settings, unsigned long threadId);
    ~Statement() { stop_.end(); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

   private:
    TRunStop& stop_;
  };

 private:
  void killUntilEnded();

  mutable std::mutex mutex_;
  std::condition_variable ended_;
  bool stopped_ = false;
  bool inFlight_ = false;
  TMySessionSettings settings_;
  unsigned long threadId_ = 0;
  std::thread killer_;
};

}  // namespace lomarin
