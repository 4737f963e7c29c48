#include "engine/designers/alter_column.h"

#include <vector>

#include "engine/dataview/browse_sql.h"
#include "engine/designers/column_types.h"
#include "engine/designers/sql_param.h"

namespace lomarin::designers {

namespace {

std::string quotedList(const std::string& values, const explorer::ValueEscaper& escape) {
  std::string list;
  size_t start = 0;
  while (true) {
    const size_t comma = values.find(',', start);
    if (!list.empty()) list += ",";
    list += QuotedLiteral(values.substr(start, comma - start), escape);
    if (comma == std::string::npos) return list;
    start = comma + 1;
  }
}

std::string typeText(const TAlterColumnState& state, const explorer::ValueEscaper& escape) {
  if (IsEnumOrSet(state.DataType)) return state.DataType + "(" + quotedList(state.Values, escape) + ")";
  if (!state.Length.empty()) return state.DataType + "(" + state.Length + ")";
  return state.DataType;
}

std::string unsignedText(const TAlterColumnState& state) {
  if (state.Zerofill) return " UNSIGNED ZEROFILL ";
  return state.Unsigned ? " UNSIGNED " : " ";
}

std::string defaultText(const TAlterColumnState& state, const explorer::ValueEscaper& escape) {
  return state.Values.empty() ? "Default " + state.Default
                              : "Default " + QuotedLiteral(state.Default, escape);
}

// The placeholders every column template shares.
std::vector<TSqlParam> columnParams(const TAlterColumnState& state, const explorer::ValueEscaper& escape) {
  return {{"table", state.Table},
          {"type", typeText(state, escape)},
          {"unsigned", unsignedText(state)},
          {"default", defaultText(state, escape)},
          {"null", state.NotNull ? "Not Null" : ""},
          {"autoinc", state.AutoIncrement ? "AUTO_INCREMENT" : ""}};
}

std::string removeQuotes(std::string text) {
  std::erase(text, '\'');
  return text;
}

}  // namespace

std::string ShowFieldsSql(const std::string& table) {
  return ReplaceSqlParam("show fields FROM &table", "table", table, "N");
}

std::string ShowFieldSql(const std::string& table, const std::string& field, const explorer::ValueEscaper& escape) {
  return ReplaceSqlParams("show fields FROM &table like &field",
                          {{"table", table}, {"field", escape(field), true}});
}

std::string BuildAddColumnSql(const TAlterColumnState& state, const explorer::ValueEscaper& escape) {
  const char* sqlTemplate =
      state.Default.empty()
          ? "Alter table &table Add &field &type &unsigned &null &autoinc After &after"
          : "Alter table &table Add &field &type &unsigned &default &null &autoinc After &after";
  std::vector<TSqlParam> params = columnParams(state, escape);
  params.push_back({"field", state.Name});
  params.push_back({"after", state.After});
  return ReplaceSqlParams(sqlTemplate, params);
}

std::string BuildChangeColumnSql(const TAlterColumnState& state, const explorer::ValueEscaper& escape) {
  std::vector<TSqlParam> params = columnParams(state, escape);
  params.push_back({"field", dataview::BackQuote(state.PresentName)});
  if (!state.Values.empty()) {
    // Enum and set items can be neither unsigned nor zerofill: the template's &unsigned stays empty
    // so no placeholder text reaches the server.
    params.push_back({"unsigned", ""});
    return ReplaceSqlParams(state.Default.empty()
                                ? "ALTER TABLE &table MODIFY COLUMN &field &type &unsigned &null  "
                                : "ALTER TABLE &table MODIFY COLUMN &field &type &default &null  ",
                            params);
  }
  params.push_back({"newfield", dataview::BackQuote(state.Name)});
  return ReplaceSqlParams(
      state.Default.empty()
          ? "Alter table &table change &field  &newfield &type &unsigned &null &autoinc "
          : "Alter table &table change &field  &newfield &type &unsigned &default &null &autoinc ",
      params);
}

void ReadColumn(const TShowFieldsRow& row, TAlterColumnState& state) {
  state.Name = row.Field;
  state.Default = row.Default;
  const size_t open = row.Type.find('(');
  const size_t close = row.Type.rfind(')');
  // Servers that show no display width write "int unsigned": the type name ends at the blank too.
  state.DataType = row.Type.substr(0, row.Type.find_first_of("( "));
  const std::string inside =
      open != std::string::npos && close > open ? row.Type.substr(open + 1, close - open - 1) : std::string();
  const bool enumOrSet = IsEnumOrSet(state.DataType);
  state.Length = enumOrSet ? std::string() : inside;
  state.Values = enumOrSet ? removeQuotes(inside) : std::string();
  state.Unsigned = row.Type.find("unsigned") != std::string::npos;
  state.Zerofill = row.Type.find("zerofill") != std::string::npos;
  state.NotNull = row.Null != "YES";
  state.AutoIncrement = !row.Extra.empty();
  state.Key = row.Key == "PRI";
}

}  // namespace lomarin::designers
