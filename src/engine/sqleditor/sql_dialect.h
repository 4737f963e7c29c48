#pragma once

#include <span>
#include <string_view>

namespace lomarin {

// Reserved and common words of MySQL 8 and MariaDB, upper case, sorted.
std::span<const std::string_view> SqlKeywords();
// Built-in functions of MySQL 8 and MariaDB, upper case, sorted.
std::span<const std::string_view> SqlFunctions();

// Case-insensitive membership.
bool IsSqlKeyword(std::string_view word);
bool IsSqlFunction(std::string_view word);

}  // namespace lomarin
