#include "engine/transfer/sql_text.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "engine/connect/escape.h"

namespace lomarin {

namespace {

// Words the server's parser reserves (MariaDB and MySQL 8 together): a bare name spelled like one
// would not parse, so such names are back-quoted even when quoting is off.
// clang-format off
constexpr std::array kReservedWords = {
    "ACCESSIBLE", "ADD", "ALL", "ALTER", "ANALYZE", "AND", "AS", "ASC", "ASENSITIVE", "BEFORE",
    "BETWEEN", "BIGINT", "BINARY", "BLOB", "BOTH", "BY", "CALL", "CASCADE", "CASE", "CHANGE", "CHAR",
    "CHARACTER", "CHECK", "COLLATE", "COLUMN", "CONDITION", "CONSTRAINT", "CONTINUE", "CONVERT",
    "CREATE", "CROSS", "CUBE", "CUME_DIST", "CURRENT_DATE", "CURRENT_ROLE", "CURRENT_TIME",
    "CURRENT_TIMESTAMP", "CURRENT_USER", "CURSOR", "DATABASE", "DATABASES", "DAY_HOUR",
    "DAY_MICROSECOND", "DAY_MINUTE", "DAY_SECOND", "DEC", "DECIMAL", "DECLARE", "DEFAULT", "DELAYED",
    "DELETE", "DELETE_DOMAIN_ID", "DENSE_RANK", "DESC", "DESCRIBE", "DETERMINISTIC", "DISTINCT",
    "DISTINCTROW", "DIV", "DO_DOMAIN_IDS", "DOUBLE", "DROP", "DUAL", "EACH", "ELSE", "ELSEIF",
    "EMPTY", "ENCLOSED", "ESCAPED", "EXCEPT", "EXISTS", "EXIT", "EXPLAIN", "FALSE", "FETCH",
    "FIRST_VALUE", "FLOAT", "FLOAT4", "FLOAT8", "FOR", "FORCE", "FOREIGN", "FROM", "FULLTEXT",
    "FUNCTION", "GENERAL", "GENERATED", "GET", "GRANT", "GROUP", "GROUPING", "GROUPS", "HAVING",
    "HIGH_PRIORITY", "HOUR_MICROSECOND", "HOUR_MINUTE", "HOUR_SECOND", "IF", "IGNORE",
    "IGNORE_DOMAIN_IDS", "IGNORE_SERVER_IDS", "IN", "INDEX", "INFILE", "INNER", "INOUT",
    "INSENSITIVE", "INSERT", "INT", "INT1", "INT2", "INT3", "INT4", "INT8", "INTEGER", "INTERSECT",
    "INTERVAL", "INTO", "IO_AFTER_GTIDS", "IO_BEFORE_GTIDS", "IS", "ITERATE", "JOIN", "JSON_TABLE",
    "KEY", "KEYS", "KILL", "LAG", "LAST_VALUE", "LATERAL", "LEAD", "LEADING", "LEAVE", "LEFT",
    "LIKE", "LIMIT", "LINEAR", "LINES", "LOAD", "LOCALTIME", "LOCALTIMESTAMP", "LOCK", "LONG",
    "LONGBLOB", "LONGTEXT", "LOOP", "LOW_PRIORITY", "MASTER_BIND", "MASTER_HEARTBEAT_PERIOD",
    "MASTER_SSL_VERIFY_SERVER_CERT", "MATCH", "MAXVALUE", "MEDIUMBLOB", "MEDIUMINT", "MEDIUMTEXT",
    "MIDDLEINT", "MINUTE_MICROSECOND", "MINUTE_SECOND", "MOD", "MODIFIES", "NATURAL", "NOT",
    "NO_WRITE_TO_BINLOG", "NTH_VALUE", "NTILE", "NULL", "NUMERIC", "OF", "OFFSET", "ON", "OPTIMIZE",
    "OPTIMIZER_COSTS", "OPTION", "OPTIONALLY", "OR", "ORDER", "OUT", "OUTER", "OUTFILE", "OVER",
    "PAGE_CHECKSUM", "PARSE_VCOL_EXPR", "PARTITION", "PERCENT_RANK", "POSITION", "PRECISION",
    "PRIMARY", "PROCEDURE", "PURGE", "RANGE", "RANK", "READ", "READS", "READ_WRITE", "REAL",
    "RECURSIVE", "REF_SYSTEM_ID", "REFERENCES", "REGEXP", "RELEASE", "RENAME", "REPEAT", "REPLACE",
    "REQUIRE", "RESIGNAL", "RESTRICT", "RETURN", "RETURNING", "REVOKE", "RIGHT", "RLIKE", "ROW",
    "ROW_NUMBER", "ROWS", "SCHEMA", "SCHEMAS", "SECOND_MICROSECOND", "SELECT", "SENSITIVE",
    "SEPARATOR", "SET", "SHOW", "SIGNAL", "SLOW", "SMALLINT", "SPATIAL", "SPECIFIC", "SQL",
    "SQL_BIG_RESULT", "SQL_CALC_FOUND_ROWS", "SQL_SMALL_RESULT", "SQLEXCEPTION", "SQLSTATE",
    "SQLWARNING", "SSL", "STARTING", "STATS_AUTO_RECALC", "STATS_PERSISTENT", "STATS_SAMPLE_PAGES",
    "STORED", "STRAIGHT_JOIN", "SYSTEM", "TABLE", "TERMINATED", "THEN", "TINYBLOB", "TINYINT",
    "TINYTEXT", "TO", "TRAILING", "TRIGGER", "TRUE", "UNDO", "UNION", "UNIQUE", "UNLOCK",
    "UNSIGNED", "UPDATE", "USAGE", "USE", "USING", "UTC_DATE", "UTC_TIME", "UTC_TIMESTAMP",
    "VALUES", "VARBINARY", "VARCHAR", "VARCHARACTER", "VARYING", "VIRTUAL", "WHEN", "WHERE",
    "WHILE", "WINDOW", "WITH", "WRITE", "XOR", "YEAR_MONTH", "ZEROFILL",
};
// clang-format on

bool isReserved(std::string_view name) {
  std::string upper(name);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return std::find(kReservedWords.begin(), kReservedWords.end(), upper) != kReservedWords.end();
}

bool readsBackBare(std::string_view name) {
  if (name.empty() || std::isdigit(static_cast<unsigned char>(name.front()))) return false;
  const bool plain = std::all_of(name.begin(), name.end(), [](char c) {
    const auto u = static_cast<unsigned char>(c);
    return std::isalnum(u) || c == '_' || c == '$' || u >= 0x80;
  });
  return plain && !isReserved(name);
}

constexpr char kHexDigits[] = "0123456789ABCDEF";

void appendHex(std::string& out, std::string_view bytes) {
  const size_t start = out.size();
  out.resize(start + 2 * bytes.size());
  char* to = out.data() + start;
  for (unsigned char b : bytes) {
    *to++ = kHexDigits[b >> 4];
    *to++ = kHexDigits[b & 15];
  }
}

void appendBits(std::string& out, std::string_view bytes) {
  out += "b'";
  std::string bits;
  for (unsigned char b : bytes)
    for (int i = 7; i >= 0; --i) bits += ((b >> i) & 1) ? '1' : '0';
  const size_t first = bits.find('1');
  out += first == std::string::npos ? "0" : bits.substr(first);
  out += '\'';
}

enum class LiteralKind { Number, Temporal, Bit, Text };

LiteralKind kindOf(TMyFieldType type) {
  switch (type) {
    case TMyFieldType::Decimal:
    case TMyFieldType::NewDecimal:
    case TMyFieldType::Tiny:
    case TMyFieldType::Short:
    case TMyFieldType::Long:
    case TMyFieldType::Int24:
    case TMyFieldType::LongLong:
    case TMyFieldType::Float:
    case TMyFieldType::Double:
    case TMyFieldType::Year:
      return LiteralKind::Number;
    case TMyFieldType::Date:
    case TMyFieldType::NewDate:
    case TMyFieldType::Time:
    case TMyFieldType::DateTime:
    case TMyFieldType::Timestamp:
      return LiteralKind::Temporal;
    case TMyFieldType::Bit:
      return LiteralKind::Bit;
    default:
      return LiteralKind::Text;
  }
}

}  // namespace

std::string ScriptName(std::string_view name, bool always) {
  if (!always && readsBackBare(name)) return std::string(name);
  std::string quoted = "`";
  for (char c : name) {
    if (c == '`') quoted += '`';
    quoted += c;
  }
  quoted += '`';
  return quoted;
}

std::string CommentText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const auto u = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (u < 0x20 || u == 0x7F) {
      out += "\\x";
      appendHex(out, text.substr(i, 1));
    } else {
      out += c;
    }
  }
  return out;
}

std::string QuotedString(TMyConnection& connection, std::string_view value) {
  std::string out = "'";
  AppendEscapedString(connection, value, out);
  out += '\'';
  return out;
}

void AppendLiteral(std::string& out, TMyConnection& connection, const TMyField& field, std::string_view value,
                   bool isNull, bool hexBlob) {
  if (isNull || field.Type == TMyFieldType::Null) {
    out += "NULL";
    return;
  }
  switch (kindOf(field.Type)) {
    case LiteralKind::Number:
      out += value;
      return;
    case LiteralKind::Temporal:
      out += '\'';
      out += value;
      out += '\'';
      return;
    case LiteralKind::Bit:
      appendBits(out, value);
      return;
    case LiteralKind::Text:
      break;
  }
  if (hexBlob && field.isBinary() && !value.empty()) {
    out += "0x";
    appendHex(out, value);
    return;
  }
  out += '\'';
  AppendEscapedString(connection, value, out);
  out += '\'';
}

}  // namespace lomarin
