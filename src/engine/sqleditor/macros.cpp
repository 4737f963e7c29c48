#include "engine/sqleditor/macros.h"

#include <strings.h>

#include <algorithm>
#include <functional>

namespace lomarin {

namespace {

bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isNameChar(char c) { return isNameStart(c) || (c >= '0' && c <= '9'); }

bool sameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Calls found(offset, name) for each macro outside quoted text and comments.
void forEachMacro(std::string_view sql, const std::function<void(size_t, std::string_view)>& found) {
  const size_t n = sql.size();
  size_t i = 0;
  auto skipTo = [&](std::string_view closer) {
    const size_t at = sql.find(closer, i);
    i = at == std::string_view::npos ? n : at + closer.size();
  };
  while (i < n) {
    const char c = sql[i];
    if (c == '\'' || c == '"' || c == '`') {
      ++i;
      while (i < n && sql[i] != c) i += (sql[i] == '\\' && c != '`') ? 2 : 1;
      ++i;
    } else if (c == '#' || (c == '-' && i + 1 < n && sql[i + 1] == '-' &&
                            (i + 2 == n || static_cast<unsigned char>(sql[i + 2]) <= ' '))) {
      skipTo("\n");
    } else if (c == '/' && i + 1 < n && sql[i + 1] == '*' && !(i + 2 < n && (sql[i + 2] == '!' || sql[i + 2] == 'M'))) {
      i += 2;
      skipTo("*/");
    } else if (c == '&' && i + 1 < n && isNameStart(sql[i + 1]) && (i == 0 || sql[i - 1] != '&')) {
      size_t end = i + 1;
      while (end < n && isNameChar(sql[end])) ++end;
      found(i, sql.substr(i + 1, end - i - 1));
      i = end;
    } else {
      ++i;
    }
  }
}

}  // namespace

std::vector<std::string> FindMacroNames(std::string_view sql) {
  std::vector<std::string> names;
  forEachMacro(sql, [&](size_t, std::string_view name) {
    if (std::none_of(names.begin(), names.end(), [&](const std::string& known) { return sameName(known, name); }))
      names.emplace_back(name);
  });
  return names;
}

TMacros MacrosOf(std::string_view sql) {
  TMacros macros;
  for (auto& name : FindMacroNames(sql)) macros.push_back({std::move(name), {}});
  return macros;
}

std::string ExpandMacros(std::string_view sql, const TMacros& macros) {
  if (macros.empty()) return std::string(sql);
  std::string out;
  out.reserve(sql.size());
  size_t copied = 0;
  forEachMacro(sql, [&](size_t at, std::string_view name) {
    auto macro = std::find_if(macros.begin(), macros.end(), [&](const TMacro& m) { return sameName(m.Name, name); });
    if (macro == macros.end()) return;
    out.append(sql.substr(copied, at - copied));
    out += macro->Value;
    copied = at + 1 + name.size();
  });
  out.append(sql.substr(copied));
  return out;
}

std::string FormatMacroValue(std::string_view value, std::string_view type, const TValueEscaper& escape,
                             bool quoting) {
  if (!quoting || type == "Integer") return std::string(value);
  std::string text(value);
  if (type == "Float") std::replace(text.begin(), text.end(), '.', ',');
  return "'" + escape(text) + "'";
}

}  // namespace lomarin
