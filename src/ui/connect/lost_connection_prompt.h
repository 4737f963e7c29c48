#pragma once

class QWidget;

namespace lomarin::ui {

inline constexpr const char* kLostConnectionQuestion = "Error trying to reestablish lost connection ?";

// Asks whether to keep trying to reconnect; true means Retry, false Abort.
bool askReestablishLostConnection(QWidget* parent);

}  // namespace lomarin::ui
