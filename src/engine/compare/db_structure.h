#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// Every text below is kept as the server would show it after the normalisation of
// ddl_normalise.h, so two structures compare field by field.
struct TDBColumn {
  std::string Name;
  std::string Type;  // "int", "varchar(20)", "enum('a','b')"
  std::string Charset;
  std::string Collation;
  bool Unsigned = false;
  bool Zerofill = false;
  bool Binary = false;
  bool NotNull = false;
  std::optional<std::string> Default;
  std::string OnUpdate;
  bool AutoIncrement = false;
  std::string Generated;  // the expression without its parentheses
  bool Stored = false;
  bool Invisible = false;
  std::string Check;
  std::string Comment;  // a quoted literal, as written

  bool operator==(const TDBColumn&) const = default;
};

enum class TIndexKind { Primary, Unique, Index, Fulltext, Spatial };

struct TDBIndexColumn {
  std::string Name;  // or "(expression)" for a functional part
  std::string Length;
  bool Descending = false;
  bool operator==(const TDBIndexColumn&) const = default;
};

struct TDBIndex {
  std::string Name;  // "PRIMARY" for the primary key
  TIndexKind Kind = TIndexKind::Index;
  std::vector<TDBIndexColumn> Columns;
  std::string Using;
  std::string Comment;
  bool sameDefinition(const TDBIndex& other) const;
  // The index starts with these columns, so a foreign key over them can use it.
  bool leadsWith(const std::vector<std::string>& columns) const;
};

struct TDBForeignKey {
  std::string Name;
  std::vector<std::string> Columns;
  std::string RefTable;
  std::vector<std::string> RefColumns;
  std::string OnDelete;  // empty for the default (RESTRICT)
  std::string OnUpdate;
  // The name the server gives a key written without one; it matches on the definition alone.
  bool NameImplied = false;
  bool sameDefinition(const TDBForeignKey& other) const;
  bool named() const { return !Name.empty() && !NameImplied; }
};

struct TDBCheck {
  std::string Name;
  std::string Expression;
  bool NameImplied = false;  // as for foreign keys
  bool named() const { return !Name.empty() && !NameImplied; }
};

struct TDBTable {
  std::string Name;
  std::vector<TDBColumn> Columns;
  std::vector<TDBIndex> Indexes;  // primary and unique keys too
  std::vector<TDBForeignKey> ForeignKeys;
  std::vector<TDBCheck> Checks;
  std::string Engine;
  std::string RowFormat;
  std::string Charset;
  std::string Collation;
  std::string PackKeys;
  std::string Comment;
  std::string Partitioning;
  bool SystemVersioning = false;
  bool Sequence = false;  // the table form of a sequence, which the reader leaves out

  const TDBColumn* column(std::string_view name) const;
  const TDBIndex* primaryKey() const;
};

struct TDBView {
  std::string Name;
  std::string Algorithm;  // empty for UNDEFINED
  std::string Security;   // empty for DEFINER
  std::string CheckOption;
  std::string Columns;     // the optional column list, without parentheses
  std::string Definition;  // the SELECT as written
  std::string Compared;    // the SELECT normalised for comparison
};

// A procedure, function, trigger, event or sequence: compared on its normalised text, created from
// its own.
struct TDBCode {
  std::string Name;
  std::string Table;       // triggers only
  std::string CreateText;  // without DEFINER
  std::string Compared;
};

struct TDBStructure {
  std::string Database;
  std::vector<TDBTable> Tables;
  std::vector<TDBView> Views;
  std::vector<TDBCode> Procedures;
  std::vector<TDBCode> Functions;
  std::vector<TDBCode> Triggers;
  std::vector<TDBCode> Events;
  std::vector<TDBCode> Sequences;

  void Clear() { *this = TDBStructure(); }
};

// Identifier equality: columns, indexes and constraints always ignore case, as the server does.
bool SameName(std::string_view a, std::string_view b, bool caseSensitive);

template <class T>
T* FindByName(std::vector<T>& items, std::string_view name, bool caseSensitive) {
  for (auto& item : items)
    if (SameName(item.Name, name, caseSensitive)) return &item;
  return nullptr;
}

template <class T>
const T* FindByName(const std::vector<T>& items, std::string_view name, bool caseSensitive) {
  for (const auto& item : items)
    if (SameName(item.Name, name, caseSensitive)) return &item;
  return nullptr;
}

// Removes the object of that name; false when there was none.
template <class T>
bool RemoveByName(std::vector<T>& items, std::string_view name, bool caseSensitive) {
  for (auto it = items.begin(); it != items.end(); ++it)
    if (SameName(it->Name, name, caseSensitive)) {
      items.erase(it);
      return true;
    }
  return false;
}

}  // namespace lomarin
