#pragma once

#include <string>

#include "engine/app/explorer_nodes.h"
#include "engine/connect/my_connection.h"

namespace lomarin {

// Runs sql and reads its whole result as text (NULL as an empty text). Throws ServerError.
explorer::ResultTable ReadResultTable(TMyConnection& session, const std::string& sql);

}  // namespace lomarin
