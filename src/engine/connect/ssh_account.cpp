#include "engine/connect/ssh_account.h"

#include <charconv>

#include "engine/connect/my_connection.h"

namespace lomarin {

TSshTunnelSettings tunnelSettingsOf(const TAccount& account, const std::filesystem::path& keyStoreFolder) {
  TSshTunnelSettings s;
  s.Host = account.SSHServer;
  s.Port = account.SSHPort;
  s.User = account.SSHLogin;
  s.Timeout = account.Timeout;
  s.Password = account.SSHPassword;
  s.ClientKey = account.SSHClientKey;
  s.TargetHost = account.Server;
  const std::string& toPort = account.SSHToPort;
  int port = 0;
  const auto [end, error] = std::from_chars(toPort.data(), toPort.data() + toPort.size(), port);
  const bool valid = error == std::errc() && end == toPort.data() + toPort.size() && port > 0 && port < 65536;
  s.TargetPort = valid ? port : account.Port;
  s.KeyStoreFolder = keyStoreFolder;
  return s;
}

namespace {

bool PrepareAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                          const std::filesystem::path& keyStoreFolder, const TTunnelOpener& open) {
  // Disconnecting closes the tunnel in the main window's after-disconnect step: first, then.
  if (session.Connected()) session.Disconnect();
  session.Settings.TunnelPort = 0;
  // The HTTP tunnel, which the session opens itself, goes to the server without SSH.
  if (!account.UseSSH || account.UsePHP) {
    tunnel.Close();
    return true;
  }
  if (!open(tunnel, tunnelSettingsOf(account, keyStoreFolder))) return false;
  session.Settings.TunnelPort = tunnel.LocalPort();
  return true;
}

void CloseTunnelUnlessConnected(TMyConnection& session, TSshTunnel& tunnel) {
  if (session.Connected()) return;
  tunnel.Close();
  session.Settings.TunnelPort = 0;
}

}  // namespace

bool ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder, const TTunnelOpener& open,
                                 const std::function<bool()>& connect) {
  if (!PrepareAccountTunnel(session, tunnel, account, keyStoreFolder, open)) return false;
  try {
    const bool connected = connect();
    CloseTunnelUnlessConnected(session, tunnel);
    return connected;
  } catch (...) {
    CloseTunnelUnlessConnected(session, tunnel);
    throw;
  }
}

void ConnectThroughAccountTunnel(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                                 const std::filesystem::path& keyStoreFolder) {
  const auto open = [](TSshTunnel& opened, const TSshTunnelSettings& settings) {
    opened.Open(settings);
    return true;
  };
  ConnectThroughAccountTunnel(session, tunnel, account, keyStoreFolder, open, [&session] {
    session.Connect();
    return true;
  });
}

}  // namespace lomarin
