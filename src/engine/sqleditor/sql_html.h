#pragma once

#include <string>
#include <string_view>

namespace lomarin {

// An HTML page showing the SQL text with its tokens coloured by type.
std::string SqlToHtml(std::string_view text, std::string_view title);

}  // namespace lomarin
