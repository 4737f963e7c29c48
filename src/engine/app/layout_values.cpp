#include "engine/app/layout_values.h"

#include <cctype>

namespace lomarin {
namespace {

std::string upper(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

// Whether word is one of the comma-separated entries of list.
bool listed(std::string_view list, std::string_view word) {
  std::size_t pos = 0;
  while (pos <= list.size()) {
    std::size_t end = list.find(',', pos);
    if (end == std::string_view::npos) end = list.size();
    std::string_view entry = list.substr(pos, end - pos);
    while (!entry.empty() && entry.front() == ' ') entry.remove_prefix(1);
    if (entry == word) return true;
    pos = end + 1;
  }
  return false;
}

bool isAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isAsciiDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::optional<bool> parseLayoutBool(std::string_view text) {
  const std::string word = upper(text);
  if (word.empty()) return std::nullopt;
  if (listed(kLayoutTrueTexts, word)) return true;
  if (listed(kLayoutFalseTexts, word)) return false;
  return std::nullopt;
}

std::string layoutBoolText(bool value) { return value ? "TRUE" : "FALSE"; }

std::string layoutElementName(std::string_view name) {
  std::string result;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    const bool allowed =
        isAsciiLetter(c) || c == '_' || (i > 0 && (isAsciiDigit(c) || c == '.' || c == '-'));
    result += allowed ? c : '_';
  }
  return result.empty() ? "_" : result;
}

}  // namespace lomarin
