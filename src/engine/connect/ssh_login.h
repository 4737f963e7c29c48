#pragma once
// Private to the connect subsystem.

#include <string>

#include "engine/connect/ssh_libssh.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin {

// Connects to the SSH server, checks its host key against the key store and logs in with the
// client key or the password. Throws TSshError.
SshSession OpenSshSession(const TSshTunnelSettings& settings);

// How known_hosts names the server: "host" for port 22, "[host]:port" otherwise.
std::string KnownHostName(const std::string& host, int port);

}  // namespace lomarin
