#include "engine/dataview/row_writer.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <regex>
#include <stdexcept>

#include "engine/dataview/browse_sql.h"
#include "engine/dataview/field_kinds.h"

namespace lomarin::dataview {

namespace {

bool isNumberText(std::string_view text) {
  static const std::regex number(R"([+-]?(\d+(\.\d*)?|\.\d+)([eE][+-]?\d+)?)");
  return std::regex_match(text.begin(), text.end(), number);
}

std::string hexLiteral(std::string_view bytes) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string out = "X'";
  out.reserve(bytes.size() * 2 + 3);
  for (unsigned char c : bytes) {
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out + "'";
}

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
  });
}

}  // namespace

TBaseTableRef BaseTableOf(const std::vector<TMyField>& fields) {
  TBaseTableRef ref;
  for (const TMyField& field : fields) {
    if (field.OrgTable.empty()) continue;
    if (ref.table.empty()) {
      ref.database = field.Database;
      ref.table = field.OrgTable;
    } else if (field.OrgTable != ref.table || field.Database != ref.database) {
      return {{}, {}, "the result joins several tables"};
    }
  }
  if (ref.table.empty()) ref.reason = "the result is not read from a table";
  return ref;
}

TRowWriter::TRowWriter(std::vector<TMyField> fields, std::string readOnlyReason)
    : fields_(std::move(fields)),
      readOnlyReason_(std::move(readOnlyReason)),
      writable_(fields_.size(), false) {}

TRowWriter::TRowWriter(std::vector<TMyField> fields, const TBaseTableInfo& table, Escaper escape)
    : fields_(std::move(fields)),
      database_(table.database),
      table_(table.table),
      writable_(fields_.size(), false),
      escape_(std::move(escape)) {
  auto fieldOf = [&](std::string_view column) -> std::optional<size_t> {
    for (size_t i = 0; i < fields_.size(); ++i)
      if (fields_[i].OrgTable == table_ && sameName(fields_[i].OrgName, column)) return i;
    return std::nullopt;
  };
  auto columnInfo = [&](std::string_view column) -> const TBaseTableInfo::Column* {
    for (const auto& c : table.columns)
      if (sameName(c.name, column)) return &c;
    return nullptr;
  };
  for (size_t i = 0; i < fields_.size(); ++i) {
    const TBaseTableInfo::Column* info =
        fields_[i].OrgTable == table_ ? columnInfo(fields_[i].OrgName) : nullptr;
    writable_[i] = info && !info->generated;
  }
  for (const TBaseTableInfo::Key& key : table.uniqueKeys) {
    const bool usable = std::all_of(key.columns.begin(), key.columns.end(), [&](const std::string& c) {
      const TBaseTableInfo::Column* info = columnInfo(c);
      return fieldOf(c) && (key.primary || (info && info->notNull));
    });
    if (!usable || key.columns.empty()) continue;
    for (const std::string& c : key.columns) keyColumns_.push_back(*fieldOf(c));
    return;
  }
  readOnlyReason_ = "Read-only: " + BackQuote(table_) +
                    " has no primary key or unique key over NOT NULL columns in this result";
}

bool TRowWriter::Writable(size_t column) const {
  return Editable() && column < writable_.size() && writable_[column];
}

void TRowWriter::requireEditable() const {
  if (!Editable()) throw std::logic_error(readOnlyReason_);
}

std::string TRowWriter::qualifiedTable() const { return BackQuote(database_) + "." + BackQuote(table_); }

std::string SqlLiteral(const TMyField& field, const TCellValue& value,
                       const std::function<std::string(std::string_view)>& escape) {
  if (value.null) return "NULL";
  if (IsBinaryField(field)) return hexLiteral(value.bytes);
  if (IsNumberField(field)) {
    if (!isNumberText(value.bytes))
      throw std::invalid_argument("'" + value.bytes + "' is not a valid number for column " +
                                  BackQuote(field.Name));
    return value.bytes;
  }
  return "'" + escape(value.bytes) + "'";
}

std::string TRowWriter::whereKey(const TRecord& before) const {
  std::string out = " WHERE ";
  for (size_t i = 0; i < keyColumns_.size(); ++i) {
    const size_t column = keyColumns_[i];
    if (before.at(column).null)
      throw std::invalid_argument("The key column " + BackQuote(fields_[column].OrgName) + " is NULL");
    if (i) out += " AND ";
    out += BackQuote(fields_[column].OrgName) + " = " + Literal(column, before[column]);
  }
  return out;
}

std::string TRowWriter::UpdateSQL(const TRecord& before, const TRecord& after) const {
  requireEditable();
  std::string set;
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (!writable_[i] || before.at(i) == after.at(i)) continue;
    set += (set.empty() ? "" : ", ") + BackQuote(fields_[i].OrgName) + " = " + Literal(i, after[i]);
  }
  if (set.empty()) return {};
  return "UPDATE " + qualifiedTable() + " SET " + set + whereKey(before);
}

std::string TRowWriter::InsertSQL(const TRecord& values, const std::vector<bool>& given) const {
  requireEditable();
  std::string names;
  std::string literals;
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (!writable_[i] || !given.at(i)) continue;
    const char* separator = names.empty() ? "" : ", ";
    names += separator + BackQuote(fields_[i].OrgName);
    literals += separator + Literal(i, values.at(i));
  }
  return "INSERT INTO " + qualifiedTable() + " (" + names + ") VALUES (" + literals + ")";
}

std::string TRowWriter::DeleteSQL(const TRecord& before) const {
  requireEditable();
  return "DELETE FROM " + qualifiedTable() + whereKey(before);
}

std::string TRowWriter::CountSQL(const TRecord& before) const {
  requireEditable();
  return "SELECT COUNT(*) FROM " + qualifiedTable() + whereKey(before);
}

}  // namespace lomarin::dataview
