// Prepares what bench/http_tunnel.sh runs: writes the tunnel script, with the secret set, as
// DOCROOT/tunnel.php, and stores the account "bench-http" (in the settings LOMARIN_CONFIG_DIR
// names) that reaches the MySQL server through it at URL.
//   http_bench_account DOCROOT URL SECRET MYSQL_HOST MYSQL_PORT MYSQL_USER MYSQL_PASSWORD
#include <cstdio>
#include <fstream>
#include <string>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/tunnel_script.h"

int main(int argc, char** argv) {
  if (argc != 8) {
    std::fprintf(
        stderr,
        "usage: http_bench_account DOCROOT URL SECRET MYSQL_HOST MYSQL_PORT MYSQL_USER MYSQL_PASSWORD\n");
    return 2;
  }
  using namespace lomarin;
  std::ofstream(std::string(argv[1]) + "/tunnel.php") << TunnelScript(argv[3]);
  try {
    SettingsStore settings(SettingsStore::defaultFile());
    TAccount account;
    account.UsePHP = true;
    account.PHPUrl = argv[2];
    account.PHPSecret = argv[3];
    account.Server = argv[4];
    account.Port = std::stoi(argv[5]);
    account.Login = argv[6];
    account.Password = argv[7];
    TAccountStore accounts(settings);
    if (!accounts.exists("bench-http"))
      accounts.add("bench-http", account);
    else
      accounts.save("bench-http", account);
  } catch (const SettingsError& error) {
    std::fprintf(stderr, "http_bench_account: %s\n", error.what());
    return 1;
  }
  return 0;
}
