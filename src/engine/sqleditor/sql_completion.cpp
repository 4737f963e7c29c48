#include "engine/sqleditor/sql_completion.h"

#include <cctype>
#include <fstream>

#include "engine/sqleditor/sql_analyzer.h"

namespace lomarin {

namespace {

std::vector<std::string> readLines(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  std::ifstream in(file, std::ios::binary);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

bool equalNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

}  // namespace

std::vector<TCompletionItem> LoadKeywordItems(const std::filesystem::path& itemsFile,
                                              const std::filesystem::path& displayFile) {
  const std::vector<std::string> items = readLines(itemsFile);
  const std::vector<std::string> displays = readLines(displayFile);
  std::vector<TCompletionItem> out;
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i].empty()) continue;
    out.push_back({items[i], i < displays.size() && !displays[i].empty() ? displays[i] : items[i]});
  }
  return out;
}

std::optional<std::string> ColumnSourceTable(std::string_view text, size_t caret,
                                             std::span<const std::string> tables) {
  if (caret < 3 || caret > text.size() || text[caret - 1] != '.') return std::nullopt;
  size_t start = caret - 1;
  while (start > 0) {
    const auto c = static_cast<unsigned char>(text[start - 1]);
    if (!(std::isalnum(c) || c == '_' || c == '$' || c >= 0x80)) break;
    --start;
  }
  const std::string_view word = text.substr(start, caret - 1 - start);
  if (word.empty()) return std::nullopt;
  const auto aliases = AliasesAt(text, caret);
  if (const auto found = aliases.find(lower(word)); found != aliases.end()) return found->second;
  for (const std::string& table : tables)
    if (equalNoCase(table, word)) return table;
  return std::nullopt;
}

std::string DescStatement(std::string_view table) { return "DESC " + std::string(table); }

std::vector<TCompletionItem> ColumnItems(
    const std::vector<std::pair<std::string, std::string>>& fieldsAndTypes) {
  std::vector<TCompletionItem> out{{"*", "<ALL>"}};
  for (const auto& [field, type] : fieldsAndTypes) out.push_back({field, type + "  " + field});
  return out;
}

std::span<const std::string_view> SqlSnippets() {
  static constexpr std::string_view kSnippets[] = {
      "SELECT * FROM ",
      "SELECT COUNT(*) FROM ",
      "INSERT INTO  VALUES ()",
      "UPDATE  SET ",
      "DELETE FROM  WHERE ",
      "CREATE TABLE  ()",
      "ALTER TABLE  ADD COLUMN ",
      "DROP TABLE IF EXISTS ",
      "SHOW CREATE TABLE ",
      "WHERE  IN ()",
      "LEFT JOIN  ON ",
      "GROUP BY ",
      "ORDER BY ",
      "IFNULL()",
      "CONCAT()",
  };
  return kSnippets;
}

bool CaretInsideBrackets(std::string_view snippet) {
  return !snippet.empty() && (snippet.back() == ')' || snippet.back() == ']');
}

}  // namespace lomarin
