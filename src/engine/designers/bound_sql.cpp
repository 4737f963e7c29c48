#include "engine/designers/bound_sql.h"

#include <strings.h>

#include "engine/connect/escape.h"
#include "engine/connect/read_result_table.h"

namespace lomarin::designers {

namespace {

bool isNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Where the quoted text or comment that starts at `at` ends (one past its last character).
size_t skipQuoted(std::string_view sql, size_t at) {
  const char quote = sql[at];
  if (quote == '#' || (quote == '-' && sql.substr(at, 3) == "-- ")) {
    const size_t end = sql.find('\n', at);
    return end == std::string_view::npos ? sql.size() : end;
  }
  if (quote == '/') {
    const size_t end = sql.find("*/", at + 2);
    return end == std::string_view::npos ? sql.size() : end + 2;
  }
  for (size_t i = at + 1; i < sql.size(); ++i) {
    if (sql[i] == '\\' && quote != '`') {
      ++i;
    } else if (sql[i] == quote) {
      if (i + 1 < sql.size() && sql[i + 1] == quote) {
        ++i;
        continue;
      }
      return i + 1;
    }
  }
  return sql.size();
}

bool opensQuoted(std::string_view sql, size_t at) {
  const char c = sql[at];
  return c == '\'' || c == '"' || c == '`' || c == '#' || (c == '-' && sql.substr(at, 3) == "-- ") ||
         (c == '/' && sql.substr(at, 2) == "/*");
}

}  // namespace

std::string BindParams(std::string_view sql, const std::vector<TBoundValue>& values,
                       const explorer::ValueEscaper& escape) {
  std::string out;
  size_t i = 0;
  while (i < sql.size()) {
    if (opensQuoted(sql, i)) {
      const size_t end = skipQuoted(sql, i);
      out.append(sql.substr(i, end - i));
      i = end;
      continue;
    }
    size_t end = i + 1;
    while (sql[i] == ':' && end < sql.size() && isNameChar(sql[end])) ++end;
    const std::string_view name = sql.substr(i + 1, end - i - 1);
    const TBoundValue* bound = nullptr;
    for (const TBoundValue& value : values)
      if (!name.empty() && value.Name.size() == name.size() &&
          strncasecmp(value.Name.c_str(), name.data(), name.size()) == 0)
        bound = &value;
    if (bound)
      out += "'" + escape(bound->Value) + "'";
    else
      out.append(sql.substr(i, end - i));
    i = end;
  }
  return out;
}

explorer::ResultTable ReadBound(TMyConnection& session, std::string_view sql,
                                const std::vector<TBoundValue>& values) {
  const explorer::ValueEscaper escape = [&session](std::string_view value) {
    return EscapeString(session, value);
  };
  return ReadResultTable(session, BindParams(sql, values, escape));
}

}  // namespace lomarin::designers
