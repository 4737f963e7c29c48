#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/connect/session_settings.h"

namespace lomarin::cli {

struct ParsedArgs {
  TMySessionSettings connection;
  // --account NAME: connect with this stored account (its SSH tunnel included) instead.
  std::string account;
  std::vector<std::string> positional;
  std::vector<std::string> flags;  // options of the command itself, e.g. "--optimize"
};

// Reads the connection options every command takes, with the mariadb client's long names:
// --host --port --user --password --database --socket --ssl --ssl-ca --ssl-cert --ssl-key
// --compress, as "--name=value" or "--name value", and --account. Throws std::invalid_argument on
// a bad one.
ParsedArgs parseArgs(const std::vector<std::string>& args);

// Reads one of --target-host/-port/-user/-password/-socket into target; false when name is none of
// them. value() is asked only for a target option, so it may throw for a missing "=VALUE".
bool readTargetOption(const std::string& name, const std::function<std::string()>& value,
                      TMySessionSettings& target);

}  // namespace lomarin::cli
