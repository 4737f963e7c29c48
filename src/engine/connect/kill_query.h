#pragma once

#include "engine/connect/session_settings.h"

namespace lomarin {

// Interrupts the statement a session is running, from any thread: opens a side connection with
// the session's settings and sends "KILL QUERY <threadId>". Throws ServerError.
void KillQuery(const TMySessionSettings& settings, unsigned long threadId);

}  // namespace lomarin
