#include "engine/sqleditor/vtd_table.h"

#include <sqlite3.h>
#include <unistd.h>

#include <memory>

namespace lomarin {

namespace {

using Db = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Stmt = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

std::string quotedName(std::string_view name) {
  std::string out = "\"";
  for (char c : name) out += c == '"' ? std::string("\"\"") : std::string(1, c);
  return out + "\"";
}

// Cuts at a character boundary of UTF-8 text.
void cutTo(std::string& text, size_t characters) {
  size_t seen = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) continue;
    if (seen++ == characters) {
      text.resize(i);
      return;
    }
  }
}

Stmt prepare(sqlite3* db, const std::string& sql) {
  sqlite3_stmt* raw = nullptr;
  const int rc = sqlite3_prepare_v2(db, sql.c_str(), -1, &raw, nullptr);
  Stmt stmt(raw, &sqlite3_finalize);
  if (rc != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(db));
  return stmt;
}

void exec(sqlite3* db, const std::string& sql) {
  char* message = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    std::string text = message ? message : "SQLite error";
    sqlite3_free(message);
    throw std::runtime_error(text);
  }
}

std::string columnText(sqlite3_stmt* stmt, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt, column));
  return text ? std::string(text, static_cast<size_t>(sqlite3_column_bytes(stmt, column))) : std::string();
}

std::string columnList(const std::vector<TVtdField>& fields) {
  std::string list;
  for (size_t i = 0; i < fields.size(); ++i) list += (i ? ", " : "") + quotedName(fields[i].Name);
  return list;
}

}  // namespace

std::string_view TrimText(std::string_view text) {
  while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ') text.remove_prefix(1);
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.remove_suffix(1);
  return text;
}

TVirtualTable::TVirtualTable(std::vector<TVtdField> fields) : fields_(std::move(fields)) {}

void TVirtualTable::Append(Record record) {
  record.resize(fields_.size());
  for (size_t i = 0; i < fields_.size(); ++i)
    if (fields_[i].Size > 0) cutTo(record[i], static_cast<size_t>(fields_[i].Size));
  records_.push_back(std::move(record));
}

void TVirtualTable::Delete(size_t index) {
  if (index < records_.size()) records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(index));
}

void TVirtualTable::LoadFromFile(const std::filesystem::path& file) {
  sqlite3* raw = nullptr;
  const int rc = sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
  Db db(raw, &sqlite3_close);
  if (rc != SQLITE_OK) throw VtdFormatError();
  try {
    auto described = prepare(db.get(), "SELECT name, type, size FROM vtd_fields ORDER BY position");
    size_t count = 0;
    while (sqlite3_step(described.get()) == SQLITE_ROW) {
      if (count >= fields_.size()) throw VtdFormatError();
      const TVtdField& want = fields_[count++];
      if (columnText(described.get(), 0) != want.Name || columnText(described.get(), 1) != want.Type ||
          sqlite3_column_int(described.get(), 2) != want.Size)
        throw VtdFormatError();
    }
    if (count != fields_.size()) throw VtdFormatError();
    auto rows = prepare(db.get(), "SELECT " + columnList(fields_) + " FROM vtd_records ORDER BY recno");
    std::vector<Record> loaded;
    int step;
    while ((step = sqlite3_step(rows.get())) == SQLITE_ROW) {
      Record record;
      for (size_t i = 0; i < fields_.size(); ++i) record.push_back(columnText(rows.get(), static_cast<int>(i)));
      loaded.push_back(std::move(record));
    }
    if (step != SQLITE_DONE) throw VtdFormatError();
    records_ = std::move(loaded);
  } catch (const std::runtime_error&) {
    throw VtdFormatError();
  }
}

void TVirtualTable::SaveToFile(const std::filesystem::path& file) const {
  const std::filesystem::path temp = file.string() + ".tmp" + std::to_string(getpid());
  std::filesystem::remove(temp);
  try {
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open_v2(temp.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    Db db(raw, &sqlite3_close);
    if (rc != SQLITE_OK) throw std::runtime_error("cannot write " + file.string());
    exec(db.get(), "PRAGMA journal_mode=OFF");
    exec(db.get(), "BEGIN");
    exec(db.get(), "CREATE TABLE vtd_fields (position INTEGER PRIMARY KEY, name TEXT, type TEXT, size INTEGER)");
    std::string columns = "recno INTEGER PRIMARY KEY";
    for (const auto& f : fields_) columns += ", " + quotedName(f.Name) + (f.Size > 0 ? " VARCHAR(" + std::to_string(f.Size) + ")" : " TEXT");
    exec(db.get(), "CREATE TABLE vtd_records (" + columns + ")");
    auto field = prepare(db.get(), "INSERT INTO vtd_fields VALUES (?, ?, ?, ?)");
    for (size_t i = 0; i < fields_.size(); ++i) {
      sqlite3_bind_int64(field.get(), 1, static_cast<sqlite3_int64>(i));
      sqlite3_bind_text(field.get(), 2, fields_[i].Name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(field.get(), 3, fields_[i].Type.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(field.get(), 4, fields_[i].Size);
      if (sqlite3_step(field.get()) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db.get()));
      sqlite3_reset(field.get());
    }
    std::string placeholders = "?";
    for (size_t i = 0; i < fields_.size(); ++i) placeholders += ", ?";
    auto row = prepare(db.get(), "INSERT INTO vtd_records VALUES (" + placeholders + ")");
    for (size_t r = 0; r < records_.size(); ++r) {
      sqlite3_bind_int64(row.get(), 1, static_cast<sqlite3_int64>(r));
      for (size_t i = 0; i < fields_.size(); ++i)
        sqlite3_bind_text(row.get(), static_cast<int>(i + 2), records_[r][i].data(),
                          static_cast<int>(records_[r][i].size()), SQLITE_TRANSIENT);
      if (sqlite3_step(row.get()) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db.get()));
      sqlite3_reset(row.get());
    }
    exec(db.get(), "COMMIT");
  } catch (...) {
    std::filesystem::remove(temp);
    throw;
  }
  std::filesystem::rename(temp, file);
}

}  // namespace lomarin
