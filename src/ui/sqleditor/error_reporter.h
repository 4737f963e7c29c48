#pragma once

#include <QString>
#include <functional>

namespace lomarin::ui {

// Shows a server error to the user; the main window passes its ShowServerError.
using ErrorReporter = std::function<void(const QString& message)>;

}  // namespace lomarin::ui
