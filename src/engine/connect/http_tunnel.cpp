#include "engine/connect/http_tunnel.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/connect/http_request.h"
#include "engine/connect/loopback_listener.h"

namespace lomarin {

namespace {

constexpr long kOk = 200;
constexpr long kNoContent = 204;
constexpr size_t kFrameHead = 5;
constexpr size_t kSendChunk = 1024 * 1024;
constexpr size_t kTextKept = 400;
// How long Close lets the relayed connections end on their own (telling the script) before it
// cuts the requests off.
constexpr auto kCloseGrace = std::chrono::seconds(2);

bool sendAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(sent));
  }
  return true;
}

// Splits the open request's answer into frames; server bytes go straight to the local socket.
class TFrameReader {
 public:
  explicit TFrameReader(int fd) : fd_(fd) {}

  // False when the local socket no longer takes bytes.
  bool take(std::string_view bytes) {
    while (!bytes.empty()) {
      if (head_.size() < kFrameHead) {
        const size_t n = std::min(kFrameHead - head_.size(), bytes.size());
        head_.append(bytes.substr(0, n));
        bytes.remove_prefix(n);
        if (head_.size() < kFrameHead) return true;
        remaining_ = 0;
        for (size_t i = 1; i < kFrameHead; ++i)
          remaining_ = remaining_ << 8 | static_cast<unsigned char>(head_[i]);
        if (remaining_ == 0) finishFrame();
        continue;
      }
      const size_t n = std::min(remaining_, bytes.size());
      const std::string_view part = bytes.substr(0, n);
      if (head_[0] == 'D') {
        if (!sendAll(fd_, part)) return false;
      } else if (payload_.size() < kTextKept) {
        payload_.append(part);
      }
      bytes.remove_prefix(n);
      remaining_ -= n;
      if (remaining_ == 0) finishFrame();
    }
    return true;
  }

  const std::string& id() const { return id_; }
  bool ended() const { return ended_; }
  const std::string& endReason() const { return endReason_; }

 private:
  void finishFrame() {
    if (head_[0] == 'I') id_ = payload_;
    if (head_[0] == 'E') {
      ended_ = true;
      endReason_ = payload_;
    }
    head_.clear();
    payload_.clear();
  }

  int fd_;
  std::string head_;
  size_t remaining_ = 0;
  std::string payload_;
  std::string id_;
  bool ended_ = false;
  std::string endReason_;
};

}  // namespace

// One relayed connection: the download thread runs the open request and writes the server's
// bytes to the local socket; the upload thread posts what the local socket sends.
struct THttpTunnelLink {
  int fd;
  std::thread download;
  std::thread upload;
  // Guarded by the tunnel's mutex.
  std::string id;
  bool opened = false;
  bool failed = false;
  int running = 2;
  std::atomic<bool> downloadEnded = false;
};

struct THttpTunnel::Impl {
  TMyHttpTunnel script;
  THttpTunnelTarget target;
  int listenFd = -1;
  int wakeFd = -1;
  std::atomic<int> port{0};
  std::thread acceptor;
  // Cuts every request off.
  std::atomic<bool> stop = false;
  // Owned by the acceptor while it runs, then by Close.
  std::list<THttpTunnelLink> links;

  mutable std::mutex mutex;
  std::condition_variable changed;
  std::string lastError;

  void run();
  void reap(bool all);
  void download(THttpTunnelLink& link);
  void upload(THttpTunnelLink& link);
  void noteError(const std::string& text) {
    const std::lock_guard lock(mutex);
    lastError = text;
  }
  void finished(THttpTunnelLink& link) {
    const std::lock_guard lock(mutex);
    --link.running;
    changed.notify_all();
  }
  std::string openQuery() const {
    return "a=open&host=" + escaped(target.Host) + "&port=" + std::to_string(target.Port);
  }
  static std::string escaped(const std::string& text) {
    char* value = curl_easy_escape(nullptr, text.c_str(), static_cast<int>(text.size()));
    std::string result = value ? value : "";
    curl_free(value);
    return result;
  }
};

