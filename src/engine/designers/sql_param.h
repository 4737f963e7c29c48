#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/app/explorer_nodes.h"

namespace lomarin::designers {

// The flag a designer row holds for a checked box; rows are compared against this one constant.
inline constexpr std::string_view kFlagYes = "Y";

// One "&name" placeholder of a statement template and what replaces it. With Quote the value goes
// between single quotes.
struct TSqlParam {
  std::string Name;
  std::string Value;
  bool Quote = false;
};

// The value between single quotes, escaped by escape: the session's client library, which knows
// whether the SQL mode has NO_BACKSLASH_ESCAPES.
std::string QuotedLiteral(std::string_view value, const explorer::ValueEscaper& escape);

// Replaces the listed "&name" placeholders in one pass, so a value that itself holds an "&word" is
// never taken for a later placeholder. A placeholder is "&" and the letters, digits and "_" after it;
// names are compared exactly, and a name listed twice takes its last value.
std::string ReplaceSqlParams(std::string_view sqlTemplate, const std::vector<TSqlParam>& params);

// quote is "Y" for single quotes, "N" for the value as it stands.
std::string ReplaceSqlParam(std::string_view sqlTemplate, std::string_view name, std::string_view value,
                            std::string_view quote);

std::string AsciiUpper(std::string_view text);

// A hyphen would end a bare name, so only then does the name go between back-quotes.
std::string HyphenQuoted(std::string_view name);

}  // namespace lomarin::designers
