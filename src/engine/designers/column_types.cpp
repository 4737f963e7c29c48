#include "engine/designers/column_types.h"

#include <strings.h>

#include <string>

namespace lomarin::designers {

namespace {

constexpr int kBool = 2;
constexpr int kLastNumber = 12;
constexpr int kLastString = 14;
constexpr int kYear = 17;
constexpr int kDatetime = 19;
constexpr int kEnum = 28;
constexpr int kSet = 29;

}  // namespace

int ColumnTypeIndex(std::string_view typeName) {
  const std::string name(typeName);
  for (size_t i = 0; i < kColumnDataTypes.size(); ++i)
    if (name.size() == kColumnDataTypes[i].size() &&
        strncasecmp(name.c_str(), kColumnDataTypes[i].data(), name.size()) == 0)
      return static_cast<int>(i);
  return -1;
}

bool IsEnumOrSet(std::string_view typeName) {
  const int index = ColumnTypeIndex(typeName);
  return index == kEnum || index == kSet;
}

TColumnTypeRules ColumnTypeRules(int typeIndex, TColumnDialog dialog) {
  TColumnTypeRules rules;
  if (typeIndex == kBool) {
    rules.Flags = false;
    return rules;
  }
  const bool enumOrSet = typeIndex == kEnum || typeIndex == kSet;
  rules.Length = typeIndex <= kLastString;
  rules.Default =
      typeIndex <= kYear || typeIndex == kDatetime || (dialog == TColumnDialog::AlterTable && enumOrSet);
  rules.AutoIncrement = typeIndex >= 0 && typeIndex <= kLastNumber;
  rules.ExtraValue = enumOrSet;
  rules.UnsignedZerofill = typeIndex == 0 || (typeIndex >= 3 && typeIndex <= kLastNumber);
  return rules;
}

}  // namespace lomarin::designers
