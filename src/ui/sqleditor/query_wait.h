#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <string>

#include "engine/connect/my_connection.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace lomarin::ui {

// A document's own wait area: what runs, for how long, how far, and its Stop. Hidden until
// TSessionActivity shows it.
class TWaitPanel : public QFrame {
  Q_OBJECT
 public:
  explicit TWaitPanel(QWidget* parent = nullptr);

  void start(const QString& what);
  // Shows the bar from the first call on.
  void setProgress(uint64_t done, uint64_t total);
  // Gives the keyboard back to the widget that had it at the start, when Stop took it.
  void finish();

 signals:
  void stopClicked();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  void showElapsed();

  QLabel* what_;
  QLabel* elapsed_;
  QProgressBar* bar_;
  QPushButton* stop_;
  QElapsedTimer clock_;
  int ticker_ = 0;
  QPointer<QWidget> focusBefore_;
  bool stopTookFocus_ = false;
};

// What runs on a session off the UI thread. A document lends the session to a worker through
// run(); this thread meanwhile serves every window, and the document shows the wait in its own
// area. A statement another document sends during the run asks the user whether to stop the run
// or wait for it; stop() (the main window's Stop) ends the run.
class TSessionActivity : public QObject {
  Q_OBJECT
 public:
  explicit TSessionActivity(TMyConnection& session, QObject* parent = nullptr);

  // Runs work on a worker thread that holds the session, under the name what. The panel shows
  // after a moment; its Stop, like stop(), calls the given stop, which must make work return
  // soon. Whatever work throws is thrown here.
  void run(const QString& what, const std::function<void()>& work, const std::function<void()>& stop,
           TWaitPanel* panel);

  bool busy() const { return !session_.LentFor().empty(); }
  QString what() const { return QString::fromStdString(session_.LentFor()); }
  void stop();

  // "Run SQL: SELECT SLEEP(30)": a caption and the first line of a statement, cut short.
  static QString describe(const QString& caption, const QString& statement);

 signals:
  void started(const QString& what);
  void ended();

 private:
  // The session's OnBusy while a run lasts: asks Stop or Wait and stays until the run ends.
  bool askStopOrWait(const std::string& what);

  TMyConnection& session_;
  std::function<void()> stop_;
};

}  // namespace lomarin::ui
