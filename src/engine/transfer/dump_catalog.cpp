#include "engine/transfer/dump_catalog.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "engine/connect/my_query.h"
#include "engine/transfer/my_dump.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

bool contains(const std::string& text, std::string_view part) { return text.find(part) != std::string::npos; }

}  // namespace

TDumpCatalog::TDumpCatalog(TMyConnection& connection, std::string database, bool quoteNames)
    : connection_(connection), database_(std::move(database)), quoteNames_(quoteNames) {}

std::string TDumpCatalog::name(const std::string& object) const { return ScriptName(object, quoteNames_); }

std::string TDumpCatalog::qualified(const std::string& object) const {
  return ScriptName(database_, quoteNames_) + "." + name(object);
}

std::vector<std::vector<std::string>> TDumpCatalog::rows(const std::string& sql,
                                                         const std::vector<std::string>& columns) {
  TMyQuery query(connection_);
  query.SQL = sql;
  query.Open();
  std::vector<int> index;
  for (const auto& column : columns) {
    index.push_back(query.FieldIndex(column));
    if (index.back() < 0) throw DumpError("Column " + column + " missing from the result of " + sql);
  }
  if (columns.empty()) index.push_back(0);
  std::vector<std::vector<std::string>> result;
  while (query.Next()) {
    auto& row = result.emplace_back();
    for (int i : index) row.emplace_back(query.Value(static_cast<size_t>(i)));
  }
  return result;
}

TDumpCatalog::Code TDumpCatalog::code(const std::string& sql, const std::string& textColumn, bool timeZone) {
  TMyQuery query(connection_);
  query.SQL = sql;
  query.Open();
  const int text = query.FieldIndex(textColumn);
  if (text < 0 || !query.Next() || query.IsNull(static_cast<size_t>(text)))
    throw DumpError("No definition returned by " + sql);
  auto value = [&](const char* column) {
    const int i = query.FieldIndex(column);
    return i < 0 || query.IsNull(static_cast<size_t>(i)) ? std::string()
                                                         : std::string(query.Value(static_cast<size_t>(i)));
  };
  return {std::string(query.Value(static_cast<size_t>(text))),
          {value("sql_mode"), value("character_set_client"), value("collation_connection"),
           timeZone ? value("time_zone") : std::string()}};
}

std::string TDumpCatalog::cell(const std::string& sql, size_t column) {
  TMyQuery query(connection_);
  query.SQL = sql;
  query.Open();
  if (!query.Next() || column >= query.Fields().size() || query.IsNull(column))
    throw DumpError("No definition returned by " + sql);
  return std::string(query.Value(column));
}

std::vector<TDumpCatalog::Table> TDumpCatalog::tables() {
  TMyQuery query(connection_);
  query.SQL = "SHOW TABLE STATUS FROM " + ScriptName(database_, quoteNames_);
  query.Open();
  const int nameColumn = query.FieldIndex("Name");
  const int engineColumn = query.FieldIndex("Engine");
  std::vector<Table> result;
  while (query.Next())
    result.push_back({std::string(query.Value(static_cast<size_t>(nameColumn))),
                      query.IsNull(static_cast<size_t>(engineColumn))});
  return result;
}

std::string TDumpCatalog::createTable(const std::string& table) {
  return cell("SHOW CREATE TABLE " + qualified(table), 1);
}

std::string TDumpCatalog::databaseOptions() {
  const std::string create = cell("SHOW CREATE DATABASE " + ScriptName(database_, true), 1);
  const size_t options = create.find("/*!");
  return options == std::string::npos ? std::string() : create.substr(options);
}

std::vector<TDumpCatalog::Column> TDumpCatalog::columns(const std::string& table) {
  std::vector<Column> result;
  for (auto& row : rows("SHOW COLUMNS FROM " + qualified(table), {"Field", "Extra", "Type"})) {
    const std::string extra = lower(row[1]);
    // MariaDB says "VIRTUAL GENERATED" / "STORED GENERATED" (older: "PERSISTENT"), MySQL adds GENERATED too.
    const bool generated = contains(extra, "generated") || contains(extra, "persistent") ||
                           extra == "virtual" || contains(extra, "virtual ");
    result.push_back({std::move(row[0]), generated, contains(extra, "invisible"), lower(row[2]).starts_with("float")});
  }
  return result;
}

uint64_t TDumpCatalog::rowCount(const std::string& table) {
  const std::string text = cell("SELECT COUNT(*) FROM " + qualified(table), 0);
  uint64_t count = 0;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return count;
}

std::vector<std::string> TDumpCatalog::routineNames() {
  std::vector<std::string> names;
  const std::string condition = " where lower(db) = lower(" + QuotedString(connection_, database_) + ")";
  for (const char* kind : {"PROCEDURE", "FUNCTION"}) {
    for (auto& row : rows(std::string("SHOW ") + kind + " STATUS " + condition, {"Name"}))
      if (std::find(names.begin(), names.end(), row[0]) == names.end()) names.push_back(std::move(row[0]));
  }
  return names;
}

