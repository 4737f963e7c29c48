#pragma once

#include <string>
#include <string_view>

namespace lomarin {

// The tunnel script users put on their web server, with its secret set (left empty, the script
// refuses every request until the user sets one in it).
std::string TunnelScript(std::string_view secret);

}  // namespace lomarin
