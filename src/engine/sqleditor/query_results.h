#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"

namespace lomarin {

// One result of a request, read completely.
struct TResultSet {
  std::vector<std::string> Columns;
  std::vector<std::vector<std::optional<std::string>>> Rows;
  uint64_t RowsAffected = 0;
};

// Sends sql as one request (several statements allowed) and reads every result it returns, also
// those of statements without rows. Throws the ServerError of the first failing statement.
std::vector<TResultSet> OpenAllResults(TMyConnection& session, const std::string& sql);

}  // namespace lomarin
