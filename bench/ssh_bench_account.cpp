// Stores the account bench/ssh_tunnel.sh queries through: a new ed25519 client key in the key
// store of the settings that LOMARIN_CONFIG_DIR and LOMARIN_DATA_DIR name, and an account
// "bench" that logs in to the SSH server with it and forwards to the MySQL server. Prints the
// key's public line and the key file, one a line.
//   ssh_bench_account SSH_HOST SSH_PORT SSH_USER MYSQL_HOST MYSQL_PORT MYSQL_USER MYSQL_PASSWORD
#include <cstdio>
#include <string>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_key_store.h"

int main(int argc, char** argv) {
  if (argc != 8) {
    std::fprintf(stderr,
                 "usage: ssh_bench_account SSH_HOST SSH_PORT SSH_USER MYSQL_HOST MYSQL_PORT MYSQL_USER "
                 "MYSQL_PASSWORD\n");
    return 2;
  }
  using namespace lomarin;
  try {
    SettingsStore settings(SettingsStore::defaultFile());
    const TSshKeyStore keys(SshKeyStoreFolder(settings));
    if (!keys.hasClientKey("bench")) keys.newClientKey("bench", TSshKeyType::Ed25519);
    TAccount account;
    account.UseSSH = true;
    account.SSHServer = argv[1];
    account.SSHPort = std::stoi(argv[2]);
    account.SSHLogin = argv[3];
    account.SSHClientKey = "bench";
    account.Server = argv[4];
    account.SSHToPort = argv[5];
    account.Port = std::stoi(argv[5]);
    account.Login = argv[6];
    account.Password = argv[7];
    TAccountStore accounts(settings);
    if (!accounts.exists("bench"))
      accounts.add("bench", account);
    else
      accounts.save("bench", account);
    std::printf("%s\n%s\n", keys.publicLine("bench").c_str(), keys.clientKeyFile("bench").c_str());
  } catch (const TSshError& error) {
    std::fprintf(stderr, "ssh_bench_account: %s\n", error.what());
    return 1;
  } catch (const SettingsError& error) {
    std::fprintf(stderr, "ssh_bench_account: %s\n", error.what());
    return 1;
  }
  return 0;
}
