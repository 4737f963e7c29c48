#include "account_command.h"

#include <string>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"

namespace lomarin::cli {

int runSandboxAccount(const ParsedArgs& args, std::FILE* out, std::FILE* err) {
  if (!args.positional.empty()) {
    std::fprintf(err, "usage: lomarin-cli sandbox-account [connection options]\n");
    return 2;
  }
  const TMySessionSettings& c = args.connection;
  const std::string name(kLocalSandboxAccount);
  try {
    SettingsStore settings(SettingsStore::defaultFile());
    const bool created =
        ensureLocalSandboxAccount(settings, c.Server, c.Port, c.Username, c.Password, c.Database,
                                  args.keychain);
    std::fprintf(out, created ? "created account \"%s\"\n" : "account \"%s\" exists\n", name.c_str());
  } catch (const SettingsError& error) {
    std::fprintf(err, "lomarin-cli: %s\n", error.what());
    return 1;
  }
  return 0;
}

}  // namespace lomarin::cli
