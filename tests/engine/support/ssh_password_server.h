#pragma once

#include <string>
#include <thread>

namespace lomarin::test {

// A small SSH server on libssh, on a free loopback port, for password logins: OpenSSH checks
// passwords against the system's accounts, which tests must not change. It takes one user and
// password and forwards the first direct-tcpip channel of each connection.
class PasswordSshServer {
 public:
  PasswordSshServer(std::string user, std::string password);
  ~PasswordSshServer();
  PasswordSshServer(const PasswordSshServer&) = delete;
  PasswordSshServer& operator=(const PasswordSshServer&) = delete;

  int port() const { return port_; }

 private:
  void run();
  void serve(void* session);

  std::string user_;
  std::string password_;
  void* bind_ = nullptr;
  int stopFd_ = -1;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace lomarin::test
