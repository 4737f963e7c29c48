#include "ui/connect/connect_wait.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_account.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin::ui {

namespace {

// A server at hand answers within this; the box would only flash up.
constexpr std::chrono::milliseconds kQuiet{250};
constexpr int kPollMs = 20;

QString targetOf(const TMySessionSettings& s) {
  if (s.Server.empty() || (s.Server == "localhost" && !s.SocketPath.empty()))
    return QStringLiteral("localhost");
  return QString::fromStdString(s.Server) + ":" + QString::number(s.Port);
}

// Waits until waitFor (given how long it may block) is true: a moment without a box, then behind
// TformConnectWait. False when the user cancelled.
bool waitWithBox(const std::function<bool(std::chrono::milliseconds)>& waitFor, const QString& target,
                 QWidget* parent) {
  if (waitFor(kQuiet)) return true;
  TformConnectWait box([&] { return waitFor(std::chrono::milliseconds(0)); }, target, parent);
  return box.exec() == QDialog::Accepted;
}

}  // namespace

TformConnectWait::TformConnectWait(std::function<bool()> ended, const QString& target, QWidget* parent)
    : QDialog(parent), ended_(std::move(ended)), poll_(new QTimer(this)) {
  setObjectName("TformConnectWait");
  setWindowTitle(tr("Connecting"));
  setWindowModality(Qt::WindowModal);
  auto* label = new QLabel(tr("Connecting to %1 ...").arg(target), this);
  label->setObjectName("lblConnecting");
  auto* bar = new QProgressBar(this);
  bar->setObjectName("prbConnecting");
  bar->setRange(0, 0);
  bar->setTextVisible(false);
  auto* cancel = new QPushButton(tr("&Cancel"), this);
  cancel->setObjectName("btnCancel");
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(bar);
  layout->addLayout(buttons);
  setMinimumWidth(360);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(poll_, &QTimer::timeout, this, [this] {
    if (ended_()) accept();
  });
  poll_->start(kPollMs);
}

bool ConnectWithWait(TMyConnection& session, QWidget* parent) {
  session.StartConnect();
  if (!waitWithBox([&](auto timeout) { return session.WaitConnect(timeout); }, targetOf(session.Settings),
                   parent)) {
    session.AbandonConnect();
    return false;
  }
  session.FinishConnect();
  return session.Connected();
}

bool ConnectAccountWithWait(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                            const std::filesystem::path& keyStoreFolder, QWidget* parent) {
  const auto openTunnel = [parent](TSshTunnel& opening, const TSshTunnelSettings& settings) {
    opening.StartOpen(settings);
    const QString target = QString::fromStdString(settings.Host) + ":" + QString::number(settings.Port);
    if (!waitWithBox([&](auto timeout) { return opening.WaitOpen(timeout); }, target, parent)) {
      opening.AbandonOpen();
      return false;
    }
    opening.FinishOpen();
    return true;
  };
  return ConnectThroughAccountTunnel(session, tunnel, account, keyStoreFolder, openTunnel,
                                     [&] { return ConnectWithWait(session, parent); });
}

}  // namespace lomarin::ui
