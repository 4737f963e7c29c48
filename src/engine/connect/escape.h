#pragma once

#include <string>
#include <string_view>

#include "engine/connect/my_connection.h"

namespace lomarin {

// Escapes a value for a single-quoted SQL literal with the client library, for the session's
// character set and SQL mode. Nothing is sent to the server, so it may run while a result streams.
std::string EscapeString(TMyConnection& connection, std::string_view value);
// The same, appended to out (no quotes added): saves an allocation per value in bulk output.
void AppendEscapedString(TMyConnection& connection, std::string_view value, std::string& out);

}  // namespace lomarin
