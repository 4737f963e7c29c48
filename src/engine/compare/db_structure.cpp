#include "engine/compare/db_structure.h"

#include <algorithm>
#include <cctype>

namespace lomarin {

bool SameName(std::string_view a, std::string_view b, bool caseSensitive) {
  if (caseSensitive) return a == b;
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

namespace {

bool sameNames(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  return std::ranges::equal(a, b, [](const auto& x, const auto& y) { return SameName(x, y, false); });
}

}  // namespace

bool TDBIndex::sameDefinition(const TDBIndex& other) const {
  const bool columnsEqual = std::ranges::equal(Columns, other.Columns, [](const auto& x, const auto& y) {
    return SameName(x.Name, y.Name, false) && x.Length == y.Length && x.Descending == y.Descending;
  });
  return Kind == other.Kind && columnsEqual && Using == other.Using && Comment == other.Comment;
}

bool TDBIndex::leadsWith(const std::vector<std::string>& columns) const {
  if (Columns.size() < columns.size()) return false;
  for (size_t i = 0; i < columns.size(); ++i)
    if (!SameName(Columns[i].Name, columns[i], false)) return false;
  return true;
}

bool TDBForeignKey::sameDefinition(const TDBForeignKey& other) const {
  return sameNames(Columns, other.Columns) && SameName(RefTable, other.RefTable, false) &&
         sameNames(RefColumns, other.RefColumns) && OnDelete == other.OnDelete && OnUpdate == other.OnUpdate;
}

const TDBColumn* TDBTable::column(std::string_view name) const { return FindByName(Columns, name, false); }

const TDBIndex* TDBTable::primaryKey() const {
  for (const auto& index : Indexes)
    if (index.Kind == TIndexKind::Primary) return &index;
  return nullptr;
}

}  // namespace lomarin
