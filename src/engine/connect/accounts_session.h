#pragma once

#include <string>

#include "engine/connect/accounts.h"
#include "engine/connect/session_settings.h"

namespace lomarin {

// Copies the connect dialog's values onto the session's settings, as every connect does right
// before connecting. Returns the database filter the object tree lists databases with: the
// account's database in single quotes, or empty when all databases are shown.
std::string applyAccountToSession(const TAccount& account, TMySessionSettings& settings);

}  // namespace lomarin
