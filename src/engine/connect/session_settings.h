#pragma once

#include <string>

namespace lomarin {

enum class TMyProtocol { Default = 0, TCP = 1, Socket = 2, Pipe = 3, Memory = 4, SSL = 5, Http = 6 };

struct TMySSLOptions {
  std::string CACert;
  std::string Cert;
  std::string ChipherList;
  std::string Key;
};

// The HTTP tunnel script the session goes through when its Protocol is Http.
struct TMyHttpTunnel {
  std::string Url;
  // The text the script checks on every request.
  std::string Secret;
  // No proxy when empty.
  std::string ProxyHost;
  int ProxyPort = 808;
  std::string ProxyUser;
  std::string ProxyPassword;
};

// What the connect dialog copies onto the session right before each connect.
struct TMySessionSettings {
  std::string Username;
  std::string Password;
  std::string Server = "localhost";
  int Port = 3306;
  std::string Database;
  TMyProtocol Protocol = TMyProtocol::Default;
  // Kept for stored accounts; this build has one protocol implementation, the client library.
  bool Direct = false;
  bool UseUnicode = true;
  bool Compress = false;
  // Empty means "default": nothing is asked of the server (utf8mb4 when UseUnicode is on).
  std::string Charset;
  // Seconds; applied only from 15 up, below that the client library's default stays.
  int ConnectionTimeout = 0;
  bool UseSSL = false;
  TMySSLOptions SSL;
  // Off: the session runs with autocommit off from the connect on, and statements wait for COMMIT.
  bool AutoCommit = true;
  // Unix socket path for Protocol Socket, or for "localhost" with Protocol Default.
  std::string SocketPath;
  // While the session runs through an SSH tunnel: the loopback port it listens on. Server and
  // Port still name the server (as the SSH server sees it); every connection goes to this port.
  int TunnelPort = 0;
  // With Protocol Http the session opens a tunnel of its own through this script for every
  // connection it makes; Server and Port name the server as the web server sees it.
  TMyHttpTunnel Http;
};

}  // namespace lomarin
