#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lomarin {

struct TCompletionItem {
  std::string Text;     // what is inserted
  std::string Display;  // what the list shows
};

// The keyword list: line n of the items file goes with line n of the display file; an item
// without a display line shows itself. Missing files give an empty list.
std::vector<TCompletionItem> LoadKeywordItems(const std::filesystem::path& itemsFile,
                                              const std::filesystem::path& displayFile);

// The table whose columns to offer when the caret (a byte offset) stands right after "word.":
// the word as an alias of the statement at the caret, else as one of `tables` (any letter case).
std::optional<std::string> ColumnSourceTable(std::string_view text, size_t caret,
                                             std::span<const std::string> tables);

// What is sent to list a table's columns.
std::string DescStatement(std::string_view table);

// "*" shown as "<ALL>", then each (field, type) of the DESC rows shown as type and name.
std::vector<TCompletionItem> ColumnItems(
    const std::vector<std::pair<std::string, std::string>>& fieldsAndTypes);

// The statement snippets of the "SQL list".
std::span<const std::string_view> SqlSnippets();
// After inserting a snippet the caret steps back into its brackets when it ends with one.
bool CaretInsideBrackets(std::string_view snippet);

}  // namespace lomarin
