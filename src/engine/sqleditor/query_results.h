#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"

namespace lomarin {

// One result of a request, read completely.
struct TResultSet {
  std::vector<std::string> Columns;
  std::vector<std::vector<std::optional<std::string>>> Rows;
};

// What a query-mode run gives: the first result that has columns, still open on the session so
// its rows can be read as they are shown, and every later result with columns, read completely.
struct TQueryRun {
  std::unique_ptr<TMyQuery> First;  // null when no statement returned rows
  std::vector<TResultSet> Others;
};

// Sends sql as one request (several statements allowed). Of the first result, `firstRows` rows
// are read at once, or all of them with fetchAll or when later results follow (they can only be
// read after it). Throws the ServerError of the first failing statement.
TQueryRun OpenQueryRun(TMyConnection& session, const std::string& sql, bool fetchAll, size_t firstRows);

}  // namespace lomarin
