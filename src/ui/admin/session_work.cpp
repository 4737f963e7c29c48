#include "ui/admin/session_work.h"

#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

bool RunOnSession(TSessionActivity& activity, TMyConnection& session, const QString& what,
                  const std::function<void()>& work, const ErrorReporter& report) {
  try {
    // Nothing to interrupt: these are short statements, so a stop waits for them.
    activity.run(
        what, work, [] {}, nullptr);
    return true;
  } catch (const ServerError& error) {
    // The borrower's errors skip the session's handler: shown here, on this thread.
    if (session.Events.OnError)
      session.Events.OnError(error);
    else if (report)
      report(QString::fromStdString(error.message()));
    return false;
  }
}

}  // namespace lomarin::ui
