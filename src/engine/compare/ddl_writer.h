#pragma once

#include <string>
#include <string_view>

#include "engine/compare/db_structure.h"

namespace lomarin {

// DDL for MySQL from the structure of the source side; names always between back-quotes.
std::string QuotedName(std::string_view name);
// The column as it is in `table`: a character set or collation the table implies is left out.
std::string ColumnDefinition(const TDBColumn& column, const TDBTable& table);
// "PRIMARY KEY (…)", "UNIQUE KEY `u` (…)", "KEY `i` (…)", "FULLTEXT KEY `f` (…)".
std::string IndexDefinition(const TDBIndex& index);
std::string ForeignKeyDefinition(const TDBForeignKey& key);
std::string CheckDefinition(const TDBCheck& check);
// The options of a new table, each line starting with CR LF.
std::string TableOptions(const TDBTable& table);
// Columns, primary and unique keys and the table's options; indexes, foreign keys and checks
// follow in their own sections.
std::string CreateTable(const TDBTable& table);
std::string CreateView(const TDBView& view);

}  // namespace lomarin
