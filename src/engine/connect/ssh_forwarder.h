#pragma once
// Private to the connect subsystem.

#include <poll.h>

#include <span>
#include <string>
#include <vector>

#include "engine/connect/ssh_libssh.h"

namespace lomarin {

// Moves bytes both ways between local sockets and the channels of one SSH connection, on one
// thread. Writes to a channel may wait for the server's window; reads never block.
class TSshForwarder {
 public:
  explicit TSshForwarder(SshSession session) : session_(std::move(session)) {}
  ~TSshForwarder();
  TSshForwarder(const TSshForwarder&) = delete;
  TSshForwarder& operator=(const TSshForwarder&) = delete;

  ssh_session session() const { return session_.get(); }
  bool connected() const;
  size_t links() const { return links_.size(); }

  // Joins a connected local socket with a channel to host:port; the socket is owned here from
  // then on. When the channel can not be opened the socket stays the caller's and the server's
  // reason is returned.
  std::string open(int fd, const std::string& host, int port);
  // Joins a socket with a channel that is open already (owning both).
  void add(int fd, ssh_channel channel);

  // Moves what can be moved, then waits until a socket, the SSH connection or one of `extra`
  // (whose revents it fills) has something. Closes links whose either side has ended; all of them
  // when the SSH connection is gone.
  void step(std::span<pollfd> extra);

 private:
  struct Link {
    int fd = -1;
    ssh_channel channel = nullptr;
    std::vector<char> toSocket;
    size_t sent = 0;
    bool closed = false;
  };

  bool drainChannel(Link& link);
  void readSocket(Link& link);
  void closeLink(Link& link);
  void dropClosed();

  SshSession session_;
  std::vector<Link> links_;
  std::vector<char> buffer_ = std::vector<char>(64 * 1024);
};

}  // namespace lomarin
