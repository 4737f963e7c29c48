#include "engine/connect/float_text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace lomarin {

namespace {

using TextBuffer = char[32];

// The shortest text of value; empty when the server, which reads a literal as DOUBLE, refuses it
// as beyond the FLOAT range or rounds it to another FLOAT.
std::string_view shortestText(float value, TextBuffer& text) {
  const char* end = std::to_chars(text, text + sizeof text, value).ptr;
  double reread = 0;
  std::from_chars(text, end, reread);
  if (std::abs(reread) > std::numeric_limits<float>::max() || static_cast<float>(reread) != value) return {};
  return {text, static_cast<size_t>(end - text)};
}

}  // namespace

void AppendFloatText(std::string& out, float value) {
  TextBuffer text;
  if (const std::string_view shortest = shortestText(value, text); !shortest.empty()) {
    out += shortest;
    return;
  }
  out.append(text, std::to_chars(text, text + sizeof text, static_cast<double>(value)).ptr);
}

void AppendFloatLiteral(std::string& out, std::string_view exactDouble) {
  double wide = 0;
  const auto parsed = std::from_chars(exactDouble.data(), exactDouble.data() + exactDouble.size(), wide);
  const auto narrow = static_cast<float>(wide);
  TextBuffer text;
  const std::string_view shortest = parsed.ec == std::errc() && static_cast<double>(narrow) == wide
                                        ? shortestText(narrow, text)
                                        : std::string_view();
  out += shortest.empty() ? exactDouble : shortest;
}

}  // namespace lomarin
