#pragma once

#include <QString>

namespace lomarin {
class TMyScript;
}

namespace lomarin::ui {

class TSessionActivity;
class TWaitPanel;

// Runs a script through activity without freezing the program: the statements go to the server
// from a worker thread, the panel shows how far the run got, and its Stop (or the activity's)
// calls BreakExec. The script's OnError and OnProgress handlers are called on this thread.
// Whatever Execute throws is thrown here.
void RunScriptWithProgress(TSessionActivity& activity, TMyScript& script, TWaitPanel* panel,
                           const QString& what);

}  // namespace lomarin::ui
