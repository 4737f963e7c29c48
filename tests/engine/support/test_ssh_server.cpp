#include "test_ssh_server.h"

#include <signal.h>
#include <stdlib.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "engine/connect/ssh_libssh.h"
#include "test_host.h"
#include "test_server.h"

namespace lomarin::test {

namespace fs = std::filesystem;

namespace {

constexpr const char* kSshVariables[] = {"LOMARIN_TEST_SSH_HOST",     "LOMARIN_TEST_SSH_PORT",
                                         "LOMARIN_TEST_SSH_USER",     "LOMARIN_TEST_SSH_AUTHORIZED_KEYS",
                                         "LOMARIN_TEST_SSH_HOST_KEY", "LOMARIN_TEST_SSH_PID_FILE"};

}  // namespace

std::string sshServerMissing() {
  for (const char* name : kSshVariables) {
    const char* value = std::getenv(name);
    if (!value || !*value) return std::string(name) + " is not set: the SSH server of ./test is not running";
  }
  return {};
}

TSshTunnelSettings sshServerSettings(const fs::path& keyStoreFolder) {
  const TMySessionSettings server = serverSettings();
  TSshTunnelSettings s;
  s.Host = requiredEnv("LOMARIN_TEST_SSH_HOST");
  s.Port = std::stoi(requiredEnv("LOMARIN_TEST_SSH_PORT"));
  s.User = requiredEnv("LOMARIN_TEST_SSH_USER");
  s.TargetHost = server.Server;
  s.TargetPort = server.Port;
  s.KeyStoreFolder = keyStoreFolder;
  return s;
}

TAccount sshAccount() {
  const TMySessionSettings server = serverSettings();
  TAccount a;
  a.Login = server.Username;
  a.Password = server.Password;
  a.Server = server.Server;
  // Only "SSH To Port" reaches the server; the port field is for a direct connect.
  a.Port = 1;
  a.UseSSH = true;
  a.SSHServer = requiredEnv("LOMARIN_TEST_SSH_HOST");
  a.SSHPort = std::stoi(requiredEnv("LOMARIN_TEST_SSH_PORT"));
  a.SSHLogin = requiredEnv("LOMARIN_TEST_SSH_USER");
  a.SSHToPort = std::to_string(server.Port);
  return a;
}

void authorizeKey(const std::string& publicLine) {
  std::ofstream(requiredEnv("LOMARIN_TEST_SSH_AUTHORIZED_KEYS"), std::ios::app) << publicLine << "\n";
}

std::string sshHostKeyFingerprint() {
  ssh_key key = nullptr;
  if (ssh_pki_import_pubkey_file(requiredEnv("LOMARIN_TEST_SSH_HOST_KEY").c_str(), &key) != SSH_OK)
    throw std::runtime_error("cannot read the SSH server's host key");
  const SshKey owned(key);
  return Sha256Fingerprint(owned.get());
}

int killSshConnections() {
  const long listener = std::stol(readText(requiredEnv("LOMARIN_TEST_SSH_PID_FILE")));
  std::map<long, long> parents;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    const std::string stat = readText(entry.path() / "stat");
    const auto end = stat.rfind(')');
    if (end == std::string::npos) continue;
    std::istringstream fields(stat.substr(end + 2));
    std::string state;
    long parent = 0;
    fields >> state >> parent;
    parents[std::stol(name)] = parent;
  }
  // The whole tree of a connection: its monitor and the unprivileged process below it.
  int killed = 0;
  for (const auto& [pid, parent] : parents) {
    long ancestor = parent;
    while (ancestor > 1 && ancestor != listener) ancestor = parents.count(ancestor) ? parents[ancestor] : 0;
    if (ancestor == listener && ::kill(static_cast<pid_t>(pid), SIGKILL) == 0) ++killed;
  }
  return killed;
}

TempFolder::TempFolder() {
  std::string pattern = (fs::temp_directory_path() / "lomarin-test-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary folder");
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code error;
  fs::remove_all(path_, error);
}

}  // namespace lomarin::test
