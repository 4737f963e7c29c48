#pragma once

#include <filesystem>
#include <functional>

#include "engine/connect/accounts.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin {

class TMyConnection;

// The tunnel an account asks for: its SSH page, the account's server and "SSH To Port" (the
// account's port when that is not a number) as the target, and its time-out.
TSshTunnelSettings tunnelSettingsOf(const TAccount& account, const std::filesystem::path& keyStoreFolder);

// Runs connect around the account's SSH tunnel: a connected session is disconnected first, the
// tunnel is opened and the session pointed at it when the account uses one (closed otherwise), and
// no tunnel stays open unless the session connected. Returns what connect returns (false: given
// up). Throws TSshError, or what connect throws.
bool ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder,
                                 const std::function<bool()>& connect);
// The same with the session's own blocking connect. Throws TSshError or ServerError.
void ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder);

}  // namespace lomarin