std::vector<std::string> TDumpCatalog::routineKinds(const std::string& routine) {
  const std::string name = QuotedString(connection_, routine);
  const std::string db = QuotedString(connection_, lower(database_));
  // MySQL 8 dropped mysql.proc; MariaDB reports major version 5 through its handshake prefix.
  const std::string sql =
      connection_.ServerMajorVersion() >= 8
          ? "SELECT ROUTINE_TYPE FROM information_schema.ROUTINES WHERE (ROUTINE_NAME = " + name +
                ") AND (LOWER(ROUTINE_SCHEMA) = " + db + ")"
          : "SELECT type FROM mysql.proc WHERE (name = " + name + ") AND (LOWER(db) = " + db + ")";
  std::vector<std::string> kinds;
  for (auto& row : rows(sql, {})) kinds.push_back(std::move(row[0]));
  return kinds;
}

TDumpCatalog::Code TDumpCatalog::createRoutine(const std::string& kind, const std::string& routine) {
  return code("SHOW CREATE " + kind + " " + qualified(routine),
              kind == "FUNCTION" ? "Create Function" : "Create Procedure", false);
}

std::vector<std::string> TDumpCatalog::triggerNames() {
  std::vector<std::string> names;
  for (auto& row : rows("SELECT TRIGGER_NAME FROM information_schema.TRIGGERS WHERE TRIGGER_SCHEMA = " +
                            QuotedString(connection_, database_) +
                            " ORDER BY EVENT_OBJECT_TABLE, ACTION_TIMING, EVENT_MANIPULATION, ACTION_ORDER",
                        {}))
    names.push_back(std::move(row[0]));
  return names;
}

TDumpCatalog::Code TDumpCatalog::createTrigger(const std::string& trigger) {
  return code("SHOW CREATE TRIGGER " + qualified(trigger), "SQL Original Statement", false);
}

std::vector<std::string> TDumpCatalog::eventNames() {
  std::vector<std::string> names;
  for (auto& row : rows("SHOW EVENTS FROM " + ScriptName(database_, quoteNames_), {"Name"}))
    names.push_back(std::move(row[0]));
  return names;
}

TDumpCatalog::Code TDumpCatalog::createEvent(const std::string& event) {
  return code("SHOW CREATE EVENT " + qualified(event), "Create Event", true);
}

std::string ListedName(const std::string& name) {
  const bool plain = name.find_first_of(",`") == std::string::npos && !name.starts_with(' ');
  return plain ? name : ScriptName(name, true);
}

std::vector<std::string> SplitNames(const std::string& list, const std::string& database) {
  std::vector<std::string> items(1);
  bool quoted = false;
  for (char c : list) {
    // A doubled back-quote inside a quoted name toggles twice.
    if (c == '`') quoted = !quoted;
    if (c == ',' && !quoted)
      items.emplace_back();
    else
      items.back() += c;
  }
  const std::string suffix = "." + database;
  std::vector<std::string> names;
  for (const auto& item : items) {
    std::string name = trimmed(item);
    if (!database.empty() && name.size() > suffix.size() && name.ends_with(suffix))
      name.resize(name.size() - suffix.size());
    if (name.size() >= 2 && name.front() == '`' && name.back() == '`') {
      std::string inner;
      for (size_t i = 1; i + 1 < name.size(); ++i) {
        inner += name[i];
        if (name[i] == '`') ++i;
      }
      name = std::move(inner);
    }
    if (!name.empty()) names.push_back(std::move(name));
  }
  return names;
}

std::vector<size_t> ViewOrder(const std::vector<std::string>& names,
                              const std::vector<std::string>& createTexts) {
  const size_t n = names.size();
  // uses[i][j]: view i reads view j. The server writes every table reference back-quoted.
  std::vector<std::vector<bool>> uses(n, std::vector<bool>(n, false));
  for (size_t i = 0; i < n; ++i)
    for (size_t j = 0; j < n; ++j)
      uses[i][j] = i != j && createTexts[i].find(ScriptName(names[j], true)) != std::string::npos;
  std::vector<size_t> order;
  std::vector<bool> placed(n, false);
  while (order.size() < n) {
    bool progress = false;
    for (size_t i = 0; i < n; ++i) {
      if (placed[i]) continue;
      bool ready = true;
      for (size_t j = 0; j < n && ready; ++j) ready = !uses[i][j] || placed[j];
      if (!ready) continue;
      placed[i] = true;
      order.push_back(i);
      progress = true;
    }
    if (progress) continue;
    // A false match (a column named like a view) can look like a cycle: keep the listed order.
    for (size_t i = 0; i < n; ++i)
      if (!placed[i]) {
        placed[i] = true;
        order.push_back(i);
        break;
      }
  }
  return order;
}

}  // namespace lomarin
