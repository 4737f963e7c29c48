#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "engine/sqleditor/vtd_table.h"

namespace lomarin {

// The SQL history: the texts the editor sent, oldest first, in folder/"history.vtd" with the
// fields "sql" (memo), "owner" (20) and "date" (20). Recording happens only when enabled (the
// "SQL Trace" option). The file is re-read before each addition, so entries another running copy
// wrote meanwhile are kept.
class THsitory {
 public:
  static constexpr size_t kKeptBeforeAdd = 100;

  THsitory(std::filesystem::path folder, bool enabled);

  bool Enabled() const { return enabled_; }
  std::filesystem::path FileName() const { return folder_ / "history.vtd"; }
  const TVirtualTable& Table() const { return table_; }

  // Creates the file empty when it is missing, then loads it. Throws VtdFormatError.
  void LoadFile();
  // Loads, trims to the oldest-first limit, moves a repeated text to the end with the new date,
  // and saves. Does nothing when not enabled. Throws VtdFormatError, leaving the file untouched.
  void addRecToHistory(std::string_view text, std::string_view owner);

  // The text of "now" for the "date" field; replaceable for a fixed clock.
  std::function<std::string()> DateText;

 private:
  std::filesystem::path folder_;
  bool enabled_;
  TVirtualTable table_;
};

// The local date and time as "YYYY-MM-DD hh:mm:ss".
std::string LocalDateTimeText();

}  // namespace lomarin
