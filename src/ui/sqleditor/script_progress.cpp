#include "ui/sqleditor/script_progress.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <chrono>

#include "engine/sqleditor/my_script.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

constexpr auto kProgressEvery = std::chrono::milliseconds(50);

// Shows how far the script got; Stop (and Escape or closing) asks the runner to stop, and the
// dialog stays until the run has ended.
class ProgressDialog : public QDialog {
 public:
  ProgressDialog(TMyScript& script, const QString& caption, QWidget* parent) : QDialog(parent), script_(script) {
    setObjectName("ScriptProgress");
    setWindowTitle(caption);
    setWindowModality(Qt::ApplicationModal);
    auto* label = new QLabel(caption, this);
    bar_ = new QProgressBar(this);
    bar_->setObjectName("barProgress");
    bar_->setRange(0, 1000);
    stop_ = new QPushButton("Stop", this);
    stop_->setObjectName("btnStop");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(stop_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(bar_);
    layout->addLayout(buttons);
    resize(360, sizeHint().height());
    connect(stop_, &QPushButton::clicked, this, &ProgressDialog::reject);
  }

  void setProgress(uint64_t done, uint64_t total) {
    if (total > 0) bar_->setValue(static_cast<int>(done * 1000 / total));
  }

  void reject() override {
    stop_->setEnabled(false);
    stop_->setText("Stopping");
    script_.BreakExec();
  }

 private:
  TMyScript& script_;
  QProgressBar* bar_;
  QPushButton* stop_;
};

// Restores the script's handlers however the run ends.
struct HandlerSwap {
  explicit HandlerSwap(TMyScript& script) : script(script), onError(script.OnError), onProgress(script.OnProgress) {}
  ~HandlerSwap() {
    script.OnError = onError;
    script.OnProgress = onProgress;
  }
  TMyScript& script;
  TMyScript::ErrorHandler onError;
  TMyScript::ProgressHandler onProgress;
};

}  // namespace

void RunScriptWithProgress(TMyScript& script, QWidget* parent, const QString& caption) {
  HandlerSwap saved(script);
  QObject guiThread;
  ProgressDialog dialog(script, caption, parent);

  if (saved.onError) {
    script.OnError = [&](const ServerError& error, const std::string& statement, TErrorAction& action) {
      QMetaObject::invokeMethod(&guiThread, [&] { saved.onError(error, statement, action); },
                                Qt::BlockingQueuedConnection);
    };
  }
  auto lastProgress = std::chrono::steady_clock::time_point{};
  script.OnProgress = [&](uint64_t done, uint64_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastProgress < kProgressEvery && done != total) return;
    lastProgress = now;
    QMetaObject::invokeMethod(&guiThread, [&, done, total] {
      dialog.setProgress(done, total);
      if (saved.onProgress) saved.onProgress(done, total);
    });
  };

  RunOffUiThread([&] { script.Execute(); }, dialog);
}

}  // namespace lomarin::ui
