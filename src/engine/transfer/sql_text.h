#pragma once

#include <string>
#include <string_view>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_field.h"

namespace lomarin {

// A name as the script writes it: back-quoted (inner back-quotes doubled) when `always` is set or
// when the bare name would not read back as that name (reserved word, blank, odd characters).
std::string ScriptName(std::string_view name, bool always);

// Text for a "-- " comment line: line breaks and other control characters written as escapes,
// so the comment stays on its line.
std::string CommentText(std::string_view text);

// The single-quoted, escaped form of a text value.
std::string QuotedString(TMyConnection& connection, std::string_view value);

// Appends the SQL literal of one column value as the text protocol delivered it: numbers exactly
// as sent, temporal values quoted, BIT as b'…', binary values as 0x… with hexBlob, text escaped by
// the client library.
void AppendLiteral(std::string& out, TMyConnection& connection, const TMyField& field, std::string_view value,
                   bool isNull, bool hexBlob);

}  // namespace lomarin
