#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// Most recently used files, newest first, at most ten; opening a file again moves it to the top.
class MruList {
 public:
  static constexpr std::size_t kCapacity = 10;

  void add(std::string_view file);
  void remove(std::string_view file);
  const std::vector<std::string>& items() const { return items_; }

  // One line per file, as the window layout keeps it.
  std::string toText() const;
  static MruList fromText(std::string_view text);

 private:
  std::vector<std::string> items_;
};

}  // namespace lomarin
