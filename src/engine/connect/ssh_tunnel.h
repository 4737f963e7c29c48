#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace lomarin {

struct TSshTunnelSettings {
  std::string Host;
  int Port = 22;
  std::string User;
  // Seconds; applied only from 15 up, below that libssh's default stays.
  int Timeout = 0;
  // Password login when ClientKey is empty.
  std::string Password;
  // Public-key login with this key of the key store.
  std::string ClientKey;
  // The MySQL server as the SSH server sees it.
  std::string TargetHost;
  int TargetPort = 3306;
  std::filesystem::path KeyStoreFolder;
};

// The SSH tunnel: while open it listens on a free loopback port and carries every connection made
// to it through a channel of one SSH connection to the target. When that SSH connection drops, the
// next connection made to the port logs in again first, so a session's silent reconnect works.
class TSshTunnel {
 public:
  TSshTunnel();
  ~TSshTunnel();
  TSshTunnel(const TSshTunnel&) = delete;
  TSshTunnel& operator=(const TSshTunnel&) = delete;

  // Logs in (checking the server's host key) and starts listening; an open tunnel is closed
  // first. Throws TSshError, and then nothing is left open.
  void Open(const TSshTunnelSettings& settings);
  // Open in steps, so that a login that hangs can be given up: StartOpen closes an open tunnel and
  // logs in on a thread of its own; WaitOpen is true once the login has ended; FinishOpen waits
  // for it and starts listening, or throws its TSshError; AbandonOpen gives it up at once.
  void StartOpen(const TSshTunnelSettings& settings);
  bool WaitOpen(std::chrono::milliseconds timeout);
  void FinishOpen();
  void AbandonOpen();
  // Ends the SSH connection and every forwarded connection; the port is no longer listened on.
  void Close();
  bool IsOpen() const;
  // The loopback port the session connects to; 0 while closed.
  int LocalPort() const;
  // Why the latest connection made to the port could not be forwarded (the login again or the
  // channel failed); empty when it was.
  std::string LastError() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> d;
};

}  // namespace lomarin
