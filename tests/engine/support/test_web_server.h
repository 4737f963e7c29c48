#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "engine/connect/accounts.h"
#include "test_host.h"
#include "test_ssh_server.h"

namespace lomarin::test {

// Quote and backslash: the script's literal must escape them.
inline constexpr const char* kTunnelSecret = "correct horse's \\ battery";

// A program run by a test in a process group of its own, ended (SIGTERM, then waited for) with
// the object. Its output goes to a file.
class ChildProcess {
 public:
  ChildProcess(const std::vector<std::string>& command, const std::vector<std::string>& environment,
               const std::string& logFile);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

 private:
  pid_t pid_;
};

// PHP's built-in web server, with several workers, serving the shipped tunnel script (its secret
// set to kTunnelSecret) on a free loopback port, for as long as the object lives.
class TunnelWebServer {
 public:
  // allowedHosts: the script's list of MySQL hosts it may reach; empty allows any.
  explicit TunnelWebServer(const std::vector<std::string>& allowedHosts = {});
  std::string url() const;
  // Waits until the server has logged this many finished open requests (one per connection
  // relayed); false when it does not within a few seconds.
  bool awaitOpened(size_t count) const;

 private:
  TempFolder root_;
  int port_;
  std::unique_ptr<ChildProcess> php_;
};

// tinyproxy on a free loopback port, letting in the given user with basic authentication.
class TestProxy {
 public:
  TestProxy(const std::string& user, const std::string& password);
  int port() const { return port_; }

 private:
  TempFolder folder_;
  int port_;
  std::unique_ptr<ChildProcess> proxy_;
};

// An account of the MariaDB server's root user through the tunnel script at url.
TAccount httpTunnelAccount(const std::string& url);

}  // namespace lomarin::test
