#include "engine/designers/sql_param.h"

#include <cctype>

#include "engine/dataview/browse_sql.h"

namespace lomarin::designers {

namespace {

bool isNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

}  // namespace

std::string QuotedLiteral(std::string_view value, const explorer::ValueEscaper& escape) {
  return "'" + escape(value) + "'";
}

std::string ReplaceSqlParams(std::string_view sqlTemplate, const std::vector<TSqlParam>& params) {
  std::string out;
  out.reserve(sqlTemplate.size());
  size_t pos = 0;
  while (pos < sqlTemplate.size()) {
    if (sqlTemplate[pos] != '&') {
      out += sqlTemplate[pos++];
      continue;
    }
    size_t end = pos + 1;
    while (end < sqlTemplate.size() && isNameChar(sqlTemplate[end])) ++end;
    const std::string_view name = sqlTemplate.substr(pos + 1, end - pos - 1);
    const TSqlParam* match = nullptr;
    for (const TSqlParam& param : params)
      if (param.Name == name) match = &param;
    if (!match) {
      out += sqlTemplate.substr(pos, end - pos);
    } else if (match->Quote) {
      out += "'" + match->Value + "'";
    } else {
      out += match->Value;
    }
    pos = end;
  }
  return out;
}

std::string ReplaceSqlParam(std::string_view sqlTemplate, std::string_view name, std::string_view value,
                            std::string_view quote) {
  return ReplaceSqlParams(sqlTemplate, {{std::string(name), std::string(value), quote == "Y"}});
}

std::string AsciiUpper(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::string HyphenQuoted(std::string_view name) {
  return name.find('-') == std::string_view::npos ? std::string(name) : dataview::BackQuote(name);
}

}  // namespace lomarin::designers
