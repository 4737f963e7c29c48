#pragma once

#include <QString>
#include <functional>

#include "engine/connect/my_connection.h"
#include "ui/sqleditor/error_reporter.h"

namespace lomarin::ui {

class TSessionActivity;

// Runs work on a worker thread that holds the session, so the window keeps painting while the
// server answers. A server error reaches the user on this thread through the session's error
// handler (report when it has none); the result is then false.
bool RunOnSession(TSessionActivity& activity, TMyConnection& session, const QString& what,
                  const std::function<void()>& work, const ErrorReporter& report);

}  // namespace lomarin::ui
