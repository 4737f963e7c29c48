#include "engine/dataview/filter_condition.h"

#include <algorithm>

namespace lomarin::dataview {

namespace {

std::string quoted(std::string_view value, const TEscape& escape) { return "'" + escape(value) + "'"; }

}  // namespace

std::string FilterConditionText(const TFilterCondition& c, const TEscape& escape) {
  if (!c.formatColumnTypes || c.type == TFilterType::None) return c.value;
  const std::string head = c.field + " " + c.op + " ";
  switch (c.type) {
    case TFilterType::String:
    case TFilterType::Char:
      return head + quoted(c.value, escape);
    case TFilterType::Integer:
      return head + c.value;
    case TFilterType::Float: {
      std::string value = c.value;
      std::replace(value.begin(), value.end(), '.', ',');
      return head + quoted(value, escape);
    }
    case TFilterType::Date:
      return "DATE_FORMAT(" + c.field + ",'" + c.dateFormat + "')" + c.op + quoted(c.value, escape);
    case TFilterType::None:
      break;
  }
  return c.value;
}

std::string ComposeFilter(std::string_view filter, std::string_view condition, TFilterJoin join) {
  switch (join) {
    case TFilterJoin::And:
      return std::string(filter) + " and " + std::string(condition);
    case TFilterJoin::Or:
      return std::string(filter) + " or " + std::string(condition);
    case TFilterJoin::Replace:
      break;
  }
  return std::string(condition);
}

const std::vector<std::string>& FilterOperators() {
  static const std::vector<std::string> operators{"=",  "<>",   ">",       ">=",          "<",
                                                  "<=", "LIKE", "BETWEEN", "IS NOT NULL", "IS NULL"};
  return operators;
}

const std::vector<std::string>& FilterTypeNames() {
  static const std::vector<std::string> names{"Integer", "Float", "String", "Date", "Char"};
  return names;
}

TFilterType FilterTypeFromName(std::string_view name) {
  static const TFilterType types[] = {TFilterType::Integer, TFilterType::Float, TFilterType::String,
                                      TFilterType::Date, TFilterType::Char};
  const auto& names = FilterTypeNames();
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? TFilterType::None : types[found - names.begin()];
}

const std::vector<std::string>& FilterDateFormats() {
  static const std::vector<std::string> formats{
      "%Y-%m-%d", "%Y-%m-%d %H:%i:%s", "%Y-%m-%d %H:%i", "%d/%m/%Y", "%m/%d/%Y",
      "%d.%m.%Y", "%d-%m-%Y",          "%Y/%m/%d",       "%Y%m%d",   "%Y-%m",
      "%Y",       "%H:%i:%s",          "%H:%i"};
  return formats;
}

}  // namespace lomarin::dataview
