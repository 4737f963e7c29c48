#pragma once

#include <string>
#include <string_view>

namespace lomarin {

// Appends a FLOAT value as the shortest text that loads back into a FLOAT column as that value;
// the text of the value widened to DOUBLE where none is shorter.
void AppendFloatText(std::string& out, float value);

// The same for a FLOAT given as the text of the value widened to DOUBLE; that text itself when it
// holds no FLOAT value.
void AppendFloatLiteral(std::string& out, std::string_view exactDouble);

}  // namespace lomarin
