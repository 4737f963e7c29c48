#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "engine/sqleditor/vtd_table.h"

namespace lomarin {

// Recently entered macro values in folder/"params.vtd": "VarName", "VarValue" (as entered) and
// "VarType" (one of kParamTypeNames), oldest first, at most 30.
class TMyParams {
 public:
  static constexpr size_t kKept = 30;

  explicit TMyParams(std::filesystem::path folder, bool enabled = true);

  bool Enabled() const { return enabled_; }
  std::filesystem::path FileName() const { return folder_ / "params.vtd"; }
  const TVirtualTable& Table() const { return table_; }

  // Creates the file empty when it is missing, then loads it. Throws VtdFormatError.
  void LoadFile();
  // Saves the table as it is.
  void CloseFile();
  // Loads, replaces the entry of the same name, drops the oldest beyond 30, saves.
  void addRecToParamas(std::string_view name, std::string_view value, std::string_view type);
  // Removes the entry of that name and saves.
  void DeleteRecord(std::string_view name);

  // Index of the first entry whose trimmed name is `name`.
  std::optional<size_t> Find(std::string_view name) const;

 private:
  std::filesystem::path folder_;
  bool enabled_;
  TVirtualTable table_;
};

}  // namespace lomarin
