#include "engine/dataview/foreign_keys.h"

#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/limit_paging.h"

namespace lomarin::dataview {

namespace {

constexpr const char* kLoadSQL =
    "SELECT * \nFROM information_schema.KEY_COLUMN_USAGE \n WHERE TABLE_SCHEMA =:schema AND TABLE_NAME "
    "=:table AND "
    "\n CONSTRAINT_NAME <>'PRIMARY'\n AND REFERENCED_TABLE_NAME is not null";

void bindParameter(std::string& sql, std::string_view name, const std::string& literal) {
  sql.replace(sql.find(name), name.size(), literal);
}

}  // namespace

std::string TMyFKS::LoadSQL(TMyConnection& session, const std::string& schema, const std::string& table) {
  std::string sql = kLoadSQL;
  bindParameter(sql, ":schema", "'" + EscapeString(session, schema) + "'");
  bindParameter(sql, ":table", "'" + EscapeString(session, table) + "'");
  return sql;
}

void TMyFKS::Load(TMyConnection& session, const std::string& schema, const std::string& table) {
  TMyQuery query(session);
  query.SQL = LoadSQL(session, schema, table);
  query.Open();
  const int constraintSchema = query.FieldIndex("CONSTRAINT_SCHEMA");
  const int referencedSchema = query.FieldIndex("REFERENCED_TABLE_SCHEMA");
  const int referencedTable = query.FieldIndex("REFERENCED_TABLE_NAME");
  const int column = query.FieldIndex("COLUMN_NAME");
  const int referencedColumn = query.FieldIndex("REFERENCED_COLUMN_NAME");
  std::vector<TMyFK> items;
  while (query.Next()) {
    items.push_back({std::string(query.Value(constraintSchema)), std::string(query.Value(referencedSchema)),
                     std::string(query.Value(referencedTable)), std::string(query.Value(column)),
                     std::string(query.Value(referencedColumn))});
  }
  items_ = std::move(items);
}

std::string TMyFKS::ReferencedValuesSQL(const TMyFK& key) {
  return "select " + key.REFERENCED_COLUMN_NAME + " from " + key.REFERENCED_TABLE_SCHEMA + "." +
         key.REFERENCED_TABLE_NAME;
}

std::string TMyFKS::ReferencedValuesPageSQL(const TMyFK& key, int64_t start, int64_t size) {
  return ReferencedValuesSQL(key) + "\n" + LimitClause(start, size);
}

std::vector<std::string> TMyFKS::ReadReferencedValues(TMyConnection& session, const TMyFK& key, int64_t start,
                                                      int64_t size) {
  TMyQuery query(session);
  query.SQL = ReferencedValuesPageSQL(key, start, size);
  query.Open();
  std::vector<std::string> values;
  while (query.Next())
    if (!query.IsNull(0)) values.emplace_back(query.Value(0));
  return values;
}

}  // namespace lomarin::dataview
