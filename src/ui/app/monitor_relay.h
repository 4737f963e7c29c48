#pragma once

#include <QObject>
#include <QString>

namespace lomarin {
class TMySQLMonitor;
}

namespace lomarin::ui {

// Hands the SQL monitor's lines to the GUI thread, whichever thread ran the statement.
class MonitorRelay : public QObject {
  Q_OBJECT
 public:
  MonitorRelay(TMySQLMonitor& monitor, QObject* parent = nullptr);
  ~MonitorRelay() override;

 signals:
  void lineTraced(const QString& line);

 private:
  TMySQLMonitor& monitor_;
  int handle_;
};

}  // namespace lomarin::ui
