#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/app/explorer_nodes.h"
#include "engine/connect/my_connection.h"

namespace lomarin::admin {

// A table's size in kilobytes: data and index lengths are each cut to whole kilobytes (shifted
// right by 10) before they are added, so the sum can be below the kilobytes of their total.
uint64_t KilobytesOf(uint64_t dataLength, uint64_t indexLength);
// "123 KB".
std::string KilobyteText(uint64_t kilobytes);

struct TTableSize {
  std::string Name;
  std::string Engine;
  uint64_t Rows = 0;
  uint64_t DataLength = 0;
  uint64_t IndexLength = 0;
  uint64_t Kilobytes = 0;
};

struct TDatabaseSize {
  std::string Name;
  uint64_t Tables = 0;
  uint64_t Records = 0;
  uint64_t Kilobytes = 0;
};

// The rows of "show table status" (columns found by name; NULL, as for views, counts as 0).
std::vector<TTableSize> TableSizes(const explorer::ResultTable& tableStatus);
TDatabaseSize DatabaseSizeOf(std::string_view database, const std::vector<TTableSize>& tables);

// Every database of "Show databases " with its tables, records and size.
std::vector<TDatabaseSize> ReadDatabaseSizes(TMyConnection& session);
std::vector<TTableSize> ReadTableSizes(TMyConnection& session, std::string_view database);

}  // namespace lomarin::admin
