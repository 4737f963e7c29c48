#include "engine/connect/lost_connection.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace lomarin {

TLostConnectionHandler::TLostConnectionHandler(std::function<bool()> askRetry)
    : askRetry_(std::move(askRetry)) {}

RetryMode TLostConnectionHandler::onConnectionLost() {
  if (retryCount_ < kSilentRetries) {
    reconnecting_ = true;
    ++retryCount_;
    return RetryMode::ReconnectExecute;
  }
  if (askRetry_ && askRetry_()) {
    retryCount_ = 0;
    reconnecting_ = true;
    return RetryMode::ReconnectExecute;
  }
  reconnecting_ = false;
  return RetryMode::Raise;
}

namespace {

bool isWordChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$'; }

bool sameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
         });
}

// The words of a request outside quoted text and comments, with ";" standing for itself. A
// version comment ("/*!") is code to the server, so its words count.
std::vector<std::string_view> codeWords(std::string_view sql) {
  std::vector<std::string_view> words;
  size_t i = 0;
  const size_t n = sql.size();
  while (i < n) {
    const char c = sql[i];
    if (c == '\'' || c == '"' || c == '`') {
      for (++i; i < n && sql[i] != c; ++i)
        if (sql[i] == '\\' && c != '`') ++i;
      ++i;
    } else if (c == '#' || (c == '-' && sql.substr(i, 2) == "--" &&
                            (i + 2 >= n || static_cast<unsigned char>(sql[i + 2]) <= ' '))) {
      i = sql.find('\n', i);
    } else if (sql.substr(i, 2) == "/*") {
      if (sql.substr(i, 3) == "/*!" || sql.substr(i, 4) == "/*M!") {
        words.push_back(sql.substr(i, 3));
        i += 3;
      } else {
        i = sql.find("*/", i + 2);
        if (i != std::string_view::npos) i += 2;
      }
    } else if (isWordChar(c)) {
      const size_t start = i;
      while (i < n && isWordChar(sql[i])) ++i;
      words.push_back(sql.substr(start, i - start));
    } else {
      if (c == ';') words.push_back(sql.substr(i, 1));
      ++i;
    }
  }
  return words;
}

bool contains(const std::vector<std::string_view>& words, std::string_view word) {
  return std::any_of(words.begin(), words.end(), [&](std::string_view w) { return sameWord(w, word); });
}

}  // namespace

bool IsReadOnlyStatement(std::string_view sql) {
  std::vector<std::string_view> words = codeWords(sql);
  while (!words.empty() && words.back() == ";") words.pop_back();
  if (words.empty() || contains(words, ";")) return false;
  const std::string_view first = words.front();
  if (sameWord(first, "SELECT")) return !contains(words, "INTO");
  if (sameWord(first, "EXPLAIN") || sameWord(first, "DESCRIBE") || sameWord(first, "DESC"))
    return !contains(words, "ANALYZE");
  return sameWord(first, "SHOW") || sameWord(first, "HELP");
}

}  // namespace lomarin
