#include "ui/sqleditor/query_wait.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QThread>
#include <QTimer>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <exception>
#include <future>
#include <optional>
#include <thread>
#include <utility>

namespace lomarin::ui {

namespace {

// Short runs end before this; they run without the wait area flashing up.
constexpr int kQuietMs = 400;
constexpr int kDescribedLength = 80;

// Asked when a command needs the session a run holds: stays until the run has ended, so the
// command goes on only then.
class TformSessionBusy : public QDialog {
 public:
  TformSessionBusy(const QString& what, QWidget* parent) : QDialog(parent) {
    setObjectName("SessionBusy");
    setWindowTitle("Session busy");
    auto* icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(32, 32));
    text_ = new QLabel(this);
    text_->setObjectName("lblBusy");
    text_->setWordWrap(true);
    text_->setText(
        QString("This needs the session, which is busy:\n%1\n\nStop it, or wait until it ends?").arg(what));
    stop_ = new QPushButton("Stop", this);
    stop_->setObjectName("btnStop");
    wait_ = new QPushButton("Wait", this);
    wait_->setObjectName("btnWait");
    wait_->setDefault(true);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(stop_, QDialogButtonBox::ActionRole);
    buttons->addButton(wait_, QDialogButtonBox::ActionRole);
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(text_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    setMinimumWidth(420);
    connect(wait_, &QPushButton::clicked, this,
            [this, what] { waiting(QString("Waiting for %1 to end.").arg(what)); });
  }

  QPushButton* stopButton() const { return stop_; }
  void waiting(const QString& text) {
    text_->setText(text);
    wait_->setEnabled(false);
  }
  // Closing waits like the Wait button: the command cannot go on before the run ends.
  void reject() override { wait_->click(); }

 private:
  QLabel* text_;
  QPushButton* stop_;
  QPushButton* wait_;
};

}  // namespace

TWaitPanel::TWaitPanel(QWidget* parent) : QFrame(parent) {
  setObjectName("QueryWait");
  setFrameShape(QFrame::StyledPanel);
  what_ = new QLabel(this);
  what_->setObjectName("lblWhat");
  what_->setTextFormat(Qt::PlainText);
  elapsed_ = new QLabel(this);
  elapsed_->setObjectName("lblElapsed");
  bar_ = new QProgressBar(this);
  bar_->setObjectName("barProgress");
  bar_->setRange(0, 1000);
  bar_->setMaximumWidth(240);
  bar_->setVisible(false);
  stop_ = new QPushButton("Stop", this);
  stop_->setObjectName("btnStop");
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(6, 3, 6, 3);
  layout->addWidget(what_, 1);
  layout->addWidget(elapsed_);
  layout->addWidget(bar_);
  layout->addWidget(stop_);
  connect(stop_, &QPushButton::clicked, this, [this] {
    // Disabled, the button passes the keyboard on to a neighbour, not back to the editor.
    stopTookFocus_ = stop_->hasFocus();
    stop_->setEnabled(false);
    stop_->setText("Stopping");
    emit stopClicked();
  });
  hide();
}

void TWaitPanel::start(const QString& what) {
  what_->setText(what);
  if (!isVisible()) focusBefore_ = QApplication::focusWidget();
  stop_->setEnabled(true);
  stop_->setText("Stop");
  if (!clock_.isValid()) clock_.start();
  showElapsed();
  if (ticker_ == 0) ticker_ = startTimer(1000);
  show();
}

void TWaitPanel::setProgress(uint64_t done, uint64_t total) {
  if (total == 0) return;
  bar_->setValue(static_cast<int>(done * 1000 / total));
  bar_->setVisible(true);
}

void TWaitPanel::finish() {
  if (ticker_ != 0) killTimer(ticker_);
  ticker_ = 0;
  clock_.invalidate();
  bar_->setValue(0);
  bar_->setVisible(false);
  hide();
  if (stopTookFocus_ && focusBefore_) focusBefore_->setFocus(Qt::OtherFocusReason);
  stopTookFocus_ = false;
  focusBefore_ = nullptr;
}

void TWaitPanel::timerEvent(QTimerEvent* event) {
  if (event->timerId() == ticker_) showElapsed();
}

void TWaitPanel::showElapsed() { elapsed_->setText(QString("%1 s").arg(clock_.elapsed() / 1000)); }

TSessionActivity::TSessionActivity(TMyConnection& session, QObject* parent)
    : QObject(parent), session_(session) {}

QString TSessionActivity::describe(const QString& caption, const QString& statement) {
  QString line = statement.trimmed().section('\n', 0, 0).trimmed();
  if (line.size() > kDescribedLength) line = line.left(kDescribedLength - 3) + "...";
  return line.isEmpty() ? caption : caption + ": " + line;
}

void TSessionActivity::stop() {
  if (!session_.LentFor().empty() && stop_) stop_();
}

void TSessionActivity::run(const QString& what, const std::function<void()>& work,
                           const std::function<void()>& stop, TWaitPanel* panel) {
  try {
    // A result still open in a grid is read in here, so the worker never adds rows to a grid
    // that is painting them. Waits through the prompt when another run holds the session.
    session_.ReleasePending();
  } catch (const ServerError&) {
    // Shown by the session's handler; the worker's request meets the same state.
  }
  auto outerStop = std::exchange(stop_, stop);
  auto outerBusy = std::exchange(session_.Events.OnBusy,
                                 [this](const std::string& running) { return askStopOrWait(running); });
  QObject guiThread;
  QEventLoop loop;
  bool finished = false;
  std::exception_ptr failure;
  std::optional<TMyConnection::Loan> loan;
  std::promise<void> lent;
  std::thread worker([&, ready = lent.get_future()] {
    ready.wait();
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    // Returned here: a command waiting for the session may go on before this run is unwound.
    loan->Return();
    QMetaObject::invokeMethod(&guiThread, [&] {
      finished = true;
      loop.quit();
      emit ended();
    });
  });
  loan.emplace(session_, worker.get_id(), what.toStdString());
  lent.set_value();
  emit started(what);

  QApplication::setOverrideCursor(Qt::BusyCursor);
  QTimer quiet;
  quiet.setSingleShot(true);
  QMetaObject::Connection stopping;
  if (panel) {
    connect(&quiet, &QTimer::timeout, panel, [panel, what] { panel->start(what); });
    stopping = connect(panel, &TWaitPanel::stopClicked, this, [this] { TSessionActivity::stop(); });
  }
  quiet.start(kQuietMs);
  if (!finished) loop.exec();
  worker.join();
  QApplication::restoreOverrideCursor();
  if (panel) {
    disconnect(stopping);
    panel->finish();
  }
  session_.Events.OnBusy = std::move(outerBusy);
  stop_ = std::move(outerStop);
  if (failure) std::rethrow_exception(failure);
}

bool TSessionActivity::askStopOrWait(const std::string& what) {
  // Only this thread can ask; another one just blocks until the session is free.
  if (QThread::currentThread() != thread()) return false;
  // Modal to the window of the document that asks: the program's other windows stay usable.
  QWidget* asking = QApplication::focusWidget();
  TformSessionBusy box(QString::fromStdString(what),
                       asking ? asking->window() : QApplication::activeWindow());
  box.setWindowModality(Qt::WindowModal);
  connect(box.stopButton(), &QPushButton::clicked, &box, [this, &box] {
    box.stopButton()->setEnabled(false);
    box.waiting("Stopping: waiting for the server.");
    stop();
  });
  connect(this, &TSessionActivity::ended, &box, &QDialog::accept);
  if (!session_.LentFor().empty()) box.exec();
  return true;
}

}  // namespace lomarin::ui
