#include "ui/app/transaction_commands.h"

#include <QLabel>
#include <QStatusBar>
#include <QTimer>

#include "engine/app/shell_statements.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/app/monitor_relay.h"

namespace lomarin::ui {

TransactionCommands::TransactionCommands(Tformppal& window)
    : QObject(&window),
      window_(window),
      lblTransaction_(new QLabel(&window)),
      relay_(new MonitorRelay(window.MySqlMonitor, this)),
      afterStatement_(new QTimer(this)) {
  lblTransaction_->setObjectName("lblTransaction");
  window.statusBar()->addPermanentWidget(lblTransaction_);
  window.actions().setHandler("actCommit", [this] { endTransaction(kCommitStatement); });
  window.actions().setHandler("actRollback", [this] { endTransaction(kRollbackStatement); });
  // A statement is traced right before it runs: the state is read once the event loop is back.
  afterStatement_->setSingleShot(true);
  afterStatement_->setInterval(0);
  connect(afterStatement_, &QTimer::timeout, this, &TransactionCommands::showState);
  connect(relay_, &MonitorRelay::lineTraced, afterStatement_, qOverload<>(&QTimer::start));
  connect(&window, &Tformppal::connectionChanged, this, &TransactionCommands::showState);
  showState();
}

QString TransactionCommands::stateText() const {
  const TMyConnection& session = window_.MySqlSession;
  if (!session.Connected()) return {};
  QString text = session.AutoCommit() ? tr("Auto commit on") : tr("Auto commit off");
  if (session.InTransaction()) text += tr(", transaction open");
  return text;
}

void TransactionCommands::endTransaction(const char* statement) {
  // A failure reaches the user through the session's error event.
  ExecSQLText(window_.MySqlSession, statement);
  showState();
}

void TransactionCommands::showState() { lblTransaction_->setText(stateText()); }

}  // namespace lomarin::ui
