#pragma once

#include <array>
#include <string>
#include <string_view>

namespace lomarin::designers {

std::string BuildCreateViewSql(std::string_view name, std::string_view selectText);

inline constexpr std::array<std::string_view, 3> kUdfReturnTypes = {"String", "Real", "Integer"};

// The library-function dialog's fields; ReplacedName is the function being edited, empty for a new one.
struct TUdfState {
  std::string Name;
  std::string Library;
  std::string ReturnType{kUdfReturnTypes[0]};
  bool Aggregate = false;
  std::string ReplacedName;
};

// The message that stops the statement, or empty when it can be built.
std::string CheckUdf(const TUdfState& state);
std::string BuildCreateUdfSql(const TUdfState& state);
// Run before the CREATE in edit mode; empty for a new function.
std::string BuildDropUdfSql(const TUdfState& state);

}  // namespace lomarin::designers
