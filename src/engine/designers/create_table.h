#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/designers/sql_param.h"

namespace lomarin::designers {

// One row of the new-table designer's column grid, every cell a string; flags hold kFlagYes or
// nothing.
struct TTableColumnRow {
  std::string Name;
  std::string DataType;
  std::string Key;
  std::string Mandatory;
  std::string Index;
  std::string Lenght;
  std::string Default;
  std::string AutoIncrement;
  std::string ForeignKey;
  std::string ExtraValues;
  std::string Unsigned;
  std::string Zerofill;
};

// The designer's column entry fields as they stand when the add button is pressed.
struct TColumnEntry {
  std::string Name;
  std::string DataType;
  std::string Length;
  std::string Default;
  std::string ExtraValue;
  bool PrimaryKey = false;
  bool Mandatory = false;
  bool AutoIncrement = false;
  bool Index = false;
  bool ForeignKey = false;
  bool Unsigned = false;
  bool Zerofill = false;
  // The clause the foreign-key dialog built for this column.
  std::string ForeignKeyClause;
};

// The new row, or the warning that keeps it out of the list. Column names are compared without
// letter case, as the server compares them.
struct TAddColumnResult {
  std::optional<TTableColumnRow> Row;
  std::string Warning;
};
TAddColumnResult AddColumnRow(const std::vector<TTableColumnRow>& rows, const TColumnEntry& entry);

// The foreign-key dialog's choices for one column.
struct TForeignKeyChoice {
  std::string Column;
  std::string ReferencedTable;
  std::string ReferencedField;
  std::string Event;
  std::string Rule;
};
std::string BuildForeignKeyClause(const TForeignKeyChoice& choice);

enum class TPartitionType { None, Range, List, Hash, Key };

struct TCreateTableState {
  std::string Database;
  std::string Name;
  std::string TableType = "MyISAM";
  std::string RowFormat = "DEFAULT";
  std::string Comment;
  std::vector<TTableColumnRow> Rows;
  TPartitionType PartitionType = TPartitionType::None;
  std::string Expression;
  int PartitionCount = 0;
  std::string PartitionValues;
};

// Partitioning came with 5.1; older servers get no Partitions tab and no clause.
bool PartitionsSupported(int versionNumber);
// Defaults and the comment are escaped by escape.
std::string BuildCreateTableSql(const TCreateTableState& state, int versionNumber,
                                const explorer::ValueEscaper& escape);

}  // namespace lomarin::designers
