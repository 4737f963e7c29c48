#pragma once

#include <QString>

class QWidget;

namespace lomarin::ui {

// The modal warning the connect dialogs show; its object name lets tests answer it.
inline constexpr const char* kConnectMessageName = "ConnectMessage";
void showConnectMessage(QWidget* parent, const QString& text);

}  // namespace lomarin::ui
