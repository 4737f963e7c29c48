#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/compare/key_order.h"
#include "engine/compare/sync_values.h"
#include "engine/connect/my_connection.h"

namespace lomarin {

// One column of a table as a synchronisation reads and writes it.
struct TSyncColumn {
  std::string Name;
  std::string Type;       // as SHOW FULL COLUMNS writes it, lower case
  std::string Collation;  // empty for non-character columns
  bool Generated = false;
  bool Invisible = false;  // left out of "select *"
  bool IsBlob = false;     // a BLOB or TEXT column
  TSyncValueKind ValueKind = TSyncValueKind::Text;
  TKeyOrderKind OrderKind = TKeyOrderKind::Bytes;
};

struct TSyncTableInfo {
  std::string Name;  // as the server spells it
  std::vector<TSyncColumn> Columns;
  std::vector<std::string> PrimaryKey;  // in key order

  const TSyncColumn* column(const std::string& name) const;
};

// How values of a column type are written and ordered.
void ClassifyColumn(TSyncColumn& column);

// The table as SHOW TABLES names it (case-insensitively when caseSensitive is off); none when
// it is not there.
std::optional<std::string> FindTable(TMyConnection& connection, const std::string& table, bool caseSensitive);
// Columns and primary key of an existing table.
TSyncTableInfo ReadTableInfo(TMyConnection& connection, const std::string& table);
// The weight of one space in a PAD SPACE collation; empty for a NO PAD one.
std::string SpaceWeight(TMyConnection& connection, const std::string& collation);

}  // namespace lomarin
