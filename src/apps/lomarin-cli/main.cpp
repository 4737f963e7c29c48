#include <QCoreApplication>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "account_command.h"
#include "cli_options.h"
#include "compare_command.h"
#include "dump_command.h"
#include "engine/app/settings_store.h"
#include "engine/connect/ssh_error.h"
#include "exec_command.h"
#include "keychain/keychain_vault.h"
#include "query_command.h"
#include "sync_command.h"

namespace {

void usage(std::FILE* to) {
  std::fprintf(to,
               "usage: lomarin-cli COMMAND [options] ARGUMENTS\n"
               "commands:\n"
               "  query STATEMENT   print one statement's result as tab-separated rows\n"
               "  sandbox-account   store the connection options as the account \"Local sandbox\"\n"
               "  dump DATABASE     write a database as an SQL script (dump --help for its flags)\n"
               "  exec FILE         run a script; --optimize sends statements in batches\n"
               "  sync SOURCE TARGET  synchronise the rows of two databases (sync --help for its flags)\n"
               "  compare SOURCE TARGET  the script that gives TARGET the structure of SOURCE\n"
               "                    (databases or script files; compare --help for its flags)\n"
               "connection options: --host --port --user --password --database --socket\n"
               "                    --ssl --ssl-ca --ssl-cert --ssl-key --ssl-cipher --compress\n"
               "                    --default-character-set\n"
               "                    --account NAME (a stored account, its SSH tunnel included)\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    usage(stderr);
    return 2;
  }
  const std::string command = argv[1];
  if (command == "--help" || command == "help") {
    usage(stdout);
    return 0;
  }
  // The keychain answers through Qt's event loop.
  QCoreApplication app(argc, argv);
  lomarin::KeychainVault keychain;
  try {
    auto args = lomarin::cli::parseArgs(std::vector<std::string>(argv + 2, argv + argc));
    args.keychain = &keychain;
    if (command == "query") return lomarin::cli::runQuery(args, stdout, stderr);
    if (command == "sandbox-account") return lomarin::cli::runSandboxAccount(args, stdout, stderr);
    if (command == "dump") return lomarin::cli::runDump(args, stdout, stderr);
    if (command == "exec") return lomarin::cli::runExec(args, stderr);
    if (command == "sync") return lomarin::cli::runSync(args, stdout, stderr);
    if (command == "compare") return lomarin::cli::runCompare(args, stdout, stderr);
  } catch (const std::invalid_argument& error) {
    std::fprintf(stderr, "lomarin-cli: %s\n", error.what());
    return 2;
  } catch (const lomarin::TSshError& error) {
    std::fprintf(stderr, "lomarin-cli: %s\n", error.what());
    return 1;
  } catch (const lomarin::SettingsError& error) {
    std::fprintf(stderr, "lomarin-cli: %s\n", error.what());
    return 1;
  }
  std::fprintf(stderr, "lomarin-cli: unknown command %s\n", command.c_str());
  usage(stderr);
  return 2;
}
