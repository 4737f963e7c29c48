#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

class SettingsStore;

enum class TSshKeyType { Ed25519, Rsa3072 };

// The folder of known server keys and the user's client keys. Everything in it is readable by
// the user only. Server keys live in "known_hosts" under OpenSSH's names ("host" for port 22,
// "[host]:port" otherwise); client keys are OpenSSH private key files in "client keys", named as
// the user named them. Failures throw TSshError.
class TSshKeyStore {
 public:
  explicit TSshKeyStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

  const std::filesystem::path& folder() const { return folder_; }
  std::filesystem::path knownHostsFile() const { return folder_ / "known_hosts"; }
  std::filesystem::path clientKeyFile(std::string_view name) const;

  std::vector<std::string> clientKeyNames() const;
  bool hasClientKey(std::string_view name) const;
  void newClientKey(std::string_view name, TSshKeyType type) const;
  // Reads an OpenSSH (or PEM) private key file. askPassphrase is called when the file is
  // protected; nullopt from it cancels the import (returns false). The stored copy has no
  // passphrase: the store itself is private to the user.
  bool importClientKey(std::string_view name, const std::filesystem::path& file,
                       const std::function<std::optional<std::string>()>& askPassphrase) const;
  void deleteClientKey(std::string_view name) const;
  // The line a server's authorized_keys takes: "<type> <base64> <name>".
  std::string publicLine(std::string_view name) const;
  std::string fingerprint(std::string_view name) const;

  // Adds one known_hosts line; the file is rewritten whole, never left half-written.
  void addKnownHost(std::string_view line) const;

 private:
  void ensureFolder(const std::filesystem::path& folder) const;
  void writePrivately(const std::filesystem::path& file, std::string_view content) const;
  void checkNewName(std::string_view name) const;

  std::filesystem::path folder_;
};

// The key store's folder: the option "Certificates path ", or the program's data folder while the
// option holds its default ".".
std::filesystem::path SshKeyStoreFolder(const SettingsStore& settings);

}  // namespace lomarin
