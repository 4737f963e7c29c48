#include "ui/connect/connect_wait.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_account.h"

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

}  // namespace

TformConnectWait::TformConnectWait(TMyConnection& session, const QString& target, QWidget* parent)
    : QDialog(parent), session_(session), poll_(new QTimer(this)) {
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
    if (session_.WaitConnect(std::chrono::milliseconds(0))) accept();
  });
  poll_->start(kPollMs);
}

bool ConnectWithWait(TMyConnection& session, QWidget* parent) {
  session.StartConnect();
  if (!session.WaitConnect(kQuiet)) {
    TformConnectWait box(session, targetOf(session.Settings), parent);
    if (box.exec() != QDialog::Accepted) {
      session.AbandonConnect();
      return false;
    }
  }
  session.FinishConnect();
  return session.Connected();
}

bool ConnectAccountWithWait(TMyConnection& session, TSshTunnel& tunnel, const TAccount& account,
                            const std::filesystem::path& keyStoreFolder, QWidget* parent) {
  return ConnectThroughAccountTunnel(session, tunnel, account, keyStoreFolder,
                                     [&] { return ConnectWithWait(session, parent); });
}

}  // namespace lomarin::ui
