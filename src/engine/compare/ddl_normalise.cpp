#include "engine/compare/ddl_normalise.h"

#include <array>
#include <cctype>
#include <utility>

namespace lomarin {

namespace {

std::string lower(std::string_view text) {
  std::string out(text);
  for (auto& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

std::string upper(std::string_view text) {
  std::string out(text);
  for (auto& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

bool isNumber(std::string_view text) {
  if (text.empty()) return false;
  size_t i = text[0] == '-' || text[0] == '+' ? 1 : 0;
  bool digit = false;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (std::isdigit(static_cast<unsigned char>(c)))
      digit = true;
    else if (c != '.' && c != 'e' && c != 'E' && c != '-' && c != '+')
      return false;
  }
  return digit;
}

bool isIntegerType(std::string_view name) {
  return name == "tinyint" || name == "smallint" || name == "mediumint" || name == "int" || name == "bigint";
}

std::string withoutBlanks(std::string_view args) {
  std::string out;
  char quote = 0;
  for (char c : args) {
    if (quote) {
      if (c == quote) quote = 0;
      out += c;
    } else if (c == '\'' || c == '"') {
      quote = c;
      out += c;
    } else if (!std::isspace(static_cast<unsigned char>(c))) {
      out += c;
    }
  }
  return out;
}

std::string typeName(std::string_view name) {
  static const std::array<std::pair<std::string_view, std::string_view>, 11> synonyms{{
      {"integer", "int"},
      {"int4", "int"},
      {"int8", "bigint"},
      {"int1", "tinyint"},
      {"int2", "smallint"},
      {"bool", "tinyint"},
      {"boolean", "tinyint"},
      {"dec", "decimal"},
      {"numeric", "decimal"},
      {"fixed", "decimal"},
      {"real", "double"},
  }};
  for (const auto& [from, to] : synonyms)
    if (name == from) return std::string(to);
  if (name == "double precision") return "double";
  if (name == "character") return "char";
  return std::string(name);
}

}  // namespace

std::string NormaliseType(std::string_view rawName, std::string_view rawArgs) {
  const std::string name = typeName(lower(rawName));
  std::string args = withoutBlanks(rawArgs);
  if (const std::string raw = lower(rawName); raw == "bool" || raw == "boolean") args = "1";
  if (name == "decimal") {
    if (args.empty())
      args = "10,0";
    else if (args.find(',') == std::string::npos)
      args += ",0";
  }
  if ((name == "char" || name == "binary" || name == "bit") && args.empty()) args = "1";
  if (name == "year") args.clear();
  if ((name == "time" || name == "datetime" || name == "timestamp") && args == "0") args.clear();
  if (name == "enum" || name == "set") {
    std::string quoted;  // values in single quotes
    for (size_t i = 0; i < args.size(); ++i) quoted += args[i] == '"' ? '\'' : args[i];
    args = quoted;
  }
  return args.empty() ? name : name + "(" + args + ")";
}

std::string ComparableType(std::string_view type, bool zerofill) {
  const std::string_view name = type.substr(0, type.find('('));
  return isIntegerType(name) && !zerofill ? std::string(name) : std::string(type);
}

bool IsTextType(std::string_view type) {
  const std::string_view name = type.substr(0, type.find('('));
  return name == "char" || name == "varchar" || name.ends_with("text") || name == "enum" || name == "set";
}

bool IsNumericType(std::string_view type) {
  const std::string_view name = type.substr(0, type.find('('));
  return isIntegerType(name) || name == "decimal" || name == "float" || name == "double";
}

std::optional<std::string> NormaliseDefault(std::string_view value, std::string_view type) {
  if (value.empty() || value == "null") return std::nullopt;
  std::string text(value);
  if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'' && IsNumericType(type)) {
    const std::string inner = text.substr(1, text.size() - 2);
    if (isNumber(inner)) text = inner;
  }
  for (std::string_view now : {"current_timestamp", "now", "localtime", "localtimestamp"}) {
    if (!text.starts_with(now)) continue;
    std::string rest = withoutBlanks(text.substr(now.size()));
    if (!rest.empty() && rest.front() != '(') continue;
    if (rest == "()" || rest == "(0)") rest.clear();
    return "current_timestamp" + rest;
  }
  // A signed number arrives as two tokens.
  if (text.size() > 2 && (text[0] == '-' || text[0] == '+') && text[1] == ' ') text.erase(1, 1);
  return text;
}

std::string CanonicalCharset(std::string_view charset) {
  const std::string name = lower(charset);
  return name == "utf8" ? "utf8mb3" : name;
}

std::string CanonicalCollation(std::string_view collation) {
  const std::string name = lower(collation);
  return name.starts_with("utf8_") ? "utf8mb3_" + name.substr(5) : name;
}

std::string DefaultCollation(std::string_view charset) {
  static const std::array<std::pair<std::string_view, std::string_view>, 12> defaults{{
      {"latin1", "latin1_swedish_ci"},
      {"latin2", "latin2_general_ci"},
      {"ascii", "ascii_general_ci"},
      {"utf8mb3", "utf8mb3_general_ci"},
      {"utf8mb4", "utf8mb4_general_ci"},
      {"ucs2", "ucs2_general_ci"},
      {"utf16", "utf16_general_ci"},
      {"utf32", "utf32_general_ci"},
      {"binary", "binary"},
      {"cp1250", "cp1250_general_ci"},
      {"cp1251", "cp1251_general_ci"},
      {"greek", "greek_general_ci"},
  }};
  for (const auto& [cs, collation] : defaults)
    if (charset == cs) return std::string(collation);
  return {};
}

namespace {

std::string charsetOf(std::string_view collation) {
  return std::string(collation.substr(0, collation.find('_')));
}

}  // namespace

void FinishTable(TDBTable& table) {
  table.Charset = CanonicalCharset(table.Charset);
  table.Collation = CanonicalCollation(table.Collation);
  if (table.Charset.empty() && !table.Collation.empty()) table.Charset = charsetOf(table.Collation);
  if (table.Collation.empty()) table.Collation = DefaultCollation(table.Charset);
  for (auto& column : table.Columns) {
    column.Charset = CanonicalCharset(column.Charset);
    column.Collation = CanonicalCollation(column.Collation);
    if (!IsTextType(column.Type)) continue;
    if (column.Charset.empty())
      column.Charset = column.Collation.empty() ? table.Charset : charsetOf(column.Collation);
    if (column.Collation.empty())
      column.Collation = column.Charset == table.Charset ? table.Collation : DefaultCollation(column.Charset);
    if (column.Binary && !column.Collation.ends_with("_bin")) column.Collation = column.Charset + "_bin";
    column.Binary = false;
  }
}

std::string NormaliseForeignKeyAction(std::string_view action) {
  const std::string text = upper(action);
  return text == "RESTRICT" || text == "NO ACTION" ? std::string() : text;
}

}  // namespace lomarin
