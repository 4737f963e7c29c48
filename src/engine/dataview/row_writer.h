#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/connect/my_field.h"

namespace lomarin::dataview {

// One cell as the grid holds it: raw bytes, or NULL.
struct TCellValue {
  bool null = true;
  std::string bytes;
  bool operator==(const TCellValue&) const = default;
};
using TRecord = std::vector<TCellValue>;

// What the server says about the table a result was read from.
struct TBaseTableInfo {
  struct Column {
    std::string name;
    bool notNull = false;
    bool generated = false;
  };
  struct Key {
    std::string name;
    bool primary = false;
    std::vector<std::string> columns;
  };
  std::string database;
  std::string table;
  std::vector<Column> columns;
  std::vector<Key> uniqueKeys;  // in the server's order
};

// The single table every column of a result comes from. Empty table and a reason otherwise.
struct TBaseTableRef {
  std::string database;
  std::string table;
  std::string reason;
};
TBaseTableRef BaseTableOf(const std::vector<TMyField>& fields);

// The value as an SQL literal for the column: NULL, X'..' for binary data, the digits as they
// stand for numbers (never through a floating-point type), else a quoted string escaped by
// `escape`. Throws std::invalid_argument for a number column given text that is no number.
std::string SqlLiteral(const TMyField& field, const TCellValue& value,
                       const std::function<std::string(std::string_view)>& escape);

// Builds the statements that write grid rows back to their table, identifying a row by its
// primary key, else by the first unique key over NOT NULL columns the result holds all of. A
// result without one is read-only: an UPDATE that could touch several rows loses data. When the
// table appears under several aliases (a self-join), each alias is a row of its own: a column is
// written only through the key columns of its own alias, and rows are neither added nor deleted.
class TRowWriter {
 public:
  using Escaper = std::function<std::string(std::string_view)>;

  // Read-only, with the reason shown to the user.
  TRowWriter(std::vector<TMyField> fields, std::string readOnlyReason);
  TRowWriter(std::vector<TMyField> fields, const TBaseTableInfo& table, Escaper escape);

  // Some column can be written.
  bool Editable() const { return editable_; }
  // Why the result, or some of its table's columns, cannot be written; empty when all can.
  const std::string& ReadOnlyReason() const { return readOnlyReason_; }
  // Why rows cannot be added or deleted; empty when they can.
  const std::string& RowsReadOnlyReason() const { return rowsReason_; }
  // The column maps to a stored (not generated) column of the table, under an alias whose key
  // columns the result holds.
  bool Writable(size_t column) const;
  // Why the column cannot be written; empty when it can.
  std::string ColumnReadOnlyReason(size_t column) const;
  // The aliases the table is read under, in the order of the result's columns.
  size_t AliasCount() const { return aliases_.size(); }

  // Sets only the writable columns of the alias whose value changed; empty when none did.
  std::string UpdateSQL(const TRecord& before, const TRecord& after, size_t alias = 0) const;
  // Writes the writable columns marked in `given`; the table's defaults fill the rest.
  std::string InsertSQL(const TRecord& values, const std::vector<bool>& given) const;
  std::string DeleteSQL(const TRecord& before) const;
  // Counts the rows the key of the alias in `before` matches.
  std::string CountSQL(const TRecord& before, size_t alias = 0) const;

  std::string Literal(size_t column, const TCellValue& value) const {
    return SqlLiteral(fields_.at(column), value, escape_);
  }

 private:
  struct Alias {
    std::string name;
    std::vector<size_t> keyColumns;  // empty: the result lacks a key of this alias
  };
  std::string qualifiedTable() const;
  std::string whereKey(const TRecord& before, size_t alias) const;
  void requireRows() const;
  void chooseKeys(const TBaseTableInfo& table);

  std::vector<TMyField> fields_;
  bool editable_ = false;
  std::string readOnlyReason_;
  std::string rowsReason_;
  std::string database_;
  std::string table_;
  std::vector<bool> writable_;
  std::vector<int> aliasOf_;  // per column; -1 when it is no column of the table
  std::vector<Alias> aliases_;
  Escaper escape_;
};

}  // namespace lomarin::dataview
