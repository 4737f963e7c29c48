#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// Traces every statement the session sends as "[SQL hh:mm:ss ] statement".
class TMySQLMonitor {
 public:
  using Listener = std::function<void(const std::string& line)>;

  void setActive(bool active);
  bool active() const;

  // Returns a handle for removeListener.
  int addListener(Listener listener);
  void removeListener(int handle);

  void trace(std::string_view statement);

  static std::string formatLine(std::string_view time, std::string_view statement);

 private:
  mutable std::mutex mutex_;
  bool active_ = true;
  int nextHandle_ = 1;
  std::vector<std::pair<int, Listener>> listeners_;
};

}  // namespace lomarin
