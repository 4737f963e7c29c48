#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/connect/session_settings.h"

namespace lomarin {
class SecretVault;
}

namespace lomarin::cli {

struct ParsedArgs {
  TMySessionSettings connection;
  // --account NAME: connect with this stored account (its SSH tunnel included) instead.
  std::string account;
  std::vector<std::string> positional;
  std::vector<std::string> flags;  // options of the command itself, e.g. "--optimize"
  // Where stored accounts may keep their passwords; set by the program, not by an option.
  SecretVault* keychain = nullptr;
};

// Reads the connection options every command takes, with the mariadb client's long names:
// --host --port --user --password --database --socket --ssl --ssl-ca --ssl-cert --ssl-key
// --compress, as "--name=value" or "--name value", and --account. Throws std::invalid_argument on
// a bad one.
ParsedArgs parseArgs(const std::vector<std::string>& args);

// One "--name" or "--name=value" option of a command.
class CommandFlag {
 public:
  explicit CommandFlag(const std::string& flag);
  const std::string& name() const { return name_; }
  // The text after "="; throws std::invalid_argument when the option has none.
  std::string value() const;

 private:
  std::string name_;
  std::optional<std::string> value_;
};

// Reads one of --target-host/-port/-user/-password/-socket into target; false when the option is
// none of them.
bool readTargetOption(const CommandFlag& option, TMySessionSettings& target);

}  // namespace lomarin::cli
