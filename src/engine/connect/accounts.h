#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

class SecretVault;
class SettingsStore;

// One stored connection account: everything the connect dialog shows, in plain text.
struct TAccount {
  std::string Login;
  std::string Password;
  std::string Server;
  int Port = 3306;
  std::string Database;
  bool ShowAllDatabases = false;

  bool UseSSH = false;
  std::string SSHServer;
  std::string SSHLogin;
  std::string SSHPassword;
  int SSHPort = 22;
  std::string SSHToPort = "3306";
  std::string SSHForward = "3306";
  std::string SSHClientKey;

  std::string ClientCharset = "default";
  std::string FontCharset = "default";
  bool Direct = true;

  bool UseSSL = false;
  std::string SSLKey;
  std::string SSLCACert;
  std::string SSLCert;
  std::string SSLCipherList;

  bool Unicode = true;
  bool Compression = false;
  int Timeout = 0;
  std::string FontFormat = "Default";
  std::string FontEncoding = "ANSI";

  bool UsePHP = false;
  std::string PHPUrl;
  std::string ProxyHost;
  std::string ProxyLogin;
  std::string ProxyPassword;
  int ProxyPort = 808;
  // What the tunnel script checks on every request; stored enciphered.
  std::string PHPSecret;

  bool operator==(const TAccount&) const = default;
};

// A row of the account list: the values read by their position in the account's key.
struct TAccountListRow {
  std::string Name;
  std::string Login;
  std::string Server;
  std::string Database;
  bool UsesSSH = false;
};

inline constexpr std::string_view kNameAlreadyExists = "The name already exists ";

// The stored accounts: one key per account under the accounts key, every value a string.
// With a keychain that answers and the option on, the passwords live there, keyed "account\value
// name"; the account's key then holds empty passwords and its keychain flag.
class TAccountStore {
 public:
  explicit TAccountStore(SettingsStore& settings, SecretVault* keychain = nullptr)
      : settings_(settings), keychain_(keychain) {}

  bool exists(std::string_view name) const;
  std::vector<std::string> names() const;
  std::vector<TAccountListRow> list() const;
  // Empty when there is no such account.
  std::optional<TAccount> load(std::string_view name) const;

  // A new account; false (and nothing written) when the name is taken (use kNameAlreadyExists for
  // the message), empty or holds a backslash.
  bool add(std::string_view name, const TAccount& account);
  // Writes every value again; the values keep the order of their first write.
  bool save(std::string_view name, const TAccount& account);
  // True when the last add or save wanted the keychain but it refused the passwords, which the
  // settings store then keeps enciphered.
  bool keptOutOfKeychain() const { return keptOutOfKeychain_; }
  bool remove(std::string_view name);

  // Moves the passwords of every account to where the option wants them, each only once its new
  // place holds it. Returns the accounts whose passwords stayed where they were.
  std::vector<std::string> moveSecrets();

  // Enciphers the plain "SSH Password" values older versions stored, once: the options value
  // "Encrypt SSH" records that it ran. True when it ran now.
  bool migrateSshPasswords();

 private:
  // The spelling the store keeps; empty when there is no such account.
  std::string storedName(std::string_view name) const;
  bool keychainWanted() const;
  bool keychainAnswers() const;
  std::optional<TAccount> read(std::string_view name, bool& secretsRead) const;
  bool writeSecrets(const std::string& name, const TAccount& account);
  void removeSecrets(const std::string& name);

  SettingsStore& settings_;
  SecretVault* keychain_;
  bool keptOutOfKeychain_ = false;
};

inline constexpr std::string_view kLocalSandboxAccount = "Local sandbox";

// The account ./run starts the program with; created when missing, an existing one is kept as
// the user may have changed it. True when it was created.
bool ensureLocalSandboxAccount(SettingsStore& settings, const std::string& host, int port,
                               const std::string& user, const std::string& password,
                               const std::string& database, SecretVault* keychain = nullptr);

}  // namespace lomarin
