#include "engine/admin/size_stats.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "engine/admin/admin_statements.h"
#include "engine/connect/read_result_table.h"

namespace lomarin::admin {

namespace {

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

int columnOf(const explorer::ResultTable& table, std::string_view name) {
  for (size_t i = 0; i < table.columns.size(); ++i)
    if (sameName(table.columns[i], name)) return static_cast<int>(i);
  return -1;
}

uint64_t numberAt(const std::vector<std::string>& row, int column) {
  if (column < 0 || static_cast<size_t>(column) >= row.size()) return 0;
  return std::strtoull(row[static_cast<size_t>(column)].c_str(), nullptr, 10);
}

}  // namespace

uint64_t KilobytesOf(uint64_t dataLength, uint64_t indexLength) {
  return (dataLength >> 10) + (indexLength >> 10);
}

std::string KilobyteText(uint64_t kilobytes) { return std::to_string(kilobytes) + " KB"; }

std::vector<TTableSize> TableSizes(const explorer::ResultTable& tableStatus) {
  const int name = columnOf(tableStatus, "Name");
  const int engine = columnOf(tableStatus, "Engine");
  const int rows = columnOf(tableStatus, "Rows");
  const int data = columnOf(tableStatus, "Data_length");
  const int index = columnOf(tableStatus, "Index_length");
  std::vector<TTableSize> sizes;
  for (const auto& row : tableStatus.rows) {
    TTableSize& size = sizes.emplace_back();
    if (name >= 0) size.Name = row[static_cast<size_t>(name)];
    if (engine >= 0) size.Engine = row[static_cast<size_t>(engine)];
    size.Rows = numberAt(row, rows);
    size.DataLength = numberAt(row, data);
    size.IndexLength = numberAt(row, index);
    size.Kilobytes = KilobytesOf(size.DataLength, size.IndexLength);
  }
  return sizes;
}

TDatabaseSize DatabaseSizeOf(std::string_view database, const std::vector<TTableSize>& tables) {
  TDatabaseSize size{std::string(database), tables.size(), 0, 0};
  for (const TTableSize& table : tables) {
    size.Records += table.Rows;
    size.Kilobytes += table.Kilobytes;
  }
  return size;
}

std::vector<TTableSize> ReadTableSizes(TMyConnection& session, std::string_view database) {
  return TableSizes(ReadResultTable(session, TableStatusSQL(database)));
}

std::vector<TDatabaseSize> ReadDatabaseSizes(TMyConnection& session) {
  std::vector<TDatabaseSize> sizes;
  for (const auto& row : ReadResultTable(session, std::string(kShowDatabasesSQL)).rows)
    sizes.push_back(DatabaseSizeOf(row.at(0), ReadTableSizes(session, row.at(0))));
  return sizes;
}

}  // namespace lomarin::admin
