#include "engine/sqleditor/sql_history.h"

#include <ctime>

namespace lomarin {

std::string LocalDateTimeText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

THsitory::THsitory(std::filesystem::path folder, bool enabled)
    : DateText(LocalDateTimeText),
      folder_(std::move(folder)),
      enabled_(enabled),
      table_({{"sql", "memo", 0}, {"owner", "string", 20}, {"date", "string", 20}}) {}

void THsitory::LoadFile() {
  if (!std::filesystem::exists(FileName())) {
    std::filesystem::create_directories(folder_);
    TVirtualTable(table_.Fields()).SaveToFile(FileName());
  }
  table_.LoadFromFile(FileName());
}

void THsitory::addRecToHistory(std::string_view text, std::string_view owner) {
  if (!enabled_) return;
  LoadFile();
  while (table_.RecordCount() > kKeptBeforeAdd) table_.Delete(0);
  const std::string_view sql = TrimText(text);
  const auto& records = table_.Records();
  for (size_t i = 0; i < records.size(); ++i) {
    if (TrimText(records[i][0]) == sql) {
      table_.Delete(i);
      break;
    }
  }
  table_.Append({std::string(sql), std::string(owner), DateText()});
  table_.SaveToFile(FileName());
}

}  // namespace lomarin
