#include "engine/connect/kill_query.h"

#include <string>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"

namespace lomarin {

void KillQuery(const TMySessionSettings& settings, unsigned long threadId) {
  TMyConnection side;
  side.Settings = settings;
  // The session's database may be gone by now; the kill needs none.
  side.Settings.Database.clear();
  side.Connect();
  TMyQuery kill(side);
  kill.SQL = "KILL QUERY " + std::to_string(threadId);
  kill.Execute();
}

}  // namespace lomarin
