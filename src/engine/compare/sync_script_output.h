#pragma once

#include <fstream>
#include <functional>
#include <string>
#include <string_view>

namespace lomarin {

// Where a synchronisation script goes: a file (written beside it, put in place by Commit), a
// caller's stream, or a string.
class TSyncScriptOutput {
 public:
  TSyncScriptOutput(const std::string& fileName, const std::function<void(std::string_view)>& stream,
                    std::string& text);
  ~TSyncScriptOutput();
  TSyncScriptOutput(const TSyncScriptOutput&) = delete;
  TSyncScriptOutput& operator=(const TSyncScriptOutput&) = delete;

  void write(std::string_view text);
  void Commit();

 private:
  std::string fileName_;
  std::string temporary_;
  std::ofstream file_;
  const std::function<void(std::string_view)>& stream_;
  std::string& text_;
  bool committed_ = false;
};

}  // namespace lomarin
