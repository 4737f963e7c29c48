#include "engine/dataview/table_window_sql.h"

#include "engine/connect/escape.h"
#include "engine/dataview/browse_sql.h"

namespace lomarin::dataview {

namespace {

std::string literal(TMyConnection& session, const std::string& value) {
  return "'" + EscapeString(session, value) + "'";
}

}  // namespace

std::string ColumnsTabSQL(const std::string& name) { return "DESC " + name; }

std::string TriggersTabSQL(TMyConnection& session, const std::string& database, const std::string& table) {
  return "SHOW TRIGGERS FROM " + BackQuote(database) + " WHERE `Table` = " + literal(session, table);
}

std::string PartitionsTabSQL(TMyConnection& session, const std::string& database, const std::string& table) {
  return "SELECT PARTITION_NAME, SUBPARTITION_NAME, PARTITION_METHOD, PARTITION_EXPRESSION, "
         "PARTITION_DESCRIPTION, TABLE_ROWS\nFROM information_schema.PARTITIONS\nWHERE TABLE_SCHEMA = " +
         literal(session, database) + " AND TABLE_NAME = " + literal(session, table) +
         " AND PARTITION_NAME IS NOT NULL\nORDER BY PARTITION_ORDINAL_POSITION, "
         "SUBPARTITION_ORDINAL_POSITION";
}

std::string ScriptTabSQL(const std::string& name, bool isView) {
  return std::string(isView ? "SHOW CREATE VIEW " : "SHOW CREATE TABLE ") + name;
}

}  // namespace lomarin::dataview
