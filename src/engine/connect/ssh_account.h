#pragma once

#include <filesystem>

#include "engine/connect/accounts.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin {

class TMyConnection;

// The tunnel an account asks for: its SSH page, the account's server and "SSH To Port" (the
// account's port when that is not a number) as the target, and its time-out.
TSshTunnelSettings tunnelSettingsOf(const TAccount& account, const std::filesystem::path& keyStoreFolder);

// Readies the session, whose settings the account was copied onto, to connect the way the account
// asks: opens the account's SSH tunnel and points the session at it, or closes a tunnel left open.
// A connected session is disconnected first. Throws TSshError, and then no tunnel is open.
void PrepareAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                          const std::filesystem::path& keyStoreFolder);
// After a connect: a session that is not connected leaves no tunnel open.
void CloseTunnelUnlessConnected(TMyConnection& session, TSshTunnel& tunnel);

// Both around a blocking connect: through the account's SSH tunnel when it uses one, directly
// otherwise. A connect that fails leaves no tunnel open. Throws TSshError or ServerError.
void ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder);

}  // namespace lomarin
