#include "engine/connect/run_stop.h"

#include <chrono>

#include "engine/connect/kill_query.h"
#include "engine/connect/server_error.h"

namespace lomarin {

namespace {

// A kill that reaches the server before the statement does is lost, so it is sent again, this
// often, until the statement ends.
constexpr auto kKillRetry = std::chrono::milliseconds(100);

}  // namespace

TRunStop::~TRunStop() { end(); }

void TRunStop::reset() {
  std::lock_guard lock(mutex_);
  stopped_ = false;
}

void TRunStop::stop() {
  std::lock_guard lock(mutex_);
  if (stopped_) return;
  stopped_ = true;
  if (inFlight_) killer_ = std::thread([this] { killUntilEnded(); });
}

bool TRunStop::stopped() const {
  std::lock_guard lock(mutex_);
  return stopped_;
}

bool TRunStop::begin(const TMySessionSettings& settings, unsigned long threadId) {
  std::lock_guard lock(mutex_);
  if (stopped_) return false;
  inFlight_ = true;
  settings_ = settings;
  threadId_ = threadId;
  return true;
}

// The killer is waited for here, so that no kill of this run can reach a later statement.
void TRunStop::end() {
  std::thread killer;
  {
    std::lock_guard lock(mutex_);
    inFlight_ = false;
    killer = std::move(killer_);
  }
  ended_.notify_all();
  if (killer.joinable()) killer.join();
}

TRunStop::Statement::Statement(TRunStop& stop, const TMySessionSettings& settings, unsigned long threadId)
    : stop_(stop) {
  if (!stop_.begin(settings, threadId)) throw ServerError(1317, "70100", "Query execution was interrupted");
}

void TRunStop::killUntilEnded() {
  std::unique_lock lock(mutex_);
  while (inFlight_) {
    const TMySessionSettings settings = settings_;
    const unsigned long threadId = threadId_;
    lock.unlock();
    try {
      KillQuery(settings, threadId);
    } catch (const ServerError&) {
      return;  // no kill can be sent: the statement ends by itself and the run stops after it
    }
    lock.lock();
    ended_.wait_for(lock, kKillRetry, [this] { return !inFlight_; });
  }
}

}  // namespace lomarin
