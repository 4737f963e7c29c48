#pragma once

#include <string>
#include <utility>
#include <vector>

#include "engine/designers/alter_column.h"
#include "engine/designers/create_table.h"

namespace lomarin::designers {

// A designer grid row with only its name and type filled in.
inline TTableColumnRow column(std::string name, std::string type) {
  TTableColumnRow row;
  row.Name = std::move(name);
  row.DataType = std::move(type);
  return row;
}

inline TCreateTableState table(std::vector<TTableColumnRow> rows, std::string type = "MyISAM",
                               std::string database = "d", std::string name = "t") {
  TCreateTableState state;
  state.Database = std::move(database);
  state.Name = std::move(name);
  state.TableType = std::move(type);
  state.Rows = std::move(rows);
  return state;
}

// The column dialog on table t, placing the column after id.
inline TAlterColumnState alterColumn(std::string name, std::string type) {
  TAlterColumnState state;
  state.Table = "t";
  state.Name = std::move(name);
  state.DataType = std::move(type);
  state.After = "id";
  return state;
}

}  // namespace lomarin::designers
