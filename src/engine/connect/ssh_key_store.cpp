#include "engine/connect/ssh_key_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include "engine/app/data_folder.h"
#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_libssh.h"

namespace lomarin {

namespace fs = std::filesystem;

namespace {

constexpr const char* kClientKeysFolder = "client keys";
constexpr int kRsaBits = 3072;

std::string quoted(std::string_view name) { return "\"" + std::string(name) + "\""; }

struct SshStringFree {
  void operator()(char* text) const { ssh_string_free_char(text); }
};
using SshText = std::unique_ptr<char, SshStringFree>;

SshKey loadPrivateKey(const fs::path& file, ssh_auth_callback askPassphrase, void* data) {
  ssh_key key = nullptr;
  if (ssh_pki_import_privkey_file(file.c_str(), nullptr, askPassphrase, data, &key) != SSH_OK) return nullptr;
  return SshKey(key);
}

SshKey loadStoredKey(const fs::path& file, std::string_view name) {
  SshKey key = loadPrivateKey(file, nullptr, nullptr);
  if (!key) throw TSshError("The client key " + quoted(name) + " can not be read from " + file.string());
  return key;
}

std::string privateKeyText(ssh_key key) {
  char* b64 = nullptr;
  if (ssh_pki_export_privkey_base64(key, nullptr, nullptr, nullptr, &b64) != SSH_OK)
    throw TSshError("The private key can not be written");
  std::string text(b64);
  ssh_string_free_char(b64);
  if (!text.empty() && text.back() != '\n') text += '\n';
  return text;
}

struct PassphraseRequest {
  const std::function<std::optional<std::string>()>* ask;
  bool asked = false;
  bool cancelled = false;
};

int answerPassphrase(const char*, char* buffer, size_t size, int, int, void* data) {
  auto* request = static_cast<PassphraseRequest*>(data);
  request->asked = true;
  const std::optional<std::string> passphrase = (*request->ask)();
  if (!passphrase || passphrase->size() >= size) {
    request->cancelled = !passphrase;
    return -1;
  }
  std::memcpy(buffer, passphrase->c_str(), passphrase->size() + 1);
  return 0;
}

}  // namespace

std::string Sha256Fingerprint(ssh_key key) {
  unsigned char* hash = nullptr;
  size_t length = 0;
  if (ssh_get_publickey_hash(key, SSH_PUBLICKEY_HASH_SHA256, &hash, &length) != SSH_OK) return {};
  SshText text(ssh_get_fingerprint_hash(SSH_PUBLICKEY_HASH_SHA256, hash, length));
  ssh_clean_pubkey_hash(&hash);
  return text ? std::string(text.get()) : std::string();
}

fs::path TSshKeyStore::clientKeyFile(std::string_view name) const {
  return folder_ / kClientKeysFolder / fs::path(std::string(name));
}

std::vector<std::string> TSshKeyStore::clientKeyNames() const {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder_ / kClientKeysFolder, error)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_regular_file() && name.front() != '.') names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool TSshKeyStore::hasClientKey(std::string_view name) const {
  if (name.empty() || name.find('/') != std::string_view::npos || name.front() == '.') return false;
  std::error_code error;
  return fs::is_regular_file(clientKeyFile(name), error);
}

void TSshKeyStore::checkNewName(std::string_view name) const {
  if (name.empty()) throw TSshError("Type a name for the key");
  const bool unusable = name.front() == '.' || std::any_of(name.begin(), name.end(), [](char c) {
                          return c == '/' || static_cast<unsigned char>(c) < 0x20;
                        });
  if (unusable) throw TSshError("A key name can not begin with a dot or hold a slash: " + quoted(name));
  if (hasClientKey(name)) throw TSshError("A client key named " + quoted(name) + " exists already");
}

void TSshKeyStore::newClientKey(std::string_view name, TSshKeyType type) const {
  checkNewName(name);
  ssh_key generated = nullptr;
  const bool rsa = type == TSshKeyType::Rsa3072;
  if (ssh_pki_generate(rsa ? SSH_KEYTYPE_RSA : SSH_KEYTYPE_ED25519, rsa ? kRsaBits : 0, &generated) != SSH_OK)
    throw TSshError("The key could not be generated");
  SshKey key(generated);
  writePrivately(clientKeyFile(name), privateKeyText(key.get()));
}

