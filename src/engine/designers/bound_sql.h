#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/app/explorer_nodes.h"
#include "engine/connect/my_connection.h"

namespace lomarin::designers {

// The value of one ":name" parameter of a statement.
struct TBoundValue {
  std::string Name;
  std::string Value;
};

// Each ":name" outside quoted text and comments becomes its value as a single-quoted literal,
// escaped by escape; a name without a value stays as it is. Names compare case-insensitively.
std::string BindParams(std::string_view sql, const std::vector<TBoundValue>& values,
                       const explorer::ValueEscaper& escape);

// Runs a load query with its parameters bound by the session's client library and reads the
// whole result (NULL as an empty text). Throws ServerError.
explorer::ResultTable ReadBound(TMyConnection& session, std::string_view sql,
                                const std::vector<TBoundValue>& values);

}  // namespace lomarin::designers
