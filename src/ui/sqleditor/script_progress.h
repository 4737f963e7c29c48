#pragma once

#include <QString>

class QWidget;

namespace lomarin {
class TMyScript;
}

namespace lomarin::ui {

// Runs a script without freezing the window: the statements go to the server from a worker
// thread while this thread keeps painting. A run that lasts beyond a moment shows a modal
// progress dialog whose "Stop" calls BreakExec; the modality keeps every other command (and so
// every other use of the session) away until the run ends. The script's OnError and OnProgress
// handlers are called on this thread. Whatever Execute throws is thrown here.
void RunScriptWithProgress(TMyScript& script, QWidget* parent, const QString& caption);

}  // namespace lomarin::ui
