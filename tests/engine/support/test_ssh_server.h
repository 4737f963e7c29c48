#pragma once

#include <filesystem>
#include <string>

#include "engine/connect/accounts.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin::test {

// The private OpenSSH server ./test started (LOMARIN_TEST_SSH_* variables), forwarding to the
// private MariaDB server. Fails when they are missing.
TSshTunnelSettings sshServerSettings(const std::filesystem::path& keyStoreFolder);
// Why that SSH server cannot be used (a variable it needs is missing); empty when it can.
std::string sshServerMissing();
// An account of the MariaDB server's root user reached through that SSH server.
TAccount sshAccount();

// Lets the key of this public line log in as the test user.
void authorizeKey(const std::string& publicLine);
// "SHA256:..." of the SSH server's ed25519 host key.
std::string sshHostKeyFingerprint();
// Kills (SIGKILL) every process the SSH server started for a connection; returns how many.
int killSshConnections();

// A folder of its own below the system's temporary folder, removed with the object.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace lomarin::test
