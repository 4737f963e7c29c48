#include "engine/compare/sync_values.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "engine/compare/blob_file.h"
#include "engine/connect/escape.h"

namespace lomarin {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

void appendHex(std::string& out, std::string_view bytes) {
  out += "0x";
  for (unsigned char b : bytes) {
    out += kHexDigits[b >> 4];
    out += kHexDigits[b & 15];
  }
}

void appendBits(std::string& out, std::string_view bytes) {
  std::string bits;
  for (unsigned char b : bytes)
    for (int i = 7; i >= 0; --i) bits += ((b >> i) & 1) ? '1' : '0';
  const size_t first = bits.find('1');
  out += "b'";
  out += first == std::string::npos ? "0" : bits.substr(first);
  out += '\'';
}

// The server reads a literal as DOUBLE and rounds it to FLOAT for a FLOAT column.
bool readsBackAs(std::string_view text, double value, bool isFloat) {
  double reread = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), reread);
  if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return false;
  if (!isFloat) return reread == value;
  return std::abs(reread) <= std::numeric_limits<float>::max() &&
         static_cast<float>(reread) == static_cast<float>(value);
}

// "0.###########": up to eleven decimals, no exponent, no trailing zeros.
std::string hashFormat(double value) {
  char text[64];
  const auto written = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 11);
  std::string out(text, written.ptr);
  while (out.back() == '0') out.pop_back();
  if (out.back() == '.') out.pop_back();
  if (out == "-0") out = "0";
  return out;
}

}  // namespace

std::string FloatingLiteral(std::string_view serverText, bool isFloat) {
  double value = 0;
  const auto parsed = std::from_chars(serverText.data(), serverText.data() + serverText.size(), value);
  if (parsed.ec != std::errc()) return std::string(serverText);
  // Beyond this the fixed format stops being a short text.
  if (std::abs(value) < 1e15) {
    std::string formatted = hashFormat(value);
    if (readsBackAs(formatted, value, isFloat)) return formatted;
  }
  char text[32];
  const auto written = isFloat ? std::to_chars(text, text + sizeof text, static_cast<float>(value))
                               : std::to_chars(text, text + sizeof text, value);
  std::string shortest(text, written.ptr);
  return readsBackAs(shortest, value, isFloat) ? shortest : std::string(serverText);
}

void TSyncValueWriter::append(std::string& out, TSyncValueKind kind, std::string_view value,
                              bool isNull) const {
  if (isNull) {
    out += "Null";
    return;
  }
  switch (kind) {
    case TSyncValueKind::Number:
      out += value;
      return;
    case TSyncValueKind::Double:
    case TSyncValueKind::Float:
      out += FloatingLiteral(value, kind == TSyncValueKind::Float);
      return;
    case TSyncValueKind::Bit:
      appendBits(out, value);
      return;
    case TSyncValueKind::Binary:
      if (value.empty()) {
        out += "''";
      } else if (BlobFile) {
        out += BlobFile->append(value);
      } else {
        appendHex(out, value);
      }
      return;
    case TSyncValueKind::Temporal:
    case TSyncValueKind::Text:
      break;
  }
  out += '\'';
  AppendEscapedString(Connection, value, out);
  out += '\'';
}

}  // namespace lomarin
