#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lomarin::dataview {

// Statement texts of the data grid. A browse statement is kept as lines joined by "\n": the
// select, then the filter line, then an optional "order by " line, then the LIMIT line.

// `name` with every back-quote doubled, between back-quotes.
std::string BackQuote(std::string_view name);
// How the table window names a table: bare quoted name inside the current database, else
// database and table both quoted, joined by a point.
std::string TableWindowName(std::string_view database, std::string_view table,
                            std::string_view currentDatabase);
// "TABLE [ NAME ]" or "VIEW [ NAME ]", upper-casing ASCII letters only.
std::string TableWindowCaption(std::string_view name, bool isView);

std::string BrowseSQL(std::string_view name);
std::string RowCountSQL(std::string_view tableName);
std::string DistinctValuesSQL(std::string_view column, std::string_view tableName);
std::string KeyColumnsSQL(std::string_view name);

std::vector<std::string> SplitLines(std::string_view sql);
std::string JoinLines(const std::vector<std::string>& lines);

// Every line containing "LIMIT" (case-sensitive) becomes `clause`; with none, `clause` is appended.
std::string ReplaceLimitLine(std::string_view sql, std::string_view clause);

// The filter condition for one value picked from a column's value list: "`c` = literal", or
// "`c` IS NULL" when the literal is NULL.
std::string ValueCondition(std::string_view column, std::string_view literal);

// " where  " + condition, or empty for an empty condition.
std::string WhereLineFor(std::string_view condition);
// Puts the filter line in second place (appending it to a one-line statement); when the limit is
// active the LIMIT clause is then applied again, since the filter may have taken its line.
std::string ApplyWhereLine(std::string_view sql, std::string_view whereLine, bool limitActive,
                           std::string_view limitClause);

struct SortColumn {
  std::string name;
  bool descending = false;
};
// "order by `a` ASC, `b` DESC"; empty without columns.
std::string OrderByLine(const std::vector<SortColumn>& columns);
// Drops any previous "order by " line and puts the new one just before the LIMIT line (at the end
// when there is none), keeping the second line free for the filter.
std::string PlaceOrderBy(std::string_view sql, std::string_view orderByLine);

}  // namespace lomarin::dataview
