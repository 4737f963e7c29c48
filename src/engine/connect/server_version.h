#pragma once

#include <string_view>

namespace lomarin {

// The two-digit number that feature checks compare against: the first two decimal digits of the
// version text read as one integer ("5.1.73" gives 51, "10.11.6" gives 10). The odd reading of
// two-digit major versions is deliberate: feature gates were written against it.
int ServerVersionNumber(std::string_view versionText);

// The number before the first dot ("5.5.5-10.11.6-MariaDB" gives 5).
int ServerMajorVersion(std::string_view versionText);

}  // namespace lomarin
