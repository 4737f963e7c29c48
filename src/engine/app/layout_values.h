#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lomarin {

// Texts of the window-layout file ("ide_settings.xml").
inline constexpr std::string_view kLayoutFileName = "ide_settings.xml";
inline constexpr std::string_view kLayoutRoot = "Configuration";
inline constexpr std::string_view kLayoutSection = "General";
inline constexpr std::string_view kLayoutTrueTexts = "TRUE, YES, Y";
inline constexpr std::string_view kLayoutFalseTexts = "FALSE, NO, N";

// True or false for any text of the two lists (letter case ignored); nothing for other texts.
std::optional<bool> parseLayoutBool(std::string_view text);
std::string layoutBoolText(bool value);

// A property name turned into an XML element name: characters not allowed there become "_".
std::string layoutElementName(std::string_view name);

}  // namespace lomarin
