#include "engine/connect/connect_attempt.h"

#include <errmsg.h>

#include <thread>
#include <utility>

#include "engine/connect/server_version.h"
#include "engine/connect/session_impl.h"

namespace lomarin {

namespace {

constexpr const char* kHandshakePrefix = "5.5.5-";

void setOption(MYSQL* mysql, mysql_option option, const std::string& value) {
  if (!value.empty()) mysql_optionsv(mysql, option, value.c_str());
}

bool usesSsl(const TMySessionSettings& s) { return s.UseSSL || s.Protocol == TMyProtocol::SSL; }

}  // namespace

MYSQL* prepareConnection(const TMySessionSettings& s, const std::string& charset) {
  MYSQL* m = mysql_init(nullptr);
  if (!m) throw ServerError(CR_OUT_OF_MEMORY, "HY000", "MySQL client ran out of memory");

  const bool tunnel = s.TunnelPort != 0;
  const bool useSocket = !tunnel && (s.Protocol == TMyProtocol::Socket ||
                                     (s.Protocol == TMyProtocol::Default && !s.SocketPath.empty() &&
                                      (s.Server.empty() || s.Server == "localhost")));
  switch (s.Protocol) {
    case TMyProtocol::Default:
    case TMyProtocol::TCP:
    case TMyProtocol::Socket:
    case TMyProtocol::SSL: {
      unsigned protocol = useSocket ? MYSQL_PROTOCOL_SOCKET : MYSQL_PROTOCOL_TCP;
      if (s.Protocol != TMyProtocol::Default || useSocket || tunnel)
        mysql_optionsv(m, MYSQL_OPT_PROTOCOL, &protocol);
      break;
    }
    case TMyProtocol::Http:
      // The session opens the HTTP tunnel first and connects to its loopback port.
      if (tunnel) {
        unsigned protocol = MYSQL_PROTOCOL_TCP;
        mysql_optionsv(m, MYSQL_OPT_PROTOCOL, &protocol);
        break;
      }
      [[fallthrough]];
    case TMyProtocol::Pipe:
    case TMyProtocol::Memory:
      mysql_close(m);
      throw ServerError(CR_CONN_UNKNOWN_PROTOCOL, "HY000", "Wrong or unknown protocol");
  }
  if (s.Compress) mysql_optionsv(m, MYSQL_OPT_COMPRESS, nullptr);
  setOption(m, MYSQL_SET_CHARSET_NAME, charset);
  if (s.ConnectionTimeout >= 15) {
    unsigned timeout = static_cast<unsigned>(s.ConnectionTimeout);
    mysql_optionsv(m, MYSQL_OPT_CONNECT_TIMEOUT, &timeout);
  }
  if (usesSsl(s)) {
    setOption(m, MYSQL_OPT_SSL_KEY, s.SSL.Key);
    setOption(m, MYSQL_OPT_SSL_CERT, s.SSL.Cert);
    setOption(m, MYSQL_OPT_SSL_CA, s.SSL.CACert);
    setOption(m, MYSQL_OPT_SSL_CIPHER, s.SSL.ChipherList);
    my_bool on = 1;
    mysql_optionsv(m, MYSQL_OPT_SSL_ENFORCE, &on);
    // A CA file is only worth giving if the server is checked against it, host name included.
    my_bool verify = s.SSL.CACert.empty() ? 0 : 1;
    mysql_optionsv(m, MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &verify);
  }
  unsigned localInfile = 0;
  mysql_optionsv(m, MYSQL_OPT_LOCAL_INFILE, &localInfile);
  return m;
}

std::string completeConnection(MYSQL* m, const TMySessionSettings& s, const std::string& database) {
  const bool tunnel = s.TunnelPort != 0;
  const char* host = tunnel ? "127.0.0.1" : s.Server.empty() ? nullptr : s.Server.c_str();
  const char* socket = tunnel || s.SocketPath.empty() ? nullptr : s.SocketPath.c_str();
  const char* db = database.empty() ? nullptr : database.c_str();
  const int port = tunnel ? s.TunnelPort : s.Port;
  if (!mysql_real_connect(m, host, s.Username.c_str(), s.Password.c_str(), db, static_cast<unsigned>(port),
                          socket, CLIENT_MULTI_RESULTS))
    throw errorOf(m);
  if (usesSsl(s) && !mysql_get_ssl_cipher(m))
    throw ServerError(CR_SSL_CONNECTION_ERROR, "HY000",
                      "SSL connection error: the connection is not encrypted");

  std::string version = mysql_get_server_info(m);
  // The client library drops the "5.5.5-" that MariaDB 10+ puts before its version in the
  // handshake; version checks were written against the text the server sent.
  if (mariadb_connection(m) && ServerMajorVersion(version) >= 10) version = kHandshakePrefix + version;
  return version;
}

// ---- ConnectAttempt ----

ConnectAttempt::ConnectAttempt(const TMySessionSettings& settings, const std::string& database, MYSQL* mysql)
    : settings_(settings), database_(database), mysql_(mysql) {}

ConnectAttempt::~ConnectAttempt() {
  if (mysql_) mysql_close(mysql_);
}

std::shared_ptr<ConnectAttempt> ConnectAttempt::start(const TMySessionSettings& settings,
                                                      const std::string& database,
                                                      const std::string& charset) {
  // The handle is made here, so the client library is set up on the caller's thread.
  std::shared_ptr<ConnectAttempt> attempt(
      new ConnectAttempt(settings, database, prepareConnection(settings, charset)));
  std::thread([attempt] { attempt->run(); }).detach();
  return attempt;
}

void ConnectAttempt::run() {
  std::string version;
  std::optional<ServerError> error;
  try {
    version = completeConnection(mysql_, settings_, database_);
  } catch (const ServerError& e) {
    error = e;
  }
  std::lock_guard lock(mutex_);
  serverVersion_ = std::move(version);
  error_ = std::move(error);
  done_ = true;
  ended_.notify_all();
}

bool ConnectAttempt::waitFor(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  return ended_.wait_for(lock, timeout, [this] { return done_; });
}

ConnectAttempt::Connection ConnectAttempt::take() {
  std::unique_lock lock(mutex_);
  ended_.wait(lock, [this] { return done_; });
  if (error_) throw *error_;
  return {std::exchange(mysql_, nullptr), serverVersion_};
}

}  // namespace lomarin
