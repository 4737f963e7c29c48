#include "engine/compare/key_order.h"

#include <charconv>
#include <cstdint>

namespace lomarin {

namespace {

int sign(int v) { return (v > 0) - (v < 0); }

int compareBytes(std::string_view a, std::string_view b) { return sign(a.compare(b)); }

struct DecimalParts {
  bool negative = false;
  std::string_view integer;   // without leading zeros
  std::string_view fraction;  // without trailing zeros
};

DecimalParts splitDecimal(std::string_view text) {
  DecimalParts parts;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    parts.negative = text.front() == '-';
    text.remove_prefix(1);
  }
  const size_t dot = text.find('.');
  parts.integer = text.substr(0, dot);
  parts.fraction = dot == std::string_view::npos ? std::string_view() : text.substr(dot + 1);
  while (!parts.integer.empty() && parts.integer.front() == '0') parts.integer.remove_prefix(1);
  while (!parts.fraction.empty() && parts.fraction.back() == '0') parts.fraction.remove_suffix(1);
  if (parts.integer.empty() && parts.fraction.empty()) parts.negative = false;  // -0 is 0
  return parts;
}

int compareMagnitude(const DecimalParts& a, const DecimalParts& b) {
  if (a.integer.size() != b.integer.size()) return a.integer.size() < b.integer.size() ? -1 : 1;
  if (const int c = compareBytes(a.integer, b.integer)) return c;
  return compareBytes(a.fraction, b.fraction);
}

// TIME texts as microseconds: "-838:59:59.000000" .. "838:59:59.000000".
int64_t timeMicros(std::string_view text) {
  bool negative = false;
  if (!text.empty() && text.front() == '-') {
    negative = true;
    text.remove_prefix(1);
  }
  int64_t fields[3] = {0, 0, 0};
  int64_t micros = 0;
  size_t field = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == ':') {
      if (field < 2) ++field;
    } else if (c == '.') {
      std::string_view digits = text.substr(i + 1, 6);
      for (char d : digits) micros = micros * 10 + (d - '0');
      for (size_t pad = digits.size(); pad < 6; ++pad) micros *= 10;
      break;
    } else if (c >= '0' && c <= '9') {
      fields[field] = fields[field] * 10 + (c - '0');
    }
  }
  const int64_t total = ((fields[0] * 60 + fields[1]) * 60 + fields[2]) * 1000000 + micros;
  return negative ? -total : total;
}

int compareReals(std::string_view a, std::string_view b) {
  double x = 0, y = 0;
  std::from_chars(a.data(), a.data() + a.size(), x);
  std::from_chars(b.data(), b.data() + b.size(), y);
  return (x > y) - (x < y);
}

}  // namespace

int CompareDecimalTexts(std::string_view a, std::string_view b) {
  const DecimalParts x = splitDecimal(a);
  const DecimalParts y = splitDecimal(b);
  if (x.negative != y.negative) return x.negative ? -1 : 1;
  const int magnitude = compareMagnitude(x, y);
  return x.negative ? -magnitude : magnitude;
}

int CompareTimeTexts(std::string_view a, std::string_view b) {
  const int64_t x = timeMicros(a);
  const int64_t y = timeMicros(b);
  return (x > y) - (x < y);
}

int CompareWeights(std::string_view a, std::string_view b, std::string_view spaceWeight) {
  const size_t common = std::min(a.size(), b.size());
  if (const int c = compareBytes(a.substr(0, common), b.substr(0, common))) return c;
  if (a.size() == b.size()) return 0;
  if (spaceWeight.empty()) return a.size() < b.size() ? -1 : 1;
  // The shorter value counts as padded with spaces: the rest of the longer one decides against them.
  const bool aLonger = a.size() > b.size();
  std::string_view rest = (aLonger ? a : b).substr(common);
  while (!rest.empty()) {
    const std::string_view unit = rest.substr(0, spaceWeight.size());
    if (const int c = compareBytes(unit, spaceWeight.substr(0, unit.size()))) return aLonger ? c : -c;
    rest.remove_prefix(unit.size());
  }
  return 0;
}

int CompareKeyValues(const TKeyOrder& order, std::string_view a, bool aNull, std::string_view b, bool bNull) {
  if (aNull || bNull) return aNull == bNull ? 0 : (aNull ? -1 : 1);
  switch (order.Kind) {
    case TKeyOrderKind::Number:
      return CompareDecimalTexts(a, b);
    case TKeyOrderKind::Real:
      return compareReals(a, b);
    case TKeyOrderKind::Time:
      return CompareTimeTexts(a, b);
    case TKeyOrderKind::Weight:
      return CompareWeights(a, b, order.SpaceWeight);
    case TKeyOrderKind::Bytes:
      break;
  }
  return compareBytes(a, b);
}

}  // namespace lomarin
