#include "engine/connect/ssh_tunnel.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "engine/connect/loopback_listener.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_forwarder.h"
#include "engine/connect/ssh_login.h"

namespace lomarin {

namespace {

// One login on a thread of its own, which shares nothing but this object: the tunnel may drop it
// at any moment, and the thread then ends the login it made by itself.
class SshLoginAttempt {
 public:
  static std::shared_ptr<SshLoginAttempt> start(const TSshTunnelSettings& settings) {
    auto attempt = std::make_shared<SshLoginAttempt>();
    std::thread([attempt, settings] { attempt->run(settings); }).detach();
    return attempt;
  }
  bool waitFor(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex_);
    return ended_.wait_for(lock, timeout, [this] { return done_; });
  }
  SshSession take() {
    std::unique_lock lock(mutex_);
    ended_.wait(lock, [this] { return done_; });
    if (error_) throw TSshError(*error_);
    return std::move(session_);
  }

 private:
  void run(const TSshTunnelSettings& settings) {
    SshSession session;
    std::optional<std::string> error;
    try {
      session = OpenSshSession(settings);
    } catch (const TSshError& e) {
      error = e.what();
    }
    const std::lock_guard lock(mutex_);
    session_ = std::move(session);
    error_ = std::move(error);
    done_ = true;
    ended_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable ended_;
  bool done_ = false;
  SshSession session_;
  std::optional<std::string> error_;
};

}  // namespace

struct TSshTunnel::Impl {
  TSshTunnelSettings settings;
  // Used by the forwarding thread only while it runs.
  std::unique_ptr<TSshForwarder> forwarder;
  int listenFd = -1;
  int wakeFd = -1;
  std::atomic<int> port{0};
  std::thread thread;
  // The login under way, between StartOpen and FinishOpen.
  std::shared_ptr<SshLoginAttempt> login;
  TSshTunnelSettings loginSettings;
  mutable std::mutex mutex;
  std::string lastError;

  void run();
  void forward(int fd);
  void noteError(const std::string& text) {
    const std::lock_guard lock(mutex);
    lastError = text;
  }
};

void TSshTunnel::Impl::run() {
  for (;;) {
    std::array<pollfd, 2> extra{pollfd{wakeFd, POLLIN, 0}, pollfd{listenFd, POLLIN, 0}};
    if (forwarder)
      forwarder->step(extra);
    else
      ::poll(extra.data(), extra.size(), -1);
    if (extra[0].revents) return;
    if (!(extra[1].revents & POLLIN)) continue;
    for (int fd; (fd = ::accept4(listenFd, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)) >= 0;)
      forward(fd);
  }
}

void TSshTunnel::Impl::forward(int fd) {
  const int on = 1;
  ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  // A dropped SSH connection is often noticed only now, when a channel can not be opened on it.
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!forwarder || !forwarder->connected()) {
      forwarder.reset();
      try {
        forwarder = std::make_unique<TSshForwarder>(OpenSshSession(settings));
      } catch (const TSshError& error) {
        noteError(error.what());
        break;
      }
    }
    const std::string reason = forwarder->open(fd, settings.TargetHost, settings.TargetPort);
    if (reason.empty()) {
      noteError({});
      return;
    }
    noteError("The SSH server did not forward to " + settings.TargetHost + ":" +
              std::to_string(settings.TargetPort) + ": " + reason);
    if (forwarder->connected()) break;
  }
  ::close(fd);
}

TSshTunnel::TSshTunnel() : d(std::make_unique<Impl>()) {}

TSshTunnel::~TSshTunnel() { Close(); }

void TSshTunnel::Open(const TSshTunnelSettings& settings) {
  StartOpen(settings);
  FinishOpen();
}

void TSshTunnel::StartOpen(const TSshTunnelSettings& settings) {
  Close();
  d->loginSettings = settings;
  d->login = SshLoginAttempt::start(settings);
}

bool TSshTunnel::WaitOpen(std::chrono::milliseconds timeout) {
  return !d->login || d->login->waitFor(timeout);
}

void TSshTunnel::AbandonOpen() { d->login.reset(); }

void TSshTunnel::FinishOpen() {
  if (!d->login) return;
  const std::shared_ptr<SshLoginAttempt> login = std::move(d->login);
  auto forwarder = std::make_unique<TSshForwarder>(login->take());
  const TLoopbackListener listener = listenOnLoopback();
  if (listener.fd < 0) throw TSshError("The tunnel can not listen on a loopback port: " + listener.error);
  d->wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  d->settings = d->loginSettings;
  d->forwarder = std::move(forwarder);
  d->listenFd = listener.fd;
  d->lastError.clear();
  d->port = listener.port;
  d->thread = std::thread([impl = d.get()] { impl->run(); });
}

void TSshTunnel::Close() {
  d->login.reset();
  if (d->thread.joinable()) {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(d->wakeFd, &one, sizeof one);
    d->thread.join();
  }
  d->forwarder.reset();
  for (int* fd : {&d->listenFd, &d->wakeFd}) {
    if (*fd >= 0) ::close(*fd);
    *fd = -1;
  }
  d->port = 0;
}

bool TSshTunnel::IsOpen() const { return d->port != 0; }

int TSshTunnel::LocalPort() const { return d->port; }

std::string TSshTunnel::LastError() const {
  const std::lock_guard lock(d->mutex);
  return d->lastError;
}

}  // namespace lomarin
