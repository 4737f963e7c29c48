#include "ui/compare/background_job.h"

#include <QThread>
#include <exception>

namespace lomarin::ui {

TBackgroundJob::TBackgroundJob(QObject* parent) : QObject(parent) {}

TBackgroundJob::~TBackgroundJob() {
  if (!thread_) return;
  stop();
  wait();
}

void TBackgroundJob::start(Work work, std::function<void()> stop) {
  if (running()) return;
  stop_ = std::move(stop);
  error_.clear();
  Reporter report;
  // Signals of an object of the UI thread, sent from the worker, arrive there queued.
  report.log = [this](const std::string& line) { emit logLine(QString::fromStdString(line)); };
  report.progress = [this](int percent) { emit progress(percent); };
  thread_ = QThread::create([this, work = std::move(work), report] {
    try {
      work(report);
    } catch (const std::exception& e) {
      error_ = QString::fromStdString(e.what());
    }
  });
  // A finish already taken by wait() must not end a later run.
  connect(thread_, &QThread::finished, this, [this, thread = thread_] {
    if (thread_ == thread) joined();
  });
  thread_->start();
}

void TBackgroundJob::stop() {
  if (running() && stop_) stop_();
}

bool TBackgroundJob::running() const { return thread_ != nullptr; }

void TBackgroundJob::wait() {
  if (thread_) thread_->wait();
  joined();
}

void TBackgroundJob::joined() {
  if (!thread_) return;
  delete thread_;
  thread_ = nullptr;
  emit finished(error_);
}

}  // namespace lomarin::ui
