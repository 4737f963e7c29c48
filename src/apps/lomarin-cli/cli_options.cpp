#include "cli_options.h"

#include <charconv>
#include <stdexcept>

namespace lomarin::cli {

namespace {

int parsePort(const std::string& text) {
  int port = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (ec != std::errc() || end != text.data() + text.size() || port <= 0 || port > 65535)
    throw std::invalid_argument("invalid port: " + text);
  return port;
}

}  // namespace

ParsedArgs parseArgs(const std::vector<std::string>& args) {
  ParsedArgs parsed;
  TMySessionSettings& c = parsed.connection;
  c.Server = "localhost";
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg.rfind("--", 0) != 0 || arg == "--") {
      parsed.positional.push_back(arg);
      continue;
    }
    std::string name = arg;
    std::string value;
    bool hasValue = false;
    if (auto eq = arg.find('='); eq != std::string::npos) {
      name = arg.substr(0, eq);
      value = arg.substr(eq + 1);
      hasValue = true;
    }
    auto take = [&]() -> std::string {
      if (hasValue) return value;
      if (i + 1 >= args.size()) throw std::invalid_argument("option " + name + " needs a value");
      return args[++i];
    };
    if (name == "--host") {
      c.Server = take();
    } else if (name == "--port") {
      c.Port = parsePort(take());
      if (c.Protocol == TMyProtocol::Default) c.Protocol = TMyProtocol::TCP;
    } else if (name == "--user") {
      c.Username = take();
    } else if (name == "--password") {
      c.Password = take();
    } else if (name == "--database") {
      c.Database = take();
    } else if (name == "--socket") {
      c.SocketPath = take();
    } else if (name == "--ssl-ca") {
      c.SSL.CACert = take();
      c.UseSSL = true;
    } else if (name == "--ssl-cert") {
      c.SSL.Cert = take();
      c.UseSSL = true;
    } else if (name == "--ssl-key") {
      c.SSL.Key = take();
      c.UseSSL = true;
    } else if (name == "--ssl-cipher") {
      c.SSL.ChipherList = take();
      c.UseSSL = true;
    } else if (name == "--ssl" && !hasValue) {
      c.UseSSL = true;
    } else if (name == "--compress" && !hasValue) {
      c.Compress = true;
    } else if (name == "--account") {
      parsed.account = take();
    } else if (name == "--default-character-set") {
      c.Charset = take();
    } else {
      parsed.flags.push_back(arg);
    }
  }
  return parsed;
}

CommandFlag::CommandFlag(const std::string& flag) {
  const size_t eq = flag.find('=');
  name_ = flag.substr(0, eq);
  if (eq != std::string::npos) value_ = flag.substr(eq + 1);
}

std::string CommandFlag::value() const {
  if (!value_) throw std::invalid_argument("option " + name_ + " needs =VALUE");
  return *value_;
}

bool readTargetOption(const CommandFlag& option, TMySessionSettings& target) {
  const std::string& name = option.name();
  if (name == "--target-host") {
    target.Server = option.value();
  } else if (name == "--target-port") {
    target.Port = parsePort(option.value());
    target.Protocol = TMyProtocol::TCP;
  } else if (name == "--target-user") {
    target.Username = option.value();
  } else if (name == "--target-password") {
    target.Password = option.value();
  } else if (name == "--target-socket") {
    target.SocketPath = option.value();
  } else {
    return false;
  }
  return true;
}

}  // namespace lomarin::cli
