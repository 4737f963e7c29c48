#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "engine/connect/session_settings.h"

namespace lomarin {

// Why the HTTP tunnel could not be opened or could not carry a connection, in the user's words.
class THttpTunnelError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct THttpTunnelTarget {
  // The MySQL server as the web server sees it.
  std::string Host;
  int Port = 3306;
  // Seconds to wait for the web server (or the proxy) to accept a connection; 0: 15.
  int ConnectTimeout = 0;
};

// The HTTP tunnel: while open it listens on a free loopback port and carries every connection
// made to it through the tunnel script (shipped as tunnel.php) to the target, over HTTP(S) and
// the proxy when one is set.
//
// The script's protocol, version 1 (the script's header describes the same):
//   every request carries the secret in "X-Tunnel-Secret"; without it the script answers 403.
//   GET  ?a=open&host=&port=     one per connection; the script connects to the MySQL server and
//                                answers a stream of frames (type byte, 4-byte big-endian length,
//                                payload) for as long as that connection lives: "I" the id, then
//                                "D" server bytes, "K" keep-alive, "E" the end with its reason.
//                                A failure answers 400 or 502 with a one-line reason instead.
//   POST ?a=send&id=             client bytes, one request at a time per connection, so they
//                                reach the server in order; 204 once the script has queued them.
//   POST ?a=close&id=            the client has closed; the script closes the server connection.
// The stream carries server bytes the moment they arrive, independently of the sends, so a
// statement that blocks (SLEEP) can be killed from another connection and its answer still comes.
class THttpTunnel {
 public:
  THttpTunnel();
  ~THttpTunnel();
  THttpTunnel(const THttpTunnel&) = delete;
  THttpTunnel& operator=(const THttpTunnel&) = delete;

  // Starts listening; an open tunnel is closed first. The script is asked only when a connection
  // is made to the port; why that failed then shows in LastError. Throws THttpTunnelError, and
  // then nothing is left open.
  void Open(const TMyHttpTunnel& script, const THttpTunnelTarget& target);
  // Ends every relayed connection (telling the script) and stops listening.
  void Close();
  bool IsOpen() const;
  // The loopback port to connect to; 0 while closed.
  int LocalPort() const;
  // Why the latest connection made to the port could not be relayed; empty when it was.
  std::string LastError() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

}  // namespace lomarin
