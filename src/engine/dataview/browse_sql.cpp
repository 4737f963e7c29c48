#include "engine/dataview/browse_sql.h"

#include <algorithm>

namespace lomarin::dataview {

namespace {

constexpr std::string_view kOrderBy = "order by ";

bool containsLimit(const std::string& line) { return line.find("LIMIT") != std::string::npos; }

}  // namespace

std::string BackQuote(std::string_view name) {
  std::string out = "`";
  for (char c : name) {
    out += c;
    if (c == '`') out += '`';
  }
  return out + "`";
}

std::string TableWindowName(std::string_view database, std::string_view table,
                            std::string_view currentDatabase) {
  if (database == currentDatabase) return BackQuote(table);
  return BackQuote(database) + "." + BackQuote(table);
}

std::string TableWindowCaption(std::string_view name, bool isView) {
  std::string upper(name);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return std::string(isView ? "VIEW [ " : "TABLE [ ") + upper + " ]";
}

std::string BrowseSQL(std::string_view name) { return "select * from " + std::string(name); }

std::string RowCountSQL(std::string_view tableName) {
  return "Select count(*)  From " + std::string(tableName);
}

std::string DistinctValuesSQL(std::string_view column, std::string_view tableName) {
  return "Select DISTINCT " + std::string(column) + " From " + std::string(tableName);
}

std::string KeyColumnsSQL(std::string_view name) { return "show keys FROM " + std::string(name); }

std::vector<std::string> SplitLines(std::string_view sql) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (true) {
    const size_t end = sql.find('\n', start);
    lines.emplace_back(
        sql.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start));
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
  return lines;
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string out;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i) out += '\n';
    out += lines[i];
  }
  return out;
}

std::string ReplaceLimitLine(std::string_view sql, std::string_view clause) {
  std::vector<std::string> lines = SplitLines(sql);
  bool replaced = false;
  for (std::string& line : lines) {
    if (containsLimit(line)) {
      line = clause;
      replaced = true;
    }
  }
  if (!replaced) lines.emplace_back(clause);
  return JoinLines(lines);
}

std::string ValueCondition(std::string_view column, std::string_view literal) {
  return BackQuote(column) + (literal == "NULL" ? " IS NULL" : " = " + std::string(literal));
}

std::string WhereLineFor(std::string_view condition) {
  return condition.empty() ? std::string() : " where  " + std::string(condition);
}

std::string ApplyWhereLine(std::string_view sql, std::string_view whereLine, bool limitActive,
                           std::string_view limitClause) {
  std::vector<std::string> lines = SplitLines(sql);
  if (lines.size() < 2)
    lines.emplace_back(whereLine);
  else
    lines[1] = whereLine;
  std::string out = JoinLines(lines);
  return limitActive ? ReplaceLimitLine(out, limitClause) : out;
}

std::string OrderByLine(const std::vector<SortColumn>& columns) {
  if (columns.empty()) return {};
  std::string out(kOrderBy);
  for (const SortColumn& column : columns)
    out += BackQuote(column.name) + (column.descending ? " DESC, " : " ASC, ");
  out.resize(out.size() - 2);
  return out;
}

std::string PlaceOrderBy(std::string_view sql, std::string_view orderByLine) {
  std::vector<std::string> lines = SplitLines(sql);
  std::erase_if(lines, [](const std::string& line) { return line.starts_with(kOrderBy); });
  if (orderByLine.empty()) return JoinLines(lines);
  auto at = static_cast<size_t>(std::find_if(lines.begin(), lines.end(), containsLimit) - lines.begin());
  if (at == 1) lines.insert(lines.begin() + at++, std::string());
  lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), std::string(orderByLine));
  return JoinLines(lines);
}

}  // namespace lomarin::dataview
