#pragma once

#include <filesystem>

#include "engine/connect/accounts.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin {

class TMyConnection;

// The tunnel an account asks for: its SSH page, the account's server and "SSH To Port" (the
// account's port when that is not a number) as the target, and its time-out.
TSshTunnelSettings tunnelSettingsOf(const TAccount& account, const std::filesystem::path& keyStoreFolder);

// Connects the session, whose settings the account was copied onto: through the account's SSH
// tunnel when it uses one, directly otherwise (closing a tunnel left open). A connect that fails
// leaves no tunnel open. Throws TSshError or ServerError.
void ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder);

}  // namespace lomarin
