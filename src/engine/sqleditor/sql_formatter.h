#pragma once

#include <string>
#include <string_view>

namespace lomarin {

struct TFormatterSettings {
  int Indent = 2;
  enum class Case { Upper, Lower, Keep } KeywordCase = Case::Upper;
  // Items of select, group, order and set lists each on a line of their own.
  bool BreakLists = true;
};

// Reads "<indent>", "<keywordCase>" (upper, lower, keep) and "<breakLists>" (0/1) from the
// settings file text; missing or unreadable entries keep their defaults.
TFormatterSettings ParseFormatterSettings(std::string_view xml);

struct TFormatResult {
  std::string Text;
  // Line (from 1) of the first fault in the source: an unclosed bracket, quote or comment; -1 if none.
  int ErrorLine = -1;
};

// Reindents SQL and breaks it by clause: each main clause starts a line, its items are indented
// below it, AND/OR of conditions start lines, bracketed sub-queries are indented one level more.
// Comments and quoted text are kept as they stand. Text with a fault comes back unchanged.
TFormatResult FormatSql(std::string_view source, const TFormatterSettings& settings = {});

}  // namespace lomarin
