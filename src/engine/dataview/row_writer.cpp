#include "engine/dataview/row_writer.h"

#include <algorithm>
#include <cctype>
#include <charconv>
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

// A FLOAT compared with a DOUBLE literal is compared as DOUBLE; the stored value widened, written
// with an exponent so that it is a DOUBLE literal, matches it where its shortest text may not.
std::string floatKeyLiteral(std::string_view text) {
  float value = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
  if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return std::string(text);
  char wide[32];
  return {
      wide,
      std::to_chars(wide, wide + sizeof wide, static_cast<double>(value), std::chars_format::scientific).ptr};
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
      rowsReason_(readOnlyReason_),
      writable_(fields_.size(), false),
      aliasOf_(fields_.size(), -1) {}

TRowWriter::TRowWriter(std::vector<TMyField> fields, const TBaseTableInfo& table, Escaper escape)
    : fields_(std::move(fields)),
      database_(table.database),
      table_(table.table),
      writable_(fields_.size(), false),
      aliasOf_(fields_.size(), -1),
      escape_(std::move(escape)) {
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (fields_[i].OrgTable != table_) continue;
    auto alias = std::find_if(aliases_.begin(), aliases_.end(),
                              [&](const Alias& a) { return a.name == fields_[i].Table; });
    if (alias == aliases_.end()) alias = aliases_.insert(aliases_.end(), Alias{fields_[i].Table, {}});
    aliasOf_[i] = static_cast<int>(alias - aliases_.begin());
  }
  chooseKeys(table);
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (aliasOf_[i] < 0 || aliases_[static_cast<size_t>(aliasOf_[i])].keyColumns.empty()) continue;
    const auto info = std::find_if(table.columns.begin(), table.columns.end(),
                                   [&](const auto& c) { return sameName(c.name, fields_[i].OrgName); });
    writable_[i] = info != table.columns.end() && !info->generated;
    editable_ = editable_ || writable_[i];
  }
  const bool anyKey =
      std::any_of(aliases_.begin(), aliases_.end(), [](const Alias& a) { return !a.keyColumns.empty(); });
  if (!anyKey) {
    readOnlyReason_ = "Read-only: " + BackQuote(table_) +
                      " has no primary key or unique key over NOT NULL columns in this result";
    rowsReason_ = readOnlyReason_;
    return;
  }
  for (size_t i = 0; i < fields_.size(); ++i)
    if (aliasOf_[i] >= 0 && aliases_[static_cast<size_t>(aliasOf_[i])].keyColumns.empty())
      readOnlyReason_ += (readOnlyReason_.empty() ? "" : "; ") + ColumnReadOnlyReason(i);
  if (aliases_.size() > 1)
    rowsReason_ = "Rows cannot be added or deleted: " + BackQuote(table_) + " appears under several aliases";
}

void TRowWriter::chooseKeys(const TBaseTableInfo& table) {
  auto notNull = [&](std::string_view column) {
    return std::any_of(table.columns.begin(), table.columns.end(),
                       [&](const auto& c) { return sameName(c.name, column) && c.notNull; });
  };
  for (size_t a = 0; a < aliases_.size(); ++a) {
    auto fieldOf = [&](std::string_view column) -> std::optional<size_t> {
      for (size_t i = 0; i < fields_.size(); ++i)
        if (aliasOf_[i] == static_cast<int>(a) && sameName(fields_[i].OrgName, column)) return i;
      return std::nullopt;
    };
    for (const TBaseTableInfo::Key& key : table.uniqueKeys) {
      const bool usable = !key.columns.empty() &&
                          std::all_of(key.columns.begin(), key.columns.end(), [&](const std::string& c) {
                            return fieldOf(c) && (key.primary || notNull(c));
                          });
      if (!usable) continue;
      for (const std::string& c : key.columns) aliases_[a].keyColumns.push_back(*fieldOf(c));
      break;
    }
  }
}

bool TRowWriter::Writable(size_t column) const { return column < writable_.size() && writable_[column]; }

std::string TRowWriter::ColumnReadOnlyReason(size_t column) const {
  if (Writable(column)) return {};
  if (!editable_) return readOnlyReason_;
  const TMyField& field = fields_.at(column);
  if (aliasOf_[column] < 0)
    return "Read-only: " + BackQuote(field.Name) + " is no column of " + BackQuote(table_);
  const Alias& alias = aliases_[static_cast<size_t>(aliasOf_[column])];
  if (alias.keyColumns.empty())
    return "Read-only: " + BackQuote(alias.name) + "." + BackQuote(field.Name) +
           ": the result holds no key of " + BackQuote(table_) + " under the alias " + BackQuote(alias.name);
  return "Read-only: " + BackQuote(field.Name) + " is a generated column";
}

void TRowWriter::requireRows() const {
  if (!rowsReason_.empty()) throw std::logic_error(rowsReason_);
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

std::string TRowWriter::whereKey(const TRecord& before, size_t alias) const {
  const std::vector<size_t>& keyColumns = aliases_.at(alias).keyColumns;
  if (keyColumns.empty()) throw std::logic_error(readOnlyReason_);
  std::string out = " WHERE ";
  for (size_t i = 0; i < keyColumns.size(); ++i) {
    const size_t column = keyColumns[i];
    if (before.at(column).null)
      throw std::invalid_argument("The key column " + BackQuote(fields_[column].OrgName) + " is NULL");
    if (i) out += " AND ";
    const std::string literal = Literal(column, before[column]);
    out += BackQuote(fields_[column].OrgName) + " = " +
           (fields_[column].Type == TMyFieldType::Float ? floatKeyLiteral(literal) : literal);
  }
  return out;
}

std::string TRowWriter::UpdateSQL(const TRecord& before, const TRecord& after, size_t alias) const {
  if (!editable_) throw std::logic_error(readOnlyReason_);
  std::string set;
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (!writable_[i] || aliasOf_[i] != static_cast<int>(alias) || before.at(i) == after.at(i)) continue;
    set += (set.empty() ? "" : ", ") + BackQuote(fields_[i].OrgName) + " = " + Literal(i, after[i]);
  }
  if (set.empty()) return {};
  return "UPDATE " + qualifiedTable() + " SET " + set + whereKey(before, alias);
}

std::string TRowWriter::InsertSQL(const TRecord& values, const std::vector<bool>& given) const {
  requireRows();
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
  requireRows();
  return "DELETE FROM " + qualifiedTable() + whereKey(before, 0);
}

std::string TRowWriter::CountSQL(const TRecord& before, size_t alias) const {
  if (!editable_) throw std::logic_error(readOnlyReason_);
  return "SELECT COUNT(*) FROM " + qualifiedTable() + whereKey(before, alias);
}

}  // namespace lomarin::dataview
