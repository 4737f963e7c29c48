#pragma once

#include <string>
#include <string_view>

namespace lomarin::test {

// Escapes as the client library does for a session without NO_BACKSLASH_ESCAPES, for builders
// checked without a server.
inline std::string backslashEscaped(std::string_view value) {
  std::string out;
  for (char c : value) {
    if (c == '\'' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

// Stands in for the client library's escaping, so a test sees where a value is escaped.
inline std::string marked(std::string_view value) { return "<" + std::string(value) + ">"; }

}  // namespace lomarin::test
