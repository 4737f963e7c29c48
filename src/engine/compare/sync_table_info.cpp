#include "engine/compare/sync_table_info.h"

#include <algorithm>
#include <cctype>

#include "engine/connect/my_query.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

bool startsWithAny(const std::string& type, std::initializer_list<const char*> prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(), [&](const char* p) { return type.starts_with(p); });
}

}  // namespace

const TSyncColumn* TSyncTableInfo::column(const std::string& name) const {
  for (const TSyncColumn& c : Columns)
    if (lower(c.Name) == lower(name)) return &c;
  return nullptr;
}

void ClassifyColumn(TSyncColumn& c) {
  const std::string& t = c.Type;
  c.IsBlob = t.find("blob") != std::string::npos || t.find("text") != std::string::npos;
  if (startsWithAny(t, {"tinyint", "smallint", "mediumint", "int", "bigint", "decimal", "numeric", "year"})) {
    c.ValueKind = TSyncValueKind::Number;
    c.OrderKind = TKeyOrderKind::Number;
  } else if (t.starts_with("float")) {
    c.ValueKind = TSyncValueKind::Float;
    c.OrderKind = TKeyOrderKind::Real;
  } else if (startsWithAny(t, {"double", "real"})) {
    c.ValueKind = TSyncValueKind::Double;
    c.OrderKind = TKeyOrderKind::Real;
  } else if (t.starts_with("time") && !t.starts_with("timestamp")) {
    c.ValueKind = TSyncValueKind::Temporal;
    c.OrderKind = TKeyOrderKind::Time;
  } else if (startsWithAny(t, {"date", "timestamp"})) {
    c.ValueKind = TSyncValueKind::Temporal;
    c.OrderKind = TKeyOrderKind::Bytes;
  } else if (t.starts_with("bit")) {
    c.ValueKind = TSyncValueKind::Bit;
    c.OrderKind = TKeyOrderKind::Bytes;
  } else if (startsWithAny(t, {"enum", "set"})) {
    // The server orders these by their index, which the select reads as `column`+0.
    c.ValueKind = TSyncValueKind::Text;
    c.OrderKind = TKeyOrderKind::Number;
  } else if (!c.Collation.empty()) {
    c.ValueKind = TSyncValueKind::Text;
    c.OrderKind = TKeyOrderKind::Weight;
  } else if (startsWithAny(t, {"binary", "varbinary", "tinyblob", "blob", "mediumblob", "longblob",
                               "geometry", "point", "linestring", "polygon", "multi"})) {
    c.ValueKind = TSyncValueKind::Binary;
    c.OrderKind = TKeyOrderKind::Bytes;
  } else {
    c.ValueKind = TSyncValueKind::Text;
    c.OrderKind = TKeyOrderKind::Bytes;
  }
}

std::optional<std::string> FindTable(TMyConnection& connection, const std::string& table,
                                     bool caseSensitive) {
  TMyQuery query(connection);
  query.SQL = "SHOW TABLES";
  query.Open();
  std::optional<std::string> found;
  while (query.Next()) {
    const std::string name(query.Value(0));
    if (name == table) return name;
    if (!caseSensitive && !found && lower(name) == lower(table)) found = name;
  }
  return found;
}

TSyncTableInfo ReadTableInfo(TMyConnection& connection, const std::string& table) {
  TSyncTableInfo info;
  info.Name = table;
  TMyQuery columns(connection);
  columns.SQL = "SHOW FULL COLUMNS FROM " + ScriptName(table, true);
  columns.Open();
  const int collation = columns.FieldIndex("Collation");
  const int extra = columns.FieldIndex("Extra");
  while (columns.Next()) {
    TSyncColumn c;
    c.Name = columns.Value(0);
    c.Type = lower(std::string(columns.Value(1)));
    if (!columns.IsNull(collation)) c.Collation = columns.Value(collation);
    const std::string extras = lower(std::string(columns.Value(extra)));
    c.Generated = extras.find("generated") != std::string::npos;
    c.Invisible = extras.find("invisible") != std::string::npos;
    ClassifyColumn(c);
    info.Columns.push_back(std::move(c));
  }
  TMyQuery keys(connection);
  keys.SQL = "SHOW KEYS FROM " + ScriptName(table, true);
  keys.Open();
  const int keyName = keys.FieldIndex("Key_name");
  const int columnName = keys.FieldIndex("Column_name");
  // SHOW KEYS lists an index's columns in key order.
  while (keys.Next())
    if (keys.Value(keyName) == "PRIMARY") info.PrimaryKey.emplace_back(keys.Value(columnName));
  return info;
}

std::string SpaceWeight(TMyConnection& connection, const std::string& collation) {
  const std::string name = lower(collation);
  if (name.find("nopad") != std::string::npos || name.find("_0900_") != std::string::npos) return {};
  const std::string charset = name.substr(0, name.find('_'));
  TMyQuery query(connection);
  query.SQL = "SELECT WEIGHT_STRING(CONVERT(' ' USING " + charset + ") COLLATE " + collation + ")";
  query.Open();
  query.Next();
  return std::string(query.Value(0));
}

}  // namespace lomarin
