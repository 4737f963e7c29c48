#pragma once

#include <QObject>

class QLabel;
class QTimer;

namespace lomarin::ui {

class MonitorRelay;
class Tformppal;

// Commit and Rollback of the main window, and the session's transaction state in its status bar.
class TransactionCommands : public QObject {
  Q_OBJECT
 public:
  explicit TransactionCommands(Tformppal& window);

  // The status bar's text for the session as the server last reported it.
  QString stateText() const;

 private:
  void endTransaction(const char* statement);
  void showState();

  Tformppal& window_;
  QLabel* lblTransaction_;
  MonitorRelay* relay_;
  QTimer* afterStatement_;
};

}  // namespace lomarin::ui
