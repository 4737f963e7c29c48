#include "engine/app/mru_list.h"

#include <algorithm>

namespace lomarin {

void MruList::add(std::string_view file) {
  if (file.empty()) return;
  remove(file);
  items_.insert(items_.begin(), std::string(file));
  if (items_.size() > kCapacity) items_.resize(kCapacity);
}

void MruList::remove(std::string_view file) { std::erase(items_, file); }

std::string MruList::toText() const {
  std::string text;
  for (const auto& item : items_) {
    text += item;
    text += '\n';
  }
  return text;
}

MruList MruList::fromText(std::string_view text) {
  MruList list;
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!line.empty() && list.items_.size() < kCapacity &&
        std::find(list.items_.begin(), list.items_.end(), line) == list.items_.end())
      list.items_.emplace_back(line);
    pos = end + 1;
  }
  return list;
}

}  // namespace lomarin
