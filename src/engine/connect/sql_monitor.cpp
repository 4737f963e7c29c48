#include "engine/connect/sql_monitor.h"

#include <ctime>

namespace lomarin {

void TMySQLMonitor::setActive(bool active) {
  std::lock_guard lock(mutex_);
  active_ = active;
}

bool TMySQLMonitor::active() const {
  std::lock_guard lock(mutex_);
  return active_;
}

int TMySQLMonitor::addListener(Listener listener) {
  std::lock_guard lock(mutex_);
  listeners_.emplace_back(nextHandle_, std::move(listener));
  return nextHandle_++;
}

void TMySQLMonitor::removeListener(int handle) {
  std::lock_guard lock(mutex_);
  std::erase_if(listeners_, [handle](const auto& entry) { return entry.first == handle; });
}

std::string TMySQLMonitor::formatLine(std::string_view time, std::string_view statement) {
  std::string line = "[SQL ";
  line.append(time).append(" ] ").append(statement);
  return line;
}

void TMySQLMonitor::trace(std::string_view statement) {
  std::vector<Listener> targets;
  {
    std::lock_guard lock(mutex_);
    if (!active_ || listeners_.empty()) return;
    for (const auto& entry : listeners_) targets.push_back(entry.second);
  }
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char time[16];
  std::strftime(time, sizeof time, "%H:%M:%S", &local);
  const std::string line = formatLine(time, statement);
  for (const auto& listener : targets) listener(line);
}

}  // namespace lomarin
