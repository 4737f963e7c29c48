#pragma once

#include <QObject>
#include <functional>

class QSocketNotifier;

namespace lomarin::ui {

// Ends the program in an orderly way (session closed, layout saved) when the system asks it to
// stop: SIGTERM at logout, SIGINT, SIGHUP. One per process.
class QuitOnSignal : public QObject {
  Q_OBJECT
 public:
  explicit QuitOnSignal(std::function<void()> quit, QObject* parent = nullptr);
  ~QuitOnSignal() override;

 private:
  std::function<void()> quit_;
  QSocketNotifier* notifier_;
};

}  // namespace lomarin::ui
