#include "engine/connect/ssh_forwarder.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace lomarin {

namespace {

// Data that libssh parsed into one channel's buffer while reading for another is not announced
// by the socket; a bounded wait picks it up.
constexpr int kParkedDataWaitMs = 50;

}  // namespace

TSshForwarder::~TSshForwarder() {
  for (Link& link : links_) closeLink(link);
}

bool TSshForwarder::connected() const { return session_ && ssh_is_connected(session_.get()); }

std::string TSshForwarder::open(int fd, const std::string& host, int port) {
  ssh_channel channel = ssh_channel_new(session_.get());
  if (channel && ssh_channel_open_forward(channel, host.c_str(), port, "127.0.0.1", 0) == SSH_OK) {
    add(fd, channel);
    return {};
  }
  std::string reason = ssh_get_error(session_.get());
  if (reason.empty()) reason = "the SSH server did not open the channel";
  if (channel) ssh_channel_free(channel);
  return reason;
}

void TSshForwarder::add(int fd, ssh_channel channel) { links_.push_back(Link{fd, channel, {}, 0, false}); }

void TSshForwarder::closeLink(Link& link) {
  if (link.closed) return;
  link.closed = true;
  ::close(link.fd);
  if (ssh_channel_is_open(link.channel)) {
    ssh_channel_send_eof(link.channel);
    ssh_channel_close(link.channel);
  }
  ssh_channel_free(link.channel);
}

// Channel to socket until the channel has nothing more or the socket takes no more.
// True when something moved.
bool TSshForwarder::drainChannel(Link& link) {
  bool moved = false;
  while (!link.closed) {
    if (link.sent == link.toSocket.size()) {
      link.toSocket.clear();
      link.sent = 0;
      const int n = ssh_channel_read_nonblocking(link.channel, buffer_.data(),
                                                 static_cast<uint32_t>(buffer_.size()), 0);
      if (n == 0 && !ssh_channel_is_eof(link.channel)) return moved;
      if (n <= 0) {
        closeLink(link);
        return true;
      }
      link.toSocket.assign(buffer_.begin(), buffer_.begin() + n);
    }
    const ssize_t w = ::send(link.fd, link.toSocket.data() + link.sent, link.toSocket.size() - link.sent,
                             MSG_NOSIGNAL | MSG_DONTWAIT);
    if (w < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return moved;
    if (w <= 0) {
      closeLink(link);
      return true;
    }
    link.sent += static_cast<size_t>(w);
    moved = true;
  }
  return moved;
}

void TSshForwarder::readSocket(Link& link) {
  const ssize_t n = ::recv(link.fd, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
  if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return;
  if (n <= 0 || ssh_channel_write(link.channel, buffer_.data(), static_cast<uint32_t>(n)) != n)
    closeLink(link);
}

void TSshForwarder::dropClosed() {
  std::erase_if(links_, [](const Link& link) { return link.closed; });
}

void TSshForwarder::step(std::span<pollfd> extra) {
  bool moved = true;
  while (moved) {
    moved = false;
    for (Link& link : links_) moved = drainChannel(link) || moved;
  }
  if (!connected())
    for (Link& link : links_) closeLink(link);
  dropClosed();

  std::vector<pollfd> fds(extra.begin(), extra.end());
  bool reading = false;
  for (const Link& link : links_) {
    const bool pending = link.sent < link.toSocket.size();
    reading = reading || !pending;
    fds.push_back({link.fd, static_cast<short>(POLLIN | (pending ? POLLOUT : 0)), 0});
  }
  // The SSH socket is watched only while some link can take what arrives, else poll would spin.
  if (reading) fds.push_back({ssh_get_fd(session_.get()), POLLIN, 0});
  for (pollfd& fd : fds) fd.revents = 0;
  ::poll(fds.data(), fds.size(), links_.empty() ? -1 : kParkedDataWaitMs);

  std::copy_n(fds.begin(), extra.size(), extra.begin());
  for (size_t i = 0; i < links_.size(); ++i) {
    if (fds[extra.size() + i].revents & (POLLIN | POLLHUP | POLLERR)) readSocket(links_[i]);
  }
  dropClosed();
}

}  // namespace lomarin
