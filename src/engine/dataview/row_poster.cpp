#include "engine/dataview/row_poster.h"

#include <algorithm>
#include <cctype>

#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/browse_sql.h"

namespace lomarin::dataview {

namespace {

std::string upper(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::toupper(c); });
  return out;
}

uint64_t execute(TMyConnection& session, const std::string& sql, uint64_t* insertId = nullptr) {
  TMyQuery query(session);
  query.SQL = sql;
  query.Execute();
  if (insertId) *insertId = query.LastInsertId();
  return query.RowsAffected();
}

void requireOne(uint64_t affected, const char* verb) {
  if (affected != 1)
    throw RowCountError(std::string(verb) + " affected " + std::to_string(affected) + " rows instead of one");
}

}  // namespace

TBaseTableInfo LoadBaseTableInfo(TMyConnection& session, const std::string& database,
                                 const std::string& table) {
  TBaseTableInfo info{database, table, {}, {}};
  const std::string name = BackQuote(database) + "." + BackQuote(table);
  TMyQuery query(session);
  query.SQL = "SHOW COLUMNS FROM " + name;
  query.Open();
  const int field = query.FieldIndex("Field"), null = query.FieldIndex("Null"),
            extra = query.FieldIndex("Extra");
  while (query.Next()) {
    const std::string extraText = upper(query.Value(extra));
    info.columns.push_back({std::string(query.Value(field)), query.Value(null) == "NO",
                            extraText.find("GENERATED") != std::string::npos ||
                                extraText.find("VIRTUAL") != std::string::npos ||
                                extraText.find("PERSISTENT") != std::string::npos});
  }
  query.Close();
  query.SQL = "SHOW KEYS FROM " + name;
  query.Open();
  const int nonUnique = query.FieldIndex("Non_unique"), keyName = query.FieldIndex("Key_name"),
            column = query.FieldIndex("Column_name");
  while (query.Next()) {
    if (query.Value(nonUnique) != "0") continue;
    const std::string key(query.Value(keyName));
    if (info.uniqueKeys.empty() || info.uniqueKeys.back().name != key)
      info.uniqueKeys.push_back({key, key == "PRIMARY", {}});
    info.uniqueKeys.back().columns.emplace_back(query.Value(column));
  }
  std::stable_partition(info.uniqueKeys.begin(), info.uniqueKeys.end(),
                        [](const TBaseTableInfo::Key& key) { return key.primary; });
  return info;
}

TRowWriter RowWriterFor(TMyConnection& session, const std::vector<TMyField>& fields,
                        std::optional<TBaseTableInfo>* cache) {
  const TBaseTableRef base = BaseTableOf(fields);
  if (base.table.empty()) return TRowWriter(fields, "Read-only: " + base.reason);
  std::optional<TBaseTableInfo> local;
  std::optional<TBaseTableInfo>& info = cache ? *cache : local;
  if (!info || info->database != base.database || info->table != base.table) {
    try {
      info = LoadBaseTableInfo(session, base.database, base.table);
    } catch (const ServerError& error) {
      info.reset();
      return TRowWriter(fields, "Read-only: " + error.message());
    }
  }
  return TRowWriter(fields, *info,
                    [&session](std::string_view value) { return EscapeString(session, value); });
}

void TRowPoster::Update(const TRecord& before, const TRecord& after) {
  for (size_t alias = 0; alias < std::max<size_t>(writer_.AliasCount(), 1); ++alias) {
    const std::string sql = writer_.UpdateSQL(before, after, alias);
    if (sql.empty()) continue;
    const uint64_t affected = execute(session_, sql);
    // Without CLIENT_FOUND_ROWS a row set to what it held already counts as 0: ask whether it exists.
    if (affected == 0) {
      TMyQuery count(session_);
      count.SQL = writer_.CountSQL(before, alias);
      count.Open();
      count.Next();
      if (count.Value(0) == "1") continue;
    }
    requireOne(affected, "UPDATE");
  }
}

uint64_t TRowPoster::Insert(const TRecord& values, const std::vector<bool>& given) {
  uint64_t insertId = 0;
  requireOne(execute(session_, writer_.InsertSQL(values, given), &insertId), "INSERT");
  return insertId;
}

void TRowPoster::Delete(const TRecord& before) {
  requireOne(execute(session_, writer_.DeleteSQL(before)), "DELETE");
}

}  // namespace lomarin::dataview
