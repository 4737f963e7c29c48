#pragma once

#include <QString>

class QWidget;

namespace lomarin {
class ServerError;
}  // namespace lomarin

namespace lomarin::ui {

// The modal boxes the connect dialogs show; their object name lets tests answer them.
inline constexpr const char* kConnectMessageName = "ConnectMessage";
void showConnectMessage(QWidget* parent, const QString& text);
void showConnectInformation(QWidget* parent, const QString& text);
// The server's error number, a line feed and its message.
void showConnectError(QWidget* parent, const ServerError& error);

}  // namespace lomarin::ui
