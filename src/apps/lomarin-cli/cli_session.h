#pragma once

#include "cli_options.h"

namespace lomarin {
class TMyConnection;
class TSshTunnel;
}  // namespace lomarin

namespace lomarin::cli {

// Connects a command's session: with the connection options, or with the stored account that
// --account names, through its SSH tunnel when it uses one (the tunnel must outlive the session).
// Throws ServerError, TSshError, SettingsError, or std::invalid_argument for an unknown account.
void connectSession(const ParsedArgs& args, TMyConnection& session, TSshTunnel& tunnel);

}  // namespace lomarin::cli
