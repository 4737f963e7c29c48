#include "engine/connect/ssh_login.h"

#include <fstream>
#include <sstream>

#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_key_store.h"

namespace lomarin {

namespace {

constexpr int kMinimumTimeout = 15;

// AES-GCM first: processors encrypt it in hardware, and result sets are bulk data.
constexpr const char* kCiphers =
    "aes128-gcm@openssh.com,aes256-gcm@openssh.com,chacha20-poly1305@openssh.com,aes128-ctr,aes256-ctr";

// The classic choice was "RSA, then DSA". Current OpenSSH offers no DSA host keys any more, so
// the modern equivalents are offered instead: ed25519, then ECDSA, then RSA with SHA-2 only.
constexpr const char* kHostKeyAlgorithms =
    "ssh-ed25519,ecdsa-sha2-nistp521,ecdsa-sha2-nistp384,ecdsa-sha2-nistp256,rsa-sha2-512,rsa-sha2-256";

// The fingerprint of the first key known_hosts holds under the name.
std::string storedFingerprint(const TSshKeyStore& store, const std::string& name) {
  std::ifstream in(store.knownHostsFile());
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string names, type, base64;
    fields >> names >> type >> base64;
    std::istringstream each(names);
    bool named = false;
    for (std::string one; std::getline(each, one, ',');) named = named || one == name;
    ssh_key key = nullptr;
    if (!named ||
        ssh_pki_import_pubkey_base64(base64.c_str(), ssh_key_type_from_name(type.c_str()), &key) != SSH_OK)
      continue;
    const SshKey stored(key);
    return Sha256Fingerprint(stored.get());
  }
  return "?";
}

// Trust on first use: an unknown server's key is stored and accepted; a server whose stored key
// differs from the offered one is refused and nothing is stored.
void checkHostKey(ssh_session session, const TSshKeyStore& store, const std::string& name) {
  ssh_key offered = nullptr;
  if (ssh_get_server_publickey(session, &offered) != SSH_OK)
    throw TSshError("The SSH server " + name + " sent no host key");
  const SshKey offeredKey(offered);
  switch (ssh_session_is_known_server(session)) {
    case SSH_KNOWN_HOSTS_OK:
      return;
    case SSH_KNOWN_HOSTS_CHANGED:
    case SSH_KNOWN_HOSTS_OTHER:
      throw TSshError(
          "The SSH server " + name +
          " offered a host key that differs from the one stored for it; the connection was refused.\n"
          "Stored key:  " +
          storedFingerprint(store, name) + "\n" + "Offered key: " + Sha256Fingerprint(offeredKey.get()) +
          "\n" + "If the server's key was changed on purpose, remove its line from " +
          store.knownHostsFile().string() + ".");
    case SSH_KNOWN_HOSTS_UNKNOWN:
    case SSH_KNOWN_HOSTS_NOT_FOUND: {
      char* line = nullptr;
      if (ssh_session_export_known_hosts_entry(session, &line) != SSH_OK)
        throw TSshError("The host key of " + name + " can not be stored");
      const std::string text(line);
      ssh_string_free_char(line);
      store.addKnownHost(text);
      return;
    }
    case SSH_KNOWN_HOSTS_ERROR:
      break;
  }
  throw TSshError("The stored server keys can not be read from " + store.knownHostsFile().string() + ": " +
                  ssh_get_error(session));
}

bool loginKeyboardInteractive(ssh_session session, const std::string& password) {
  int rc = ssh_userauth_kbdint(session, nullptr, nullptr);
  while (rc == SSH_AUTH_INFO) {
    for (int i = 0, n = ssh_userauth_kbdint_getnprompts(session); i < n; ++i)
      if (ssh_userauth_kbdint_setanswer(session, static_cast<unsigned>(i), password.c_str()) < 0)
        return false;
    rc = ssh_userauth_kbdint(session, nullptr, nullptr);
  }
  return rc == SSH_AUTH_SUCCESS;
}

void logIn(ssh_session session, const TSshTunnelSettings& s, const TSshKeyStore& store,
           const std::string& name) {
  if (!s.ClientKey.empty()) {
    ssh_key key = nullptr;
    if (ssh_pki_import_privkey_file(store.clientKeyFile(s.ClientKey).c_str(), nullptr, nullptr, nullptr,
                                    &key) != SSH_OK)
      throw TSshError("The client key \"" + s.ClientKey + "\" can not be read");
    const SshKey clientKey(key);
    if (ssh_userauth_publickey(session, nullptr, clientKey.get()) == SSH_AUTH_SUCCESS) return;
    throw TSshError("The SSH server " + name + " refused the client key \"" + s.ClientKey +
                    "\" for the user \"" + s.User + "\"");
  }
  // Servers that take passwords only by keyboard-interactive login ask for the same password.
  if (ssh_userauth_password(session, nullptr, s.Password.c_str()) == SSH_AUTH_SUCCESS ||
      loginKeyboardInteractive(session, s.Password))
    return;
  throw TSshError("The SSH server " + name + " refused the password of the user \"" + s.User + "\"");
}

}  // namespace

std::string KnownHostName(const std::string& host, int port) {
  return port == 22 ? host : "[" + host + "]:" + std::to_string(port);
}

SshSession OpenSshSession(const TSshTunnelSettings& s) {
  const TSshKeyStore store(s.KeyStoreFolder);
  if (!s.ClientKey.empty() && !store.hasClientKey(s.ClientKey))
    throw TSshError(std::string(kPrivateKeyEmpty));
  const std::string name = KnownHostName(s.Host, s.Port);
  SshSession session(ssh_new());
  if (!session) throw TSshError("libssh ran out of memory");
  ssh_session raw = session.get();
  // The user's own ssh configuration must not redirect or reconfigure the program's tunnel.
  const bool processConfig = false;
  const unsigned port = static_cast<unsigned>(s.Port);
  const std::string knownHosts = store.knownHostsFile().string();
  ssh_options_set(raw, SSH_OPTIONS_PROCESS_CONFIG, &processConfig);
  ssh_options_set(raw, SSH_OPTIONS_HOST, s.Host.c_str());
  ssh_options_set(raw, SSH_OPTIONS_PORT, &port);
  ssh_options_set(raw, SSH_OPTIONS_USER, s.User.c_str());
  ssh_options_set(raw, SSH_OPTIONS_KNOWNHOSTS, knownHosts.c_str());
  ssh_options_set(raw, SSH_OPTIONS_GLOBAL_KNOWNHOSTS, knownHosts.c_str());
  ssh_options_set(raw, SSH_OPTIONS_HOSTKEYS, kHostKeyAlgorithms);
  ssh_options_set(raw, SSH_OPTIONS_CIPHERS_C_S, kCiphers);
  ssh_options_set(raw, SSH_OPTIONS_CIPHERS_S_C, kCiphers);
  // Statements and their replies are small packets: no waiting to fill one up.
  const int noDelay = 1;
  ssh_options_set(raw, SSH_OPTIONS_NODELAY, &noDelay);
  if (s.Timeout >= kMinimumTimeout) {
    const long timeout = s.Timeout;
    ssh_options_set(raw, SSH_OPTIONS_TIMEOUT, &timeout);
  }
  if (ssh_connect(raw) != SSH_OK)
    throw TSshError("Cannot connect to the SSH server " + name + ": " + ssh_get_error(raw));
  checkHostKey(raw, store, name);
  logIn(raw, s, store, name);
  return session;
}

}  // namespace lomarin
