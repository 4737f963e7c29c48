#include "ui/app/monitor_relay.h"

#include <QMetaObject>

#include "engine/connect/sql_monitor.h"

namespace lomarin::ui {

MonitorRelay::MonitorRelay(TMySQLMonitor& monitor, QObject* parent) : QObject(parent), monitor_(monitor) {
  handle_ = monitor_.addListener([this](const std::string& line) {
    QMetaObject::invokeMethod(
        this, [this, text = QString::fromStdString(line)] { emit lineTraced(text); }, Qt::AutoConnection);
  });
}

MonitorRelay::~MonitorRelay() { monitor_.removeListener(handle_); }

}  // namespace lomarin::ui
