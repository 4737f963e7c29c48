#pragma once
// Private to the connect subsystem: the only header besides .cpp files that sees <mysql.h>.

#include <mysql.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "engine/connect/http_tunnel.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/my_field.h"

namespace lomarin {

class ConnectAttempt;
class TBinaryResult;
class TMySQLMonitor;

ServerError errorOf(MYSQL* mysql);
TMyField FieldOf(const MYSQL_FIELD& field);

struct TMyConnection::Impl {
  explicit Impl(TMyConnection& owner) : owner(owner) {}

  TMyConnection& owner;
  MYSQL* mysql = nullptr;
  TMySQLMonitor* monitor = nullptr;
  std::string serverVersion;
  std::optional<ServerError> lastError;
  bool multiStatements = false;
  // The option as last set on the server connection; it follows multiStatements at the next
  // request, because changing it while a result is unread would break the protocol.
  bool serverMultiStatements = false;
  bool tablesLocked = false;
  // Set once a loss that could not be retried has been reported; the next statement reconnects.
  bool lossReported = false;
  // The query whose result rows (or further results) are still unread on the connection.
  TMyQuery* pending = nullptr;
  // Open while a connection (or a connect) goes through the HTTP tunnel script.
  THttpTunnel httpTunnel;
  // The connect under way, between StartConnect and FinishConnect.
  std::shared_ptr<ConnectAttempt> attempt;

  // The loan of the session to a worker thread (TMyConnection::Loan).
  mutable std::mutex loanMutex;
  std::condition_variable loanEnded;
  std::optional<std::thread::id> borrower;
  std::string lentFor;
  bool onBorrower() const;
  // Returns once the calling thread may use the session.
  void awaitTurn();

  // The settings a connection is made with: through the HTTP tunnel's port when it is open.
  TMySessionSettings routed() const;
  // Opens the HTTP tunnel when the settings ask for it. Throws ServerError.
  void openHttpTunnel();
  // The error a connect through the HTTP tunnel gave, with the tunnel's reason when it has one.
  ServerError withTunnelReason(const ServerError& error) const;
  MYSQL* open(const std::string& database, const std::string& charset);
  void close();
  // Sets autocommit as the settings ask, unless the server already runs the session so.
  void applyAutoCommit();

  // Sends one request, reconnecting and sending it again when the connection was lost before the
  // request could reach the server (or the request only reads) and the lost-connection handler
  // asks for it. Throws ServerError. The monitor shows traced when it is
  // not empty.
  void send(std::string_view sql, std::string_view traced = {});
  // Runs a SELECT as a prepared statement when its result has a FLOAT column; null when it has none
  // or cannot run so (then nothing was sent and send() is the way). Throws ServerError.
  std::unique_ptr<TBinaryResult> sendPrepared(std::string_view sql, std::string_view traced = {});
  [[noreturn]] void fail(const ServerError& error);
  ServerError currentError() const { return errorOf(mysql); }
  void releasePending();

  unsigned serverStatus() const;
  std::string schema() const;

 private:
  void reconnect();
  // The connection's loss when it is already known before a request is written; nothing is sent.
  std::optional<ServerError> lostBeforeSending();
  void syncMultiStatements();
  void noteLocks(std::string_view sql);
};

}  // namespace lomarin
