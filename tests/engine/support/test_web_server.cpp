#include "test_web_server.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "engine/connect/tunnel_script.h"
#include "sandbox_account.h"
#include "test_host.h"
#include "test_server.h"

namespace lomarin::test {

namespace {

void awaitListening(int port, const std::string& what, const std::filesystem::path& log) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!listening(port)) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error(what + " did not start: " + readText(log));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

std::string phpText(const std::string& text) { return "'" + text + "'"; }

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::vector<std::string>& environment, const std::string& logFile) {
  std::vector<char*> argv;
  for (const std::string& word : command) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  std::vector<std::string> variables = environment;
  for (char** e = environ; *e; ++e) variables.emplace_back(*e);
  std::vector<char*> envp;
  for (std::string& variable : variables) envp.push_back(variable.data());
  envp.push_back(nullptr);
  const int log = ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  pid_ = ::fork();
  if (pid_ == 0) {
    ::setpgid(0, 0);
    ::dup2(log, STDOUT_FILENO);
    ::dup2(log, STDERR_FILENO);
    ::execvpe(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  ::close(log);
  if (pid_ < 0) throw std::runtime_error("cannot start " + command[0]);
}

ChildProcess::~ChildProcess() {
  ::kill(-pid_, SIGTERM);
  ::kill(pid_, SIGTERM);
  ::waitpid(pid_, nullptr, 0);
}

TunnelWebServer::TunnelWebServer(const std::vector<std::string>& allowedHosts) : port_(freeLoopbackPort()) {
  std::string script = TunnelScript(kTunnelSecret);
  const auto set = [&script](const std::string& line, const std::string& value) {
    const size_t at = script.find(line);
    if (at == std::string::npos) throw std::runtime_error("the tunnel script has no line " + line);
    script.replace(at, line.size(), value);
  };
  std::string hosts;
  for (const std::string& host : allowedHosts) hosts += (hosts.empty() ? "" : ", ") + phpText(host);
  set("$allowed_hosts = array();", "$allowed_hosts = array(" + hosts + ");");
  set("$relay_folder = '';", "$relay_folder = " + phpText((root_.path() / "relays").string()) + ";");
  std::ofstream(root_.path() / "tunnel.php") << script;
  php_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"php", "-S", "127.0.0.1:" + std::to_string(port_), "-t",
                               root_.path().string()},
      std::vector<std::string>{"PHP_CLI_SERVER_WORKERS=6"}, (root_.path() / "php.log").string());
  awaitListening(port_, "PHP's web server", root_.path() / "php.log");
}

std::string TunnelWebServer::url() const {
  return "http://127.0.0.1:" + std::to_string(port_) + "/tunnel.php";
}

bool TunnelWebServer::awaitOpened(size_t count) const {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  for (;;) {
    const std::string log = readText(root_.path() / "php.log");
    size_t opened = 0;
    for (size_t at = 0; (at = log.find("GET /tunnel.php?a=open", at)) != std::string::npos; ++at) ++opened;
    if (opened >= count) return opened == count;
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

TestProxy::TestProxy(const std::string& user, const std::string& password) : port_(freeLoopbackPort()) {
  const std::string config = (folder_.path() / "tinyproxy.conf").string();
  std::ofstream(config) << "Port " << port_ << "\nListen 127.0.0.1\nTimeout 600\nMaxClients 50\n"
                        << "Allow 127.0.0.1\nBasicAuth " << user << " " << password << "\n"
                        << "DisableViaHeader Yes\nLogLevel Notice\n";
  proxy_ =
      std::make_unique<ChildProcess>(std::vector<std::string>{"tinyproxy", "-d", "-c", config},
                                     std::vector<std::string>{}, (folder_.path() / "tinyproxy.log").string());
  awaitListening(port_, "tinyproxy", folder_.path() / "tinyproxy.log");
}

TAccount httpTunnelAccount(const std::string& url) {
  TAccount a = sandboxAccount("");
  a.UsePHP = true;
  a.PHPUrl = url;
  a.PHPSecret = kTunnelSecret;
  return a;
}

}  // namespace lomarin::test
