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

bool readTargetOption(const std::string& name, const std::function<std::string()>& value,
                      TMySessionSettings& target) {
  if (name == "--target-host") {
    target.Server = value();
  } else if (name == "--target-port") {
    target.Port = parsePort(value());
    target.Protocol = TMyProtocol::TCP;
  } else if (name == "--target-user") {
    target.Username = value();
  } else if (name == "--target-password") {
    target.Password = value();
  } else if (name == "--target-socket") {
    target.SocketPath = value();
  } else {
    return false;
  }
  return true;
}

}  // namespace lomarin::cli
