#include "engine/connect/accounts.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/accounts_cipher.h"
#include "engine/connect/secret_vault.h"

namespace lomarin {

namespace {

constexpr std::string_view kSshPassword = "SSH Password";
constexpr std::string_view kInKeychain = "Passwords in keychain";

std::string keyOf(std::string_view name) {
  std::string path(key::Accounts);
  path += '\\';
  path += name;
  return path;
}

std::string flag(bool on) { return on ? "-1" : "0"; }

int toInt(std::string_view text, int def) {
  int value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size() ? value : def;
}

bool toFlag(std::string_view text) { return toInt(text, 0) != 0; }

std::string onlyIf(bool on, const std::string& text) { return on ? text : std::string(); }

// The passwords an account stores, in plain text, under their value names.
std::vector<std::pair<std::string_view, std::string>> secretsOf(const TAccount& a) {
  return {
      {"Password", a.Password},
      {kSshPassword, onlyIf(a.UseSSH, a.SSHPassword)},
      {"PHP Proxy password", onlyIf(a.UsePHP, a.ProxyPassword)},
      {"PHP Secret", onlyIf(a.UsePHP, a.PHPSecret)},
  };
}

std::string secretKey(const std::string& account, std::string_view valueName) {
  return account + '\\' + std::string(valueName);
}

// The values of an account in the order they are written; the account list reads them by
// position, so this order is part of the stored format.
std::vector<std::pair<std::string_view, std::string>> storedValues(const TAccount& a, bool inKeychain) {
  const bool ssh = a.UseSSH;
  const bool php = a.UsePHP;
  const auto secret = [inKeychain](bool on, const std::string& text) {
    return on && !inKeychain ? encipher(text) : std::string();
  };
  return {
      {"Login", a.Login},
      {"Password", secret(true, a.Password)},
      {"Server", a.Server},
      {"Database Port", std::to_string(a.Port)},
      {"Database Name", a.Database},
      {"Show All Database", flag(a.ShowAllDatabases)},
      {"Use SSH", flag(ssh)},
      {"SSH Server", onlyIf(ssh, a.SSHServer)},
      {"SSH Login", onlyIf(ssh, a.SSHLogin)},
      {kSshPassword, secret(ssh, a.SSHPassword)},
      {"SSH Port", ssh ? std::to_string(a.SSHPort) : std::string("22")},
      {"SSH To Port", onlyIf(ssh, a.SSHToPort)},
      {"SSH Forward", onlyIf(ssh, a.SSHForward)},
      {"Client charset", a.ClientCharset},
      {"Font charset", a.FontCharset},
      {"Direct Connection", flag(a.Direct)},
      {"Use SSL", flag(a.UseSSL)},
      {"Client key", a.SSLKey},
      {"Certificate authority file", a.SSLCACert},
      {"Certificate file", a.SSLCert},
      {"Chipher list", a.SSLCipherList},
      {"Unicode", flag(a.Unicode)},
      {"Compression", flag(a.Compression)},
      {"Timeout", std::to_string(a.Timeout)},
      {"Font format", a.FontFormat},
      {"Font encoding", a.FontEncoding},
      {"SSH Client Key", onlyIf(ssh, a.SSHClientKey)},
      {"Use PHP", flag(php)},
      {"PHP url", onlyIf(php, a.PHPUrl)},
      {"PHP Proxy host", onlyIf(php, a.ProxyHost)},
      {"PHP Proxy login", onlyIf(php, a.ProxyLogin)},
      {"PHP Proxy password", secret(php, a.ProxyPassword)},
      {"PHP Proxy port", php ? std::to_string(a.ProxyPort) : std::string("808")},
      // Ours, after the values older versions wrote, so their positions stay.
      {"PHP Secret", secret(php, a.PHPSecret)},
      {kInKeychain, flag(inKeychain)},
  };
}

}  // namespace

bool TAccountStore::exists(std::string_view name) const { return !storedName(name).empty(); }

std::vector<std::string> TAccountStore::names() const { return settings_.subKeyNames(key::Accounts); }

std::vector<TAccountListRow> TAccountStore::list() const {
  std::vector<TAccountListRow> rows;
  for (const auto& name : names()) {
    const std::string path = keyOf(name);
    std::vector<std::string> values;
    for (const auto& valueName : settings_.valueNames(path))
      values.push_back(settings_.readString(valueName, "", path));
    const auto at = [&](size_t i) { return i < values.size() ? values[i] : std::string(); };
    rows.push_back({name, at(0), at(2), at(4), values.size() > 6 && values[6] == "-1"});
  }
  return rows;
}

std::string TAccountStore::storedName(std::string_view name) const {
  for (const auto& existing : names())
    if (existing.size() == name.size() &&
        std::equal(existing.begin(), existing.end(), name.begin(), [](char a, char b) {
          return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
        }))
      return existing;
  return {};
}

bool TAccountStore::keychainAnswers() const { return keychain_ && keychain_->available(); }

bool TAccountStore::keychainWanted() const {
  return settings_.read(opt::PasswordsInKeychain) && keychainAnswers();
}

std::optional<TAccount> TAccountStore::load(std::string_view name) const {
  bool secretsRead = false;
  return read(name, secretsRead);
}

std::optional<TAccount> TAccountStore::read(std::string_view lookedUp, bool& secretsRead) const {
  const std::string name = storedName(lookedUp);
  if (name.empty()) return std::nullopt;
  const std::string path = keyOf(name);
  const TAccount defaults;
  const auto text = [&](std::string_view value, const std::string& def) {
    return settings_.readString(value, def, path);
  };
  const auto number = [&](std::string_view value, int def) { return toInt(text(value, ""), def); };
  const auto on = [&](std::string_view value, bool def) { return toFlag(text(value, flag(def))); };
  const bool inKeychain = on(kInKeychain, false);
  secretsRead = !inKeychain || keychainAnswers();
  const auto secret = [&](std::string_view value) {
    if (!inKeychain) return decipher(text(value, ""));
    std::optional<std::string> kept;
    if (secretsRead) kept = keychain_->read(secretKey(name, value));
    secretsRead = secretsRead && kept;
    return kept.value_or("");
  };

  TAccount a;
  a.Login = text("Login", "");
  a.Password = secret("Password");
  a.Server = text("Server", "");
  a.Port = number("Database Port", defaults.Port);
  a.Database = text("Database Name", "");
  a.ShowAllDatabases = on("Show All Database", defaults.ShowAllDatabases);
  a.UseSSH = on("Use SSH", false);
  a.SSHServer = text("SSH Server", "");
  a.SSHLogin = text("SSH Login", "");
  a.SSHPassword = secret(kSshPassword);
  a.SSHPort = number("SSH Port", defaults.SSHPort);
  a.SSHToPort = text("SSH To Port", defaults.SSHToPort);
  a.SSHForward = text("SSH Forward", defaults.SSHForward);
  a.SSHClientKey = text("SSH Client Key", "");
  a.ClientCharset = text("Client charset", defaults.ClientCharset);
  a.FontCharset = text("Font charset", defaults.FontCharset);
  a.Direct = on("Direct Connection", defaults.Direct);
  a.UseSSL = on("Use SSL", false);
  a.SSLKey = text("Client key", "");
  a.SSLCACert = text("Certificate authority file", "");
  a.SSLCert = text("Certificate file", "");
  a.SSLCipherList = text("Chipher list", "");
  a.Unicode = on("Unicode", defaults.Unicode);
  a.Compression = on("Compression", defaults.Compression);
  a.Timeout = number("Timeout", defaults.Timeout);
  a.FontFormat = text("Font format", defaults.FontFormat);
  a.FontEncoding = text("Font encoding", defaults.FontEncoding);
  a.UsePHP = on("Use PHP", false);
  a.PHPUrl = text("PHP url", "");
  a.ProxyHost = text("PHP Proxy host", "");
  a.ProxyLogin = text("PHP Proxy login", "");
  a.ProxyPassword = secret("PHP Proxy password");
  a.ProxyPort = number("PHP Proxy port", defaults.ProxyPort);
  a.PHPSecret = secret("PHP Secret");
  return a;
}

bool TAccountStore::add(std::string_view name, const TAccount& account) {
  // A backslash would make the name a path of keys.
  if (name.empty() || name.find('\\') != std::string_view::npos || exists(name)) return false;
  return save(name, account);
}

bool TAccountStore::save(std::string_view given, const TAccount& account) {
  std::string name = storedName(given);
  if (name.empty()) name = given;
  const std::string path = keyOf(name);
  const bool wasInKeychain = toFlag(settings_.readString(kInKeychain, "0", path));
  const bool wanted = keychainWanted();
  const bool inKeychain = wanted && writeSecrets(name, account);
  keptOutOfKeychain_ = wanted && !inKeychain;
  for (const auto& [valueName, text] : storedValues(account, inKeychain))
    if (!settings_.writeString(valueName, text, path)) return false;
  // Only once the store holds them; a refused write may have left some behind.
  if (!inKeychain && (wasInKeychain || wanted)) removeSecrets(name);
  return true;
}

bool TAccountStore::writeSecrets(const std::string& name, const TAccount& account) {
  for (const auto& [valueName, text] : secretsOf(account)) {
    const std::string key = secretKey(name, valueName);
    if (!(text.empty() ? keychain_->remove(key) : keychain_->write(key, text))) return false;
  }
  return true;
}

void TAccountStore::removeSecrets(const std::string& name) {
  if (!keychainAnswers()) return;
  for (const auto& [valueName, text] : secretsOf(TAccount{})) keychain_->remove(secretKey(name, valueName));
}

bool TAccountStore::remove(std::string_view given) {
  const std::string name = storedName(given);
  if (name.empty()) return false;
  const bool inKeychain = toFlag(settings_.readString(kInKeychain, "0", keyOf(name)));
  if (!settings_.deleteKey(keyOf(name))) return false;
  if (inKeychain) removeSecrets(name);
  return true;
}

std::vector<std::string> TAccountStore::moveSecrets() {
  const bool wanted = keychainWanted();
  std::vector<std::string> stayed;
  for (const auto& name : names()) {
    if (toFlag(settings_.readString(kInKeychain, "0", keyOf(name))) == wanted) continue;
    bool secretsRead = false;
    const auto account = read(name, secretsRead);
    if (!account || !secretsRead || !save(name, *account) || keptOutOfKeychain_) stayed.push_back(name);
  }
  return stayed;
}

bool TAccountStore::migrateSshPasswords() {
  if (settings_.read(opt::EncryptSsh) != "0") return false;
  for (const auto& name : names()) {
    const std::string path = keyOf(name);
    const std::string plain = settings_.readString(kSshPassword, "", path);
    if (!plain.empty()) settings_.writeString(kSshPassword, encipher(plain), path);
  }
  settings_.write(opt::EncryptSsh, "1");
  return true;
}

bool ensureLocalSandboxAccount(SettingsStore& settings, const std::string& host, int port,
                               const std::string& user, const std::string& password,
                               const std::string& database, SecretVault* keychain) {
  TAccount account;
  account.Server = host;
  account.Port = port;
  account.Login = user;
  account.Password = password;
  account.Database = database;
  account.ShowAllDatabases = true;
  return TAccountStore(settings, keychain).add(kLocalSandboxAccount, account);
}

}  // namespace lomarin
