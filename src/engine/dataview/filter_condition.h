#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin::dataview {

// The condition texts of the advanced filter builder, which end up in the data frame's WHERE line.

enum class TFilterType { None, Integer, Float, String, Date, Char };

struct TFilterCondition {
  std::string field;
  std::string op;
  std::string value;
  TFilterType type = TFilterType::None;
  bool formatColumnTypes = true;
  std::string dateFormat;
};

// Escapes a typed value for a quoted literal (the session's own escaping).
using TEscape = std::function<std::string(std::string_view)>;

// One condition: the value alone when types are not formatted or no type is chosen; otherwise
// field, operator and value as the type wants it (a Float value has every point turned into a
// comma; a Date compares DATE_FORMAT of the field, with no blanks around the operator).
std::string FilterConditionText(const TFilterCondition& condition, const TEscape& escape);

enum class TFilterJoin { Replace, And, Or };
// "Add to filter" replaces the text; "AND"/"OR into filter" append " and "/" or " and the condition.
std::string ComposeFilter(std::string_view filter, std::string_view condition, TFilterJoin join);

const std::vector<std::string>& FilterOperators();
// Names of the types in the order of the "Type" list; index 0 is Integer.
const std::vector<std::string>& FilterTypeNames();
TFilterType FilterTypeFromName(std::string_view name);
// MySQL DATE_FORMAT strings offered in "Date format", the ISO date first.
const std::vector<std::string>& FilterDateFormats();

}  // namespace lomarin::dataview
