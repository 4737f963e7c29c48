#include "ui/app/quit_on_signal.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <csignal>

namespace lomarin::ui {
namespace {

// The handler may only write to a descriptor; the event loop picks the byte up.
int signalSockets[2] = {-1, -1};
constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

void onSignal(int) {
  const char byte = 1;
  if (::write(signalSockets[0], &byte, 1) < 0) return;
}

}  // namespace

QuitOnSignal::QuitOnSignal(std::function<void()> quit, QObject* parent)
    : QObject(parent), quit_(std::move(quit)), notifier_(nullptr) {
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalSockets) != 0) return;
  notifier_ = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, [this] {
    char byte = 0;
    if (::read(signalSockets[1], &byte, 1) > 0) quit_();
  });
  struct sigaction action = {};
  action.sa_handler = onSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (int signal : kSignals) ::sigaction(signal, &action, nullptr);
}

QuitOnSignal::~QuitOnSignal() {
  if (!notifier_) return;
  for (int signal : kSignals) std::signal(signal, SIG_DFL);
  ::close(signalSockets[0]);
  ::close(signalSockets[1]);
  signalSockets[0] = signalSockets[1] = -1;
}

}  // namespace lomarin::ui
