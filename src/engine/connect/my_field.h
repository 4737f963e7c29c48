#pragma once

#include <string>

namespace lomarin {

// Column types as the client/server protocol numbers them.
enum class TMyFieldType : int {
  Decimal = 0, Tiny = 1, Short = 2, Long = 3, Float = 4, Double = 5, Null = 6, Timestamp = 7,
  LongLong = 8, Int24 = 9, Date = 10, Time = 11, DateTime = 12, Year = 13, NewDate = 14,
  VarChar = 15, Bit = 16, Json = 245, NewDecimal = 246, Enum = 247, Set = 248, TinyBlob = 249,
  MediumBlob = 250, LongBlob = 251, Blob = 252, VarString = 253, String = 254, Geometry = 255,
};

// Column flags as the protocol sends them.
namespace fieldflag {
inline constexpr unsigned NotNull = 1;
inline constexpr unsigned PrimaryKey = 2;
inline constexpr unsigned UniqueKey = 4;
inline constexpr unsigned MultipleKey = 8;
inline constexpr unsigned Blob = 16;
inline constexpr unsigned Unsigned = 32;
inline constexpr unsigned ZeroFill = 64;
inline constexpr unsigned Binary = 128;
inline constexpr unsigned Enum = 256;
inline constexpr unsigned AutoIncrement = 512;
inline constexpr unsigned Timestamp = 1024;
inline constexpr unsigned Set = 2048;
inline constexpr unsigned NoDefaultValue = 4096;
inline constexpr unsigned OnUpdateNow = 8192;
inline constexpr unsigned Num = 32768;
}  // namespace fieldflag

inline constexpr unsigned kBinaryCharsetNr = 63;

struct TMyField {
  std::string Name;      // as the result names it (alias)
  std::string OrgName;   // the column in its source table
  std::string Table;     // alias of the source table
  std::string OrgTable;  // the source table itself
  std::string Database;
  TMyFieldType Type = TMyFieldType::Null;
  unsigned Flags = 0;
  unsigned long Length = 0;
  unsigned Decimals = 0;
  unsigned CharsetNr = 0;

  bool has(unsigned flag) const { return (Flags & flag) != 0; }
  bool isBinary() const { return CharsetNr == kBinaryCharsetNr; }
  bool isNullable() const { return !has(fieldflag::NotNull); }
};

}  // namespace lomarin