bool TSshKeyStore::importClientKey(std::string_view name, const fs::path& file,
                                   const std::function<std::optional<std::string>()>& askPassphrase) const {
  checkNewName(name);
  PassphraseRequest request{&askPassphrase};
  SshKey key = loadPrivateKey(file, answerPassphrase, &request);
  if (request.cancelled) return false;
  if (!key) {
    if (request.asked) throw TSshError("The passphrase does not open the key in " + file.string());
    throw TSshError(file.string() + " is not a private key file this program can read");
  }
  if (!request.asked) {
    // Kept byte for byte: libssh can not write every key type it reads.
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    writePrivately(clientKeyFile(name), text.str());
    return true;
  }
  std::string text;
  try {
    text = privateKeyText(key.get());
  } catch (const TSshError&) {
    throw TSshError("This key can be imported once its passphrase is removed (ssh-keygen -p -f " +
                    file.string() + ")");
  }
  writePrivately(clientKeyFile(name), text);
  return true;
}

void TSshKeyStore::deleteClientKey(std::string_view name) const {
  std::error_code error;
  if (!hasClientKey(name) || !fs::remove(clientKeyFile(name), error))
    throw TSshError("The client key " + quoted(name) + " can not be deleted");
}

std::string TSshKeyStore::publicLine(std::string_view name) const {
  SshKey key = loadStoredKey(clientKeyFile(name), name);
  char* b64 = nullptr;
  if (ssh_pki_export_pubkey_base64(key.get(), &b64) != SSH_OK)
    throw TSshError("The public key of " + quoted(name) + " can not be written");
  std::string line =
      std::string(ssh_key_type_to_char(ssh_key_type(key.get()))) + " " + b64 + " " + std::string(name);
  ssh_string_free_char(b64);
  return line;
}

std::string TSshKeyStore::fingerprint(std::string_view name) const {
  return Sha256Fingerprint(loadStoredKey(clientKeyFile(name), name).get());
}

void TSshKeyStore::addKnownHost(std::string_view line) const {
  std::string content;
  if (std::ifstream in(knownHostsFile(), std::ios::binary); in) {
    std::ostringstream text;
    text << in.rdbuf();
    content = text.str();
  }
  if (!content.empty() && content.back() != '\n') content += '\n';
  content.append(line);
  if (content.back() != '\n') content += '\n';
  writePrivately(knownHostsFile(), content);
}

void TSshKeyStore::ensureFolder(const fs::path& folder) const {
  std::error_code error;
  if (fs::is_directory(folder, error)) return;
  if (folder.has_parent_path() && folder.parent_path() != folder) ensureFolder(folder.parent_path());
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
    throw TSshError("The folder " + folder.string() + " can not be created: " + std::strerror(errno));
}

void TSshKeyStore::writePrivately(const fs::path& file, std::string_view content) const {
  ensureFolder(file.parent_path());
  const fs::path temporary = file.string() + ".tmp";
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  bool written = fd >= 0;
  for (size_t done = 0; written && done < content.size();) {
    const ssize_t n = ::write(fd, content.data() + done, content.size() - done);
    written = n > 0;
    if (written) done += static_cast<size_t>(n);
  }
  written = written && ::fchmod(fd, 0600) == 0 && ::fsync(fd) == 0;
  if (fd >= 0) ::close(fd);
  if (!written || ::rename(temporary.c_str(), file.c_str()) != 0) {
    const std::string reason = std::strerror(errno);
    ::unlink(temporary.c_str());
    throw TSshError("The file " + file.string() + " can not be written: " + reason);
  }
}

fs::path SshKeyStoreFolder(const SettingsStore& settings) {
  const std::string path = settings.read(opt::CertificatesPath, ".");
  if (path.empty() || path == ".") return dataFolder();
  return path;
}

}  // namespace lomarin
