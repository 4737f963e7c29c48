#include "engine/app/shell_text.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace lomarin {
namespace {

constexpr std::size_t kErrorTextKept = 1001;
constexpr int kDefaultOutputHeight = 80;

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

std::string startCaption() { return std::string(kProductTitle) + std::string(kVersionText); }

std::string connectedCaption(std::string_view user, std::string_view database, std::string_view server) {
  std::string caption = startCaption();
  caption += " [";
  caption += user;
  caption += ':';
  caption += database;
  caption += '@';
  caption += server;
  caption += ']';
  return caption;
}

std::string trimErrorText(std::string_view text) {
  // A text of exactly 1001 characters is "longer than 1000" and already its own tail.
  std::size_t characters = 0;
  std::size_t start = text.size();
  while (start > 0) {
    if (characters == kErrorTextKept) return std::string(text.substr(start));
    --start;
    while (start > 0 && isContinuationByte(text[start])) --start;
    ++characters;
  }
  return std::string(text);
}

std::string unhandledErrorText(std::string_view text) {
  constexpr std::string_view needle = "assertion failure";
  const auto lower = [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); };
  const auto hit = std::search(text.begin(), text.end(), needle.begin(), needle.end(),
                               [&](char a, char b) { return lower(a) == b; });
  return hit != text.end() ? std::string(kUnstableNetworkMessage) : std::string(text);
}

std::string sessionErrorText(unsigned number, std::string_view message) {
  return std::to_string(number) + "\n" + std::string(message);
}

int outputPaneHeight(std::string_view outputSize) {
  int height = 0;
  const char* end = outputSize.data() + outputSize.size();
  const auto [ptr, ec] = std::from_chars(outputSize.data(), end, height);
  if (ec != std::errc() || ptr != end || height <= 0) return kDefaultOutputHeight;
  return height;
}

}  // namespace lomarin
