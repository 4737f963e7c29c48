#pragma once

#include <array>
#include <string_view>

namespace lomarin::designers {

// The data types both column editors offer; a type's position drives which fields it enables.
inline constexpr std::array<std::string_view, 30> kColumnDataTypes = {
    "tinyint",  "bit",    "bool",       "smallint", "mediumint", "int",  "integer",    "bigint",
    "real",     "double", "float",      "decimal",  "numeric",   "char", "varchar",    "date",
    "time",     "year",   "timestamp",  "datetime", "tinyblob",  "blob", "mediumblob", "longblob",
    "tinytext", "text",   "mediumtext", "longtext", "enum",      "set"};

// Position of a type name in the list (compared without case), -1 when it is not there.
int ColumnTypeIndex(std::string_view typeName);
bool IsEnumOrSet(std::string_view typeName);

enum class TColumnDialog { Designer, AlterTable };

// Which entry fields a chosen type leaves usable. A field that is not enabled is also emptied or
// unchecked. "bool" disables the seven flag boxes (Flags false) and leaves every other field as it
// was, so for it the other members mean nothing.
struct TColumnTypeRules {
  bool Flags = true;
  bool Length = false;
  bool Default = false;
  bool AutoIncrement = false;
  bool ExtraValue = false;
  bool UnsignedZerofill = false;
};
TColumnTypeRules ColumnTypeRules(int typeIndex, TColumnDialog dialog);

}  // namespace lomarin::designers
