#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// A "&name" placeholder of a statement and the text that replaces it.
struct TMacro {
  std::string Name;
  std::string Value;
};
using TMacros = std::vector<TMacro>;

// Names of the "&name" macros outside quoted text and comments, in order of first appearance,
// each once (names compare case-insensitively). "&&" is the operator, not a macro.
std::vector<std::string> FindMacroNames(std::string_view sql);

// Macros found in sql, with empty values.
TMacros MacrosOf(std::string_view sql);

// Replaces every "&name" outside quoted text and comments whose name is in macros; other
// ampersands stay as they are.
std::string ExpandMacros(std::string_view sql, const TMacros& macros);

// Parameter types in the order the parameter dialog lists them.
inline constexpr std::array<std::string_view, 7> kParamTypeNames = {"Integer", "Float",    "String", "Date",
                                                                    "DateTime", "Time", "Char"};

// Makes a value safe between single quotes: the session's client library does it.
using TValueEscaper = std::function<std::string(std::string_view)>;

// The text a value of the given type stands for in a statement. In quoting mode a "Float" has
// its points turned into commas and is quoted, other non-integers are quoted as typed (escaped
// by `escape`); outside quoting mode (and for "Integer") the value is used as it stands.
std::string FormatMacroValue(std::string_view value, std::string_view type, const TValueEscaper& escape,
                             bool quoting = true);

}  // namespace lomarin
