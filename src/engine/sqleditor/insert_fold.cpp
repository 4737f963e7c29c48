#include "engine/sqleditor/insert_fold.h"

#include <cctype>

namespace lomarin {

namespace {

// Reads one name, bare or back-quoted, at s[at]; false when there is none.
bool readName(std::string_view s, size_t& at) {
  if (at < s.size() && s[at] == '`') {
    // A doubled back-quote inside a name reads as two names back to back: the same end.
    while (at < s.size() && s[at] == '`') {
      const size_t close = s.find('`', at + 1);
      if (close == std::string_view::npos) return false;
      at = close + 1;
    }
    return true;
  }
  const size_t begin = at;
  while (at < s.size() && (std::isalnum(static_cast<unsigned char>(s[at])) || s[at] == '_' || s[at] == '$')) ++at;
  return at > begin;
}

bool readWord(std::string_view s, size_t& at, std::string_view word) {
  if (!s.substr(at).starts_with(word)) return false;
  at += word.size();
  return true;
}

// End of the head, or 0. Only the plain form is accepted: the verb and its modifiers, INTO, the
// table, an optional column list and VALUES; anything else (a SELECT, a PARTITION clause, a
// comment) could read differently once several tuples follow.
size_t headEnd(std::string_view s) {
  size_t at = 0;
  if (!readWord(s, at, "INSERT ") && !readWord(s, at, "REPLACE ")) return 0;
  while (readWord(s, at, "LOW_PRIORITY ") || readWord(s, at, "DELAYED ") || readWord(s, at, "HIGH_PRIORITY ") ||
         readWord(s, at, "IGNORE ")) {
  }
  if (!readWord(s, at, "INTO ") || !readName(s, at)) return 0;
  if (readWord(s, at, ".") && !readName(s, at)) return 0;
  if (readWord(s, at, "(") || readWord(s, at, " (")) {
    do {
      readWord(s, at, " ");
      if (!readName(s, at)) return 0;
    } while (readWord(s, at, ","));
    if (!readWord(s, at, ")")) return 0;
  }
  return readWord(s, at, " VALUES (") ? at - 1 : 0;
}

// True when s is "(...)" with no nested parentheses, comments or second tuple outside strings.
bool singleTuple(std::string_view s) {
  char quote = 0;
  for (size_t i = 1; i < s.size(); ++i) {
    const char c = s[i];
    if (quote) {
      if (c == '\\')
        ++i;
      else if (c == quote)
        quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == ')') {
      return i + 1 == s.size();
    } else if (c == '(' || c == '`' || c == '#' || c == ';' || (c == '-' && i + 1 < s.size() && s[i + 1] == '-') ||
               (c == '/' && i + 1 < s.size() && s[i + 1] == '*')) {
      return false;
    }
  }
  return false;
}

}  // namespace

size_t OneRowInsertHead(std::string_view statement) {
  const size_t head = headEnd(statement);
  return head > 0 && singleTuple(statement.substr(head)) ? head : 0;
}

}  // namespace lomarin
