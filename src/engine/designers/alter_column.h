#pragma once

#include <string>

#include "engine/designers/sql_param.h"

namespace lomarin::designers {

// The single-column dialog's fields. An empty PresentName means a new column is added.
struct TAlterColumnState {
  std::string Table;
  std::string PresentName;
  std::string Name;
  std::string DataType;
  std::string Length;
  std::string Default;
  // The enum or set items, comma-separated, without quotes.
  std::string Values;
  std::string After;
  bool AutoIncrement = false;
  bool NotNull = false;
  bool Key = false;
  bool Unsigned = false;
  bool Zerofill = false;
};

// The column list of the table, and one column of it.
std::string ShowFieldsSql(const std::string& table);
std::string ShowFieldSql(const std::string& table, const std::string& field, const explorer::ValueEscaper& escape);

// The enum or set items and their default are escaped by escape.
std::string BuildAddColumnSql(const TAlterColumnState& state, const explorer::ValueEscaper& escape);
std::string BuildChangeColumnSql(const TAlterColumnState& state, const explorer::ValueEscaper& escape);

// One row of "show fields" as the dialog reads it in change mode.
struct TShowFieldsRow {
  std::string Field;
  std::string Type;
  std::string Null;
  std::string Key;
  std::string Default;
  std::string Extra;
};
// Fills the column fields from the row; Table, PresentName and After are left as they were.
void ReadColumn(const TShowFieldsRow& row, TAlterColumnState& state);

}  // namespace lomarin::designers
