#include "cli_session.h"

#include <stdexcept>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/accounts_session.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_account.h"
#include "engine/connect/ssh_key_store.h"

namespace lomarin::cli {

void connectSession(const ParsedArgs& args, TMyConnection& session, TSshTunnel& tunnel) {
  if (args.account.empty()) {
    session.Settings = args.connection;
    session.Connect();
    return;
  }
  SettingsStore settings(SettingsStore::defaultFile());
  const auto account = TAccountStore(settings, args.keychain).load(args.account);
  if (!account) throw std::invalid_argument("no stored account named \"" + args.account + "\"");
  applyAccountToSession(*account, session.Settings);
  ConnectThroughAccountTunnel(session, tunnel, *account, SshKeyStoreFolder(settings));
}

}  // namespace lomarin::cli
