#pragma once

#include <functional>
#include <string_view>

namespace lomarin {

enum class RetryMode { Raise, ReconnectExecute };

// What the program does when the session loses its connection: ten silent reconnect-and-execute
// attempts, then the user is asked. Only a "Retry" answer starts a new round of ten.
class TLostConnectionHandler {
 public:
  // askRetry shows "Error trying to reestablish lost connection ?" and returns true for Retry.
  explicit TLostConnectionHandler(std::function<bool()> askRetry);

  RetryMode onConnectionLost();
  void reconnected() { reconnecting_ = false; }

  int retryCount() const { return retryCount_; }
  bool reconnecting() const { return reconnecting_; }

  static constexpr int kSilentRetries = 10;

 private:
  std::function<bool()> askRetry_;
  int retryCount_ = 0;
  bool reconnecting_ = false;
};

// A request that changes nothing on the server when it runs twice: one SELECT (without INTO),
// SHOW, DESCRIBE, EXPLAIN (without ANALYZE) or HELP. A request that may have reached a server
// before the connection broke is sent again only when it is one of these.
bool IsReadOnlyStatement(std::string_view sql);

}  // namespace lomarin
