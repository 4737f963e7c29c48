#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/compare/db_structure.h"

namespace lomarin {

// How the comparer reads a definition so that a database never differs from its own dump, whether
// the dump came from MySQL 5.x, 8.x or MariaDB. The rules follow what the server does itself:
//
// - Type names are lower case and spelt as the server shows them: INTEGER is int, BOOL is tinyint,
//   DEC/NUMERIC/FIXED are decimal (with the implied (10,0) or (p,0)), REAL and DOUBLE PRECISION are
//   double, CHAR and BINARY without a length are (1), BIT is bit(1), YEAR(4) is year, and a
//   fractional-seconds precision of 0 is dropped. Integer display widths do not count (MySQL 8 no
//   longer shows them) unless the column is ZEROFILL, where the width still matters.
// - Defaults: none and DEFAULT NULL are the same; a quoted number on a numeric column is the
//   number; now(), CURRENT_TIMESTAMP and LOCALTIME(STAMP) with or without () are
//   current_timestamp, keeping a precision; strings are written in single quotes.
// - Character sets: utf8 is utf8mb3 (and utf8_… collations utf8mb3_…). A text column without a
//   character set takes the table's; without a collation it takes the table's when its character
//   set is the table's, else the default collation of its character set. A table without a
//   collation takes its character set's default. So implicit and explicit forms compare equal. A
//   script table without any character set leaves it to the database and matches any.
// - Foreign-key actions RESTRICT and NO ACTION are the default and compare as none.
// - Index method BTREE is the default and compares as none; MariaDB's PERSISTENT is STORED.
// - View bodies, routines, triggers and events compare on their tokens (layout, comments, letter
//   case of keywords, quoting of names and the database's own qualifier do not count); DEFINER and
//   the table's AUTO_INCREMENT counter never count.

// `name` in any case, `args` the text between the type's parentheses (may be empty). Integer
// display widths stay, so the type is written back as it was.
std::string NormaliseType(std::string_view name, std::string_view args);
// The type as it is compared: without an integer display width unless zerofill.
std::string ComparableType(std::string_view type, bool zerofill);
bool IsTextType(std::string_view type);
bool IsNumericType(std::string_view type);

// The default as the comparer keeps it; nullopt for none or NULL.
std::optional<std::string> NormaliseDefault(std::string_view normalisedTokens, std::string_view type);

std::string CanonicalCharset(std::string_view charset);
std::string CanonicalCollation(std::string_view collation);
// The server's default collation of a character set; empty when not known.
std::string DefaultCollation(std::string_view charset);

// Fills in what the table's definition implies (charsets and collations of the table and its text
// columns), once the whole table is read.
void FinishTable(TDBTable& table);

std::string NormaliseForeignKeyAction(std::string_view action);

}  // namespace lomarin
