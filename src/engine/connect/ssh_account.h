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

// Opens the tunnel with the settings; false when the user gave it up.
using TTunnelOpener = std::function<bool(TSshTunnel&, const TSshTunnelSettings&)>;

// Runs connect around the account's SSH tunnel: a connected session is disconnected first, the
// tunnel is opened by open and the session pointed at it when the account uses one (closed
// otherwise), and no tunnel stays open unless the session connected. Returns false when open or
// connect was given up, else what connect returns. Throws TSshError, or what connect throws.
bool ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder, const TTunnelOpener& open,
                                 const std::function<bool()>& connect);
// The same with the session's own blocking connect. Throws TSshError or ServerError.
void ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder);

}  // namespace lomarin
