#include "engine/sqleditor/query_params.h"

namespace lomarin {

TMyParams::TMyParams(std::filesystem::path folder, bool enabled)
    : folder_(std::move(folder)),
      enabled_(enabled),
      table_({{"VarName", "string", 0}, {"VarValue", "string", 0}, {"VarType", "string", 0}}) {}

void TMyParams::LoadFile() {
  if (!std::filesystem::exists(FileName())) {
    std::filesystem::create_directories(folder_);
    TVirtualTable(table_.Fields()).SaveToFile(FileName());
  }
  table_.LoadFromFile(FileName());
}

void TMyParams::CloseFile() { table_.SaveToFile(FileName()); }

std::optional<size_t> TMyParams::Find(std::string_view name) const {
  const auto& records = table_.Records();
  for (size_t i = 0; i < records.size(); ++i)
    if (TrimText(records[i][0]) == name) return i;
  return std::nullopt;
}

void TMyParams::addRecToParamas(std::string_view name, std::string_view value, std::string_view type) {
  if (!enabled_) return;
  LoadFile();
  if (auto old = Find(name)) table_.Delete(*old);
  table_.Append({std::string(name), std::string(value), std::string(type)});
  while (table_.RecordCount() > kKept) table_.Delete(0);
  CloseFile();
}

void TMyParams::DeleteRecord(std::string_view name) {
  LoadFile();
  if (auto old = Find(name)) table_.Delete(*old);
  CloseFile();
}

}  // namespace lomarin
