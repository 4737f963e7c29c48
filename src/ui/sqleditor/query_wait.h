#pragma once

#include <QString>
#include <functional>

class QDialog;
class QWidget;

namespace lomarin::ui {

// Runs work on a worker thread while this thread keeps the window painted under the busy cursor;
// a run that lasts beyond a moment shows the (modal) dialog until work has ended. The dialog's
// own Stop must make work return soon. Whatever work throws is thrown here.
void RunOffUiThread(const std::function<void()>& work, QDialog& dialog);

// Runs work on a worker thread while this thread keeps the window painted under the busy cursor.
// A run that lasts beyond a moment shows a modal dialog (caption, "Stop") so nothing else uses
// the session meanwhile; "Stop" calls stop, which must make work return soon. Whatever work
// throws is thrown here.
void RunOffUiThread(const std::function<void()>& work, const std::function<void()>& stop, QWidget* parent,
                    const QString& caption);

}  // namespace lomarin::ui
