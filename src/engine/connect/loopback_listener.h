#pragma once
// Private to the connect subsystem.

#include <string>

namespace lomarin {

struct TLoopbackListener {
  // Non-blocking listening socket, -1 when none could be made.
  int fd = -1;
  int port = 0;
  // Why there is none.
  std::string error;
};

// A listening socket on a free port of 127.0.0.1, for a tunnel's local end.
TLoopbackListener listenOnLoopback();

}  // namespace lomarin
