#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>

class QThread;

namespace lomarin::ui {

// Runs one piece of engine work on a thread of its own and hands what it reports to the UI
// thread as signals, so the window stays painted and its Stop works.
class TBackgroundJob : public QObject {
  Q_OBJECT
 public:
  // What the work may call from its thread.
  struct Reporter {
    std::function<void(const std::string& line)> log;
    std::function<void(int percent)> progress;
  };
  using Work = std::function<void(const Reporter& report)>;

  explicit TBackgroundJob(QObject* parent = nullptr);
  ~TBackgroundJob() override;

  // `stop` is called (on the UI thread) by stop(); it must make work return soon.
  void start(Work work, std::function<void()> stop);
  void stop();
  bool running() const;
  // Waits until the work has returned; for closing a window while it runs.
  void wait();

 signals:
  void logLine(const QString& line);
  void progress(int percent);
  // Empty error: the work returned normally; otherwise what it threw.
  void finished(const QString& error);

 private:
  void joined();

  QThread* thread_ = nullptr;
  std::function<void()> stop_;
  QString error_;
};

}  // namespace lomarin::ui