void THttpTunnel::Impl::run() {
  for (;;) {
    std::array<pollfd, 2> fds{pollfd{wakeFd, POLLIN, 0}, pollfd{listenFd, POLLIN, 0}};
    ::poll(fds.data(), fds.size(), -1);
    if (fds[0].revents) return;
    for (int fd; (fd = ::accept4(listenFd, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
      THttpTunnelLink& link = links.emplace_back();
      link.fd = fd;
      link.download = std::thread([this, &link] { download(link); });
      link.upload = std::thread([this, &link] { upload(link); });
    }
    reap(false);
  }
}

// Joins the links that have ended (all of them: waits for them).
void THttpTunnel::Impl::reap(bool all) {
  for (auto it = links.begin(); it != links.end();) {
    bool ended;
    {
      const std::lock_guard lock(mutex);
      ended = it->running == 0;
    }
    if (!ended && !all) {
      ++it;
      continue;
    }
    it->download.join();
    it->upload.join();
    ::close(it->fd);
    it = links.erase(it);
  }
}

void THttpTunnel::Impl::download(THttpTunnelLink& link) {
  THttpRequest request(script, target.ConnectTimeout, &stop);
  TFrameReader frames(link.fd);
  std::string refusal;
  bool announced = false;
  const long status = request.get(openQuery(), [&](std::string_view bytes) {
    if (request.status() != kOk) {
      refusal.append(bytes.substr(0, kTextKept));
      return true;
    }
    const bool taken = frames.take(bytes);
    if (!announced && !frames.id().empty()) {
      announced = true;
      const std::lock_guard lock(mutex);
      link.id = frames.id();
      link.opened = true;
      lastError.clear();
      changed.notify_all();
    }
    return taken;
  });
  if (!announced) {
    const std::string reason =
        status == kOk ? "The HTTP tunnel failed: " + script.Url + " does not answer as the tunnel script"
                      : request.failure(status, refusal);
    const std::lock_guard lock(mutex);
    lastError = reason;
    link.failed = true;
    changed.notify_all();
  } else if (!frames.endReason().empty()) {
    noteError("The HTTP tunnel failed: " + frames.endReason());
  }
  link.downloadEnded = true;
  // The client sees the server's close, and the upload thread stops reading.
  ::shutdown(link.fd, SHUT_RDWR);
  finished(link);
}

void THttpTunnel::Impl::upload(THttpTunnelLink& link) {
  std::string id;
  {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&link] { return link.opened || link.failed; });
    id = link.id;
  }
  if (!id.empty()) {
    THttpRequest request(script, target.ConnectTimeout, &stop);
    std::vector<char> buffer(kSendChunk);
    for (;;) {
      const ssize_t n = ::recv(link.fd, buffer.data(), buffer.size(), 0);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      const long status =
          request.post("a=send&id=" + id, std::string_view(buffer.data(), static_cast<size_t>(n)));
      if (status != kNoContent) {
        if (!stop && !link.downloadEnded) noteError(request.failure(status, {}));
        ::shutdown(link.fd, SHUT_RDWR);
        break;
      }
    }
    if (!link.downloadEnded) request.post("a=close&id=" + id, {});
  }
  finished(link);
}

THttpTunnel::THttpTunnel() : d(std::make_unique<Impl>()) {}

THttpTunnel::~THttpTunnel() { Close(); }

void THttpTunnel::Open(const TMyHttpTunnel& script, const THttpTunnelTarget& target) {
  Close();
  const TLoopbackListener listener = listenOnLoopback();
  if (listener.fd < 0)
    throw THttpTunnelError("The tunnel can not listen on a loopback port: " + listener.error);
  d->script = script;
  d->target = target;
  d->listenFd = listener.fd;
  d->wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  d->lastError.clear();
  d->port = listener.port;
  d->acceptor = std::thread([impl = d.get()] { impl->run(); });
}

void THttpTunnel::Close() {
  if (!d->acceptor.joinable()) return;
  const uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(d->wakeFd, &one, sizeof one);
  d->acceptor.join();
  for (int* fd : {&d->listenFd, &d->wakeFd}) {
    ::close(*fd);
    *fd = -1;
  }
  d->port = 0;
  // Ending the local side lets each link tell the script it is closed.
  for (THttpTunnelLink& link : d->links) ::shutdown(link.fd, SHUT_RDWR);
  {
    std::unique_lock lock(d->mutex);
    d->changed.wait_for(lock, kCloseGrace, [this] {
      for (const THttpTunnelLink& link : d->links)
        if (link.running != 0) return false;
      return true;
    });
  }
  d->stop = true;
  d->reap(true);
  d->stop = false;
}

bool THttpTunnel::IsOpen() const { return d->port != 0; }

int THttpTunnel::LocalPort() const { return d->port; }

std::string THttpTunnel::LastError() const {
  const std::lock_guard lock(d->mutex);
  return d->lastError;
}

}  // namespace lomarin
