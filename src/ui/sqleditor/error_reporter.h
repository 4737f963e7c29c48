#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace lomarin::ui {

// Shows a server error to the user; the main window passes its ShowServerError.
using ErrorReporter = std::function<void(const QString& message)>;

// A plain message box, for dialogs used without a main window.
ErrorReporter messageBoxReporter(QWidget* parent);

}  // namespace lomarin::ui
