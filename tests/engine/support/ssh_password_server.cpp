#include "ssh_password_server.h"

#include <arpa/inet.h>
#include <libssh/callbacks.h>
#include <libssh/server.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "engine/connect/ssh_forwarder.h"

namespace lomarin::test {

namespace {

int connectTo(const char* host, int port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  if (::inet_pton(AF_INET, host, &address.sin_addr) != 1 ||
      ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    ::close(fd);
    return -1;
  }
  return fd;
}

struct Credentials {
  const std::string* user;
  const std::string* password;
};

int checkPassword(ssh_session, const char* user, const char* password, void* data) {
  const auto* wanted = static_cast<Credentials*>(data);
  return *wanted->user == user && *wanted->password == password ? SSH_AUTH_SUCCESS : SSH_AUTH_DENIED;
}

struct ForwardRequest {
  int fd = -1;
  ssh_channel channel = nullptr;
};

int acceptForward(ssh_session, ssh_message message, void* data) {
  auto* request = static_cast<ForwardRequest*>(data);
  if (ssh_message_type(message) == SSH_REQUEST_SERVICE) return ssh_message_service_reply_success(message);
  if (request->channel || ssh_message_type(message) != SSH_REQUEST_CHANNEL_OPEN ||
      ssh_message_subtype(message) != SSH_CHANNEL_DIRECT_TCPIP)
    return 1;
  request->fd = connectTo(ssh_message_channel_request_open_destination(message),
                          ssh_message_channel_request_open_destination_port(message));
  if (request->fd < 0) return 1;
  request->channel = ssh_message_channel_request_open_reply_accept(message);
  return 0;
}

}  // namespace

PasswordSshServer::PasswordSshServer(std::string user, std::string password)
    : user_(std::move(user)), password_(std::move(password)) {
  ssh_bind bind = ssh_bind_new();
  ssh_key hostKey = nullptr;
  ssh_pki_generate(SSH_KEYTYPE_ED25519, 0, &hostKey);
  ssh_bind_options_set(bind, SSH_BIND_OPTIONS_IMPORT_KEY, hostKey);
  ssh_bind_options_set(bind, SSH_BIND_OPTIONS_BINDADDR, "127.0.0.1");
  const unsigned anyPort = 0;
  ssh_bind_options_set(bind, SSH_BIND_OPTIONS_BINDPORT, &anyPort);
  if (ssh_bind_listen(bind) != SSH_OK) throw std::runtime_error(ssh_get_error(bind));
  sockaddr_in address{};
  socklen_t length = sizeof address;
  ::getsockname(ssh_bind_get_fd(bind), reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  bind_ = bind;
  stopFd_ = ::eventfd(0, EFD_CLOEXEC);
  thread_ = std::thread([this] { run(); });
}

PasswordSshServer::~PasswordSshServer() {
  const uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(stopFd_, &one, sizeof one);
  thread_.join();
  ::close(stopFd_);
  ssh_bind_free(static_cast<ssh_bind>(bind_));
}

void PasswordSshServer::run() {
  auto* bind = static_cast<ssh_bind>(bind_);
  for (;;) {
    pollfd fds[2] = {{stopFd_, POLLIN, 0}, {ssh_bind_get_fd(bind), POLLIN, 0}};
    ::poll(fds, 2, -1);
    if (fds[0].revents) return;
    ssh_session session = ssh_new();
    if (ssh_bind_accept(bind, session) == SSH_OK)
      serve(session);
    else
      ssh_free(session);
  }
}

void PasswordSshServer::serve(void* raw) {
  SshSession session(static_cast<ssh_session>(raw));
  Credentials credentials{&user_, &password_};
  ssh_server_callbacks_struct callbacks{};
  callbacks.userdata = &credentials;
  callbacks.auth_password_function = checkPassword;
  ssh_callbacks_init(&callbacks);
  ssh_set_server_callbacks(session.get(), &callbacks);
  ssh_set_auth_methods(session.get(), SSH_AUTH_METHOD_PASSWORD);
  // Messages no callback takes (the service and channel requests) come here.
  ForwardRequest request;
  ssh_set_message_callback(session.get(), acceptForward, &request);
  // After the callbacks: the client's first request may arrive with the last key-exchange packet.
  if (ssh_handle_key_exchange(session.get()) != SSH_OK) return;

  ssh_event event = ssh_event_new();
  ssh_event_add_session(event, session.get());
  while (!request.channel && ssh_is_connected(session.get()) && ssh_event_dopoll(event, 100) != SSH_ERROR) {
  }
  ssh_event_remove_session(event, session.get());
  ssh_event_free(event);
  if (!request.channel) return;

  TSshForwarder forwarder(std::move(session));
  forwarder.add(request.fd, request.channel);
  while (forwarder.links() > 0) {
    pollfd stop{stopFd_, POLLIN, 0};
    forwarder.step({&stop, 1});
    if (stop.revents) return;
  }
}

}  // namespace lomarin::test
