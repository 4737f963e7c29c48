#pragma once

#include <string>
#include <string_view>

namespace lomarin {

inline constexpr std::string_view kProductTitle = "Lomarin for MySQL";
inline constexpr std::string_view kVersionText = " 6.0 ";
inline constexpr std::string_view kUnstableNetworkMessage = "Connection broken by unstable network";
inline constexpr std::string_view kUnableToFind = "Unable to find  ";

// "Lomarin for MySQL 6.0 ": the caption of the unconnected window.
std::string startCaption();
// "Lomarin for MySQL 6.0  [user:database@server]".
std::string connectedCaption(std::string_view user, std::string_view database, std::string_view server);

// Error texts longer than 1000 characters keep only their last 1001 (UTF-8 characters, not bytes).
std::string trimErrorText(std::string_view text);
// What the application-wide handler shows for an error nobody caught.
std::string unhandledErrorText(std::string_view text);
// The session error as the user sees it: the server's number, a line feed, the message.
std::string sessionErrorText(unsigned number, std::string_view message);

// Height of the message output pane from the "Output Size" text; 80 unless it reads as a
// positive integer.
int outputPaneHeight(std::string_view outputSize);

}  // namespace lomarin
