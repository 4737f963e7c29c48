#pragma once
// Private to the connect subsystem: sees <mysql.h>.

#include <mysql.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "engine/connect/server_error.h"
#include "engine/connect/session_settings.h"

namespace lomarin {

// A client handle with the session's options, ready to connect. Throws ServerError.
MYSQL* prepareConnection(const TMySessionSettings& settings, const std::string& charset);

// Connects a prepared handle and returns the version text its handshake sent. Touches nothing but
// its arguments, so any thread may run it. Throws ServerError; the caller closes the handle.
std::string completeConnection(MYSQL* mysql, const TMySessionSettings& settings, const std::string& database);

// One connect on a thread of its own. The thread shares nothing but this object, which lives as
// long as either side holds it: the session may drop it at any moment and go on, and whoever lets
// it go last closes a handle nobody took.
class ConnectAttempt {
 public:
  static std::shared_ptr<ConnectAttempt> start(const TMySessionSettings& settings,
                                               const std::string& database, const std::string& charset);
  ~ConnectAttempt();
  ConnectAttempt(const ConnectAttempt&) = delete;
  ConnectAttempt& operator=(const ConnectAttempt&) = delete;

  // True once the attempt has ended, either way.
  bool waitFor(std::chrono::milliseconds timeout);

  struct Connection {
    MYSQL* mysql;
    std::string serverVersion;
  };
  // Waits for the end and hands the connection over; throws the attempt's error instead.
  Connection take();

 private:
  ConnectAttempt(const TMySessionSettings& settings, const std::string& database, MYSQL* mysql);
  void run();

  const TMySessionSettings settings_;
  const std::string database_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool done_ = false;
  MYSQL* mysql_;
  std::string serverVersion_;
  std::optional<ServerError> error_;
};

}  // namespace lomarin
