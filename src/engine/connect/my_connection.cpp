#include "engine/connect/my_connection.h"

#include <errmsg.h>
#include <mysqld_error.h>
#include <poll.h>

#include <algorithm>
#include <cctype>

#include "engine/connect/binary_result.h"
#include "engine/connect/connect_attempt.h"
#include "engine/connect/my_query.h"
#include "engine/connect/server_version.h"
#include "engine/connect/session_impl.h"
#include "engine/connect/sql_monitor.h"

namespace lomarin {

namespace {

constexpr unsigned kConnectionKilled = 1927;          // MariaDB: the session was killed while idle
constexpr unsigned kClientInteractionTimeout = 4031;  // MySQL 8: idle session closed by the server

bool isConnectionLost(unsigned number) {
  return number == CR_SERVER_GONE_ERROR || number == CR_SERVER_LOST || number == kConnectionKilled ||
         number == kClientInteractionTimeout;
}

bool isClientError(unsigned number) { return number >= CR_MIN_ERROR && number <= CR_MAX_ERROR; }

bool startsWithWords(std::string_view sql, std::string_view words) {
  while (!sql.empty() && std::isspace(static_cast<unsigned char>(sql.front()))) sql.remove_prefix(1);
  if (sql.size() < words.size()) return false;
  return std::equal(words.begin(), words.end(), sql.begin(), [](char a, char b) {
    return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
  });
}

bool containsWords(std::string_view sql, std::string_view words) {
  return std::search(sql.begin(), sql.end(), words.begin(), words.end(), [](char a, char b) {
           return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
         }) != sql.end();
}

}  // namespace

ServerError errorOf(MYSQL* mysql) {
  return ServerError(mysql_errno(mysql), mysql_sqlstate(mysql), mysql_error(mysql));
}

// ---- Impl ----

TMySessionSettings TMyConnection::Impl::routed() const {
  TMySessionSettings settings = owner.Settings;
  if (settings.Protocol == TMyProtocol::Http) settings.TunnelPort = httpTunnel.LocalPort();
  return settings;
}

void TMyConnection::Impl::openHttpTunnel() {
  const TMySessionSettings& s = owner.Settings;
  if (s.Protocol != TMyProtocol::Http) {
    httpTunnel.Close();
    return;
  }
  try {
    httpTunnel.Open(s.Http, THttpTunnelTarget{s.Server, s.Port, s.ConnectionTimeout});
  } catch (const THttpTunnelError& error) {
    fail(ServerError(CR_CONN_HOST_ERROR, "HY000", error.what()));
  }
}

ServerError TMyConnection::Impl::withTunnelReason(const ServerError& error) const {
  const std::string reason = httpTunnel.IsOpen() ? httpTunnel.LastError() : std::string();
  return reason.empty() ? error : ServerError(error.number(), error.sqlstate(), reason);
}

MYSQL* TMyConnection::Impl::open(const std::string& database, const std::string& charset) {
  const TMySessionSettings settings = routed();
  MYSQL* m = prepareConnection(settings, charset);
  try {
    serverVersion = completeConnection(m, settings, database);
  } catch (const ServerError& error) {
    mysql_close(m);
    throw withTunnelReason(error);
  }
  serverMultiStatements = false;
  return m;
}

// The handshake's status tells the state the server starts the session in.
void TMyConnection::Impl::applyAutoCommit() {
  const bool wanted = owner.Settings.AutoCommit;
  if (((serverStatus() & SERVER_STATUS_AUTOCOMMIT) != 0) == wanted) return;
  if (monitor) monitor->trace(wanted ? "SET autocommit=1" : "SET autocommit=0");
  if (mysql_autocommit(mysql, wanted ? 1 : 0)) throw currentError();
}

void TMyConnection::Impl::close() {
  releasePending();
  if (mysql) mysql_close(mysql);
  mysql = nullptr;
  tablesLocked = false;
  lossReported = false;
}

void TMyConnection::Impl::fail(const ServerError& error) {
  lastError = error;
  if (owner.Events.OnError && !onBorrower()) owner.Events.OnError(error);
  throw error;
}

void TMyConnection::Impl::releasePending() {
  if (pending) {
    TMyQuery* query = pending;
    pending = nullptr;
    query->releaseConnection();
  }
}

unsigned TMyConnection::Impl::serverStatus() const {
  unsigned status = 0;
  if (mysql) mariadb_get_infov(mysql, MARIADB_CONNECTION_SERVER_STATUS, &status);
  return status;
}

std::string TMyConnection::Impl::schema() const {
  const char* db = nullptr;
  if (mysql) mariadb_get_infov(mysql, MARIADB_CONNECTION_SCHEMA, &db);
  return db ? db : "";
}

void TMyConnection::Impl::noteLocks(std::string_view sql) {
  if (startsWithWords(sql, "LOCK TABLE") ||
      (startsWithWords(sql, "FLUSH TABLE") && containsWords(sql, "WITH READ LOCK")))
    tablesLocked = true;
  else if (startsWithWords(sql, "UNLOCK TABLE"))
    tablesLocked = false;
}

void TMyConnection::Impl::reconnect() {
  const std::string database = schema();
  const std::string charset = mysql_character_set_name(mysql);
  const bool autocommitOff = !(serverStatus() & SERVER_STATUS_AUTOCOMMIT);
  MYSQL* fresh = open(database, charset);
  mysql_close(mysql);
  mysql = fresh;
  tablesLocked = false;
  lossReported = false;
  if (autocommitOff) {
    if (monitor) monitor->trace("SET autocommit=0");
    mysql_autocommit(mysql, 0);
  }
}

std::optional<ServerError> TMyConnection::Impl::lostBeforeSending() {
  // Between requests the server says nothing; anything to read means it is closing the
  // connection (killed, timed out, shut down). A ping confirms it without running anything.
  const my_socket socket = mysql_get_socket(mysql);
  if (socket != MARIADB_INVALID_SOCKET) {
    pollfd idle{socket, POLLIN, 0};
    if (poll(&idle, 1, 0) == 0) return std::nullopt;
  }
  if (mysql_ping(mysql) == 0) return std::nullopt;
  ServerError error = currentError();
  if (!isConnectionLost(error.number())) fail(error);
  return error;
}

void TMyConnection::Impl::send(std::string_view sql, std::string_view traced) {
  awaitTurn();
  if (!mysql) fail(ServerError(CR_SERVER_GONE_ERROR, "HY000", "Not connected"));
  releasePending();
  for (;;) {
    // A silent repeat would run the statement outside the transaction or locks it belonged to.
    const bool holdsState = !lossReported && ((serverStatus() & SERVER_STATUS_IN_TRANS) || tablesLocked);
    std::optional<ServerError> lost = lostBeforeSending();
    if (!lost) {
      syncMultiStatements();
      if (monitor) monitor->trace(traced.empty() ? sql : traced);
      if (mysql_real_query(mysql, sql.data(), sql.size()) == 0) {
        noteLocks(sql);
        return;
      }
      ServerError error = currentError();
      if (!isConnectionLost(error.number())) fail(error);
      // Only "gone away" is given before the request was written; any later loss may come after
      // the server ran it, and running it again could apply it twice.
      if (error.number() != CR_SERVER_GONE_ERROR && !IsReadOnlyStatement(sql)) {
        lossReported = true;
        fail(error);
      }
      lost = error;
    }
    ServerError error = *lost;
    if (holdsState) {
      lossReported = true;
      fail(error);
    }
    for (;;) {
      if (!owner.Events.OnConnectionLost || onBorrower() ||
          owner.Events.OnConnectionLost() != RetryMode::ReconnectExecute)
        fail(error);
      try {
        reconnect();
        break;
      } catch (const ServerError& reconnectError) {
        if (!isClientError(reconnectError.number())) fail(reconnectError);
        error = reconnectError;
      }
    }
  }
}

std::unique_ptr<TBinaryResult> TMyConnection::Impl::sendPrepared(std::string_view sql,
                                                                 std::string_view traced) {
  awaitTurn();
  if (!mysql || !(startsWithWords(sql, "SELECT") || startsWithWords(sql, "WITH"))) return nullptr;
  releasePending();
  // A lost connection is left to send(), which knows how to come back.
  if (lostBeforeSending()) return nullptr;
  std::unique_ptr<TBinaryResult> result = TBinaryResult::Prepare(mysql, sql);
  if (!result) return nullptr;
  if (monitor) monitor->trace(traced.empty() ? sql : traced);
  try {
    result->Execute();
  } catch (const ServerError& error) {
    if (isConnectionLost(error.number())) return nullptr;
    fail(error);
  }
  return result;
}

void TMyConnection::Impl::syncMultiStatements() {
  if (serverMultiStatements == multiStatements) return;
  mysql_set_server_option(
      mysql, multiStatements ? MYSQL_OPTION_MULTI_STATEMENTS_ON : MYSQL_OPTION_MULTI_STATEMENTS_OFF);
  serverMultiStatements = multiStatements;
}

// ---- TMyConnection ----

TMyConnection::TMyConnection() : d(std::make_unique<Impl>(*this)) {}

TMyConnection::~TMyConnection() { d->close(); }

void TMyConnection::setMonitor(TMySQLMonitor* monitor) { d->monitor = monitor; }

void TMyConnection::Connect() {
  StartConnect();
  FinishConnect();
}

void TMyConnection::StartConnect() {
  d->awaitTurn();
  if (Connected()) Disconnect();
  d->attempt.reset();
  if (Events.BeforeConnect) Events.BeforeConnect();
  std::string charset = Settings.Charset;
  if (charset.empty() && Settings.UseUnicode) charset = "utf8mb4";
  d->openHttpTunnel();
  try {
    d->attempt = ConnectAttempt::start(d->routed(), Settings.Database, charset);
  } catch (const ServerError& error) {
    d->httpTunnel.Close();
    d->fail(error);
  }
}

bool TMyConnection::WaitConnect(std::chrono::milliseconds timeout) {
  return !d->attempt || d->attempt->waitFor(timeout);
}

void TMyConnection::FinishConnect() {
  if (!d->attempt) return;
  const std::shared_ptr<ConnectAttempt> attempt = std::move(d->attempt);
  try {
    ConnectAttempt::Connection connection = attempt->take();
    d->mysql = connection.mysql;
    d->serverVersion = std::move(connection.serverVersion);
    d->serverMultiStatements = false;
    d->applyAutoCommit();
  } catch (const ServerError& error) {
    const ServerError reported = d->withTunnelReason(error);
    d->close();
    d->httpTunnel.Close();
    d->fail(reported);
  }
  if (Events.AfterConnect) Events.AfterConnect();
}

void TMyConnection::AbandonConnect() {
  d->attempt.reset();
  d->httpTunnel.Close();
}

void TMyConnection::Disconnect() {
  d->awaitTurn();
  if (!Connected()) return;
  if (Events.BeforeDisconnect) Events.BeforeDisconnect();
  d->close();
  d->httpTunnel.Close();
  if (Events.AfterDisconnect) Events.AfterDisconnect();
}

bool TMyConnection::Connected() const { return d->mysql != nullptr; }

const std::string& TMyConnection::ServerVersion() const { return d->serverVersion; }
int TMyConnection::ServerMajorVersion() const { return lomarin::ServerMajorVersion(d->serverVersion); }
int TMyConnection::ServerVersionNumber() const { return lomarin::ServerVersionNumber(d->serverVersion); }
std::string TMyConnection::ClientVersion() const { return mysql_get_client_info(); }

std::string TMyConnection::CharsetName() const { return d->mysql ? mysql_character_set_name(d->mysql) : ""; }

std::string TMyConnection::CurrentDatabase() const { return d->schema(); }

unsigned long TMyConnection::ThreadId() const { return d->mysql ? mysql_thread_id(d->mysql) : 0; }

void TMyConnection::ReleasePending() {
  d->awaitTurn();
  d->releasePending();
}

unsigned TMyConnection::AppliedConnectTimeout() const {
  unsigned timeout = 0;
  if (d->mysql) mysql_get_optionv(d->mysql, MYSQL_OPT_CONNECT_TIMEOUT, &timeout);
  return timeout;
}

std::string TMyConnection::SslCipher() const {
  const char* cipher = d->mysql ? mysql_get_ssl_cipher(d->mysql) : nullptr;
  return cipher ? cipher : "";
}

bool TMyConnection::InTransaction() const { return (d->serverStatus() & SERVER_STATUS_IN_TRANS) != 0; }
bool TMyConnection::AutoCommit() const { return (d->serverStatus() & SERVER_STATUS_AUTOCOMMIT) != 0; }
bool TMyConnection::NoBackslashEscapes() const {
  return (d->serverStatus() & SERVER_STATUS_NO_BACKSLASH_ESCAPES) != 0;
}

std::string TMyConnection::GetMySQLinfo() const {
  return "MySQL Server   " + ServerVersion() + "\n" + "MySQL Client   " + ClientVersion() + "\n" +
         "Charset        " + CharsetName() + "\r\n";
}

const std::optional<ServerError>& TMyConnection::LastError() const { return d->lastError; }

// The server option follows at the next request, so a result opened inside the scope can still
// be read as the user scrolls after the scope has ended.
TMyConnection::MultiStatements::MultiStatements(TMyConnection& connection) : connection_(connection) {
  connection_.d->multiStatements = true;
}

TMyConnection::MultiStatements::~MultiStatements() { connection_.d->multiStatements = false; }

bool ExecSQLText(TMyConnection& session, std::string_view text,
                 const std::function<void(const ServerError&)>& reportError) {
  return ExecSQLText(session, text, {}, reportError);
}

bool ExecSQLText(TMyConnection& session, std::string_view text, std::string_view traced,
                 const std::function<void(const ServerError&)>& reportError) {
  try {
    TMyQuery query(session);
    query.UniDirectional = false;
    query.SQL = std::string(text);
    query.TracedSQL = std::string(traced);
    query.Execute();
    return true;
  } catch (const ServerError& error) {
    if (reportError) reportError(error);
    return false;
  }
}

}  // namespace lomarin
