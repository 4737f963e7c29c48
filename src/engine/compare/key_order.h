#pragma once

#include <string>
#include <string_view>

namespace lomarin {

// How the server orders the values of one key column, so that the merge walks both sides in the
// order their ORDER BY delivers.
enum class TKeyOrderKind {
  Number,  // integers, DECIMAL, YEAR, ENUM and SET indexes: exact decimal texts
  Real,    // FLOAT and DOUBLE
  Time,    // TIME: signed, hours beyond 99
  Bytes,   // binary strings, BIT, DATE, DATETIME, TIMESTAMP: byte order
  Weight,  // character strings: the collation's weight string as the server computed it
};

struct TKeyOrder {
  TKeyOrderKind Kind = TKeyOrderKind::Bytes;
  // Weight of one space in the collation; empty for NO PAD collations. PAD SPACE collations
  // compare the shorter value as if padded with spaces.
  std::string SpaceWeight;
};

// <0, 0, >0 as the server orders a and b; NULL sorts first.
int CompareKeyValues(const TKeyOrder& order, std::string_view a, bool aNull, std::string_view b, bool bNull);

// Parts of the comparison, exposed for their own tests.
int CompareDecimalTexts(std::string_view a, std::string_view b);
int CompareTimeTexts(std::string_view a, std::string_view b);
int CompareWeights(std::string_view a, std::string_view b, std::string_view spaceWeight);

}  // namespace lomarin
