#include "engine/compare/sql_tokens.h"

#include <cctype>

#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

bool isWordByte(unsigned char c) { return std::isalnum(c) || c == '_' || c == '$' || c >= 0x80; }

std::string lower(std::string_view text) {
  std::string out(text);
  for (auto& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// End of the quoted text that starts at pos (the quote itself), backslash escapes only in strings.
size_t quotedEnd(std::string_view sql, size_t pos) {
  const char quote = sql[pos];
  size_t i = pos + 1;
  while (i < sql.size()) {
    if (sql[i] == '\\' && quote != '`') {
      i += 2;
      continue;
    }
    if (sql[i] == quote) {
      if (i + 1 < sql.size() && sql[i + 1] == quote) {
        i += 2;
        continue;
      }
      return i + 1;
    }
    ++i;
  }
  return sql.size();
}

bool lineCommentAt(std::string_view sql, size_t i) {
  if (sql[i] == '#') return true;
  return sql.compare(i, 2, "--") == 0 &&
         (i + 2 >= sql.size() || std::isspace(static_cast<unsigned char>(sql[i + 2])));
}

size_t lineEnd(std::string_view sql, size_t i) {
  const size_t end = sql.find('\n', i);
  return end == std::string_view::npos ? sql.size() : end;
}

}  // namespace

bool TSqlToken::is(std::string_view keyword) const {
  if (kind != Word || text.size() != keyword.size()) return false;
  for (size_t i = 0; i < text.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(text[i])) !=
        std::tolower(static_cast<unsigned char>(keyword[i])))
      return false;
  return true;
}

std::string TSqlToken::value() const {
  if (kind != Name && kind != String) return std::string(text);
  const char quote = text.front();
  std::string out;
  const size_t last = text.size() > 1 && text.back() == quote ? text.size() - 1 : text.size();
  for (size_t i = 1; i < last; ++i) {
    if (text[i] == quote && i + 1 < last && text[i + 1] == quote) {
      out += quote;
      ++i;
    } else if (kind == String && text[i] == '\\' && i + 1 < last) {
      const char c = text[++i];
      out += c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c == '0' ? '\0' : c;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string UnwrapVersionComments(std::string_view sql) {
  std::string out;
  out.reserve(sql.size());
  int open = 0;  // version comments whose "*/" is still to come
  size_t i = 0;
  while (i < sql.size()) {
    const char c = sql[i];
    if (c == '\'' || c == '"' || c == '`') {
      const size_t end = quotedEnd(sql, i);
      out.append(sql, i, end - i);
      i = end;
    } else if (lineCommentAt(sql, i)) {
      const size_t end = lineEnd(sql, i);
      out.append(sql, i, end - i);
      i = end;
    } else if (sql.compare(i, 3, "/*!") == 0 || sql.compare(i, 4, "/*M!") == 0) {
      i += sql[i + 2] == '!' ? 3 : 4;
      while (i < sql.size() && std::isdigit(static_cast<unsigned char>(sql[i]))) ++i;
      out += ' ';
      ++open;
    } else if (sql.compare(i, 2, "/*") == 0) {
      const size_t close = sql.find("*/", i + 2);
      const size_t end = close == std::string_view::npos ? sql.size() : close + 2;
      out.append(sql, i, end - i);
      i = end;
    } else if (open > 0 && sql.compare(i, 2, "*/") == 0) {
      out += ' ';
      --open;
      i += 2;
    } else {
      out += c;
      ++i;
    }
  }
  return out;
}

std::vector<TSqlToken> Tokenize(std::string_view sql) {
  std::vector<TSqlToken> tokens;
  size_t i = 0;
  auto add = [&](TSqlToken::Kind kind, size_t end) {
    tokens.push_back({kind, sql.substr(i, end - i), i, end});
    i = end;
  };
  while (i < sql.size()) {
    const auto c = static_cast<unsigned char>(sql[i]);
    if (std::isspace(c)) {
      ++i;
    } else if (lineCommentAt(sql, i)) {
      i = lineEnd(sql, i);
    } else if (sql.compare(i, 2, "/*") == 0) {
      const size_t close = sql.find("*/", i + 2);
      i = close == std::string_view::npos ? sql.size() : close + 2;
    } else if (c == '`') {
      add(TSqlToken::Name, quotedEnd(sql, i));
    } else if (c == '\'' || c == '"') {
      add(TSqlToken::String, quotedEnd(sql, i));
    } else if (std::isdigit(c) ||
               (c == '.' && i + 1 < sql.size() && std::isdigit(static_cast<unsigned char>(sql[i + 1])))) {
      size_t end = i;
      while (end < sql.size() &&
             (isWordByte(static_cast<unsigned char>(sql[end])) || sql[end] == '.' ||
              ((sql[end] == '+' || sql[end] == '-') && (sql[end - 1] == 'e' || sql[end - 1] == 'E'))))
        ++end;
      add(TSqlToken::Number, end);
    } else if (isWordByte(c) || c == '@') {
      size_t end = i + 1;
      while (end < sql.size() && (isWordByte(static_cast<unsigned char>(sql[end])) || sql[end] == '@')) ++end;
      add(TSqlToken::Word, end);
    } else {
      size_t length = 1;
      for (std::string_view op : {"<=>", "->>", "<=", ">=", "<>", "!=", ":=", "||", "&&", "<<", ">>", "->"})
        if (sql.substr(i, op.size()) == op) {
          length = op.size();
          break;
        }
      add(TSqlToken::Symbol, i + length);
    }
  }
  return tokens;
}

std::string NormaliseTokens(const std::vector<TSqlToken>& tokens, size_t from, size_t to,
                            std::string_view database) {
  std::string out;
  const std::string db = lower(database);
  for (size_t i = from; i < to && i < tokens.size(); ++i) {
    const auto& token = tokens[i];
    const bool nameLike = token.kind == TSqlToken::Name || token.kind == TSqlToken::Word;
    if (!db.empty() && nameLike && i + 2 < to && tokens[i + 1].isSymbol('.') && lower(token.value()) == db) {
      ++i;  // the qualifier and its dot
      continue;
    }
    // An introducer stays on its string: b'01', x'ff', _utf8mb4'a'.
    const bool introduced = token.kind == TSqlToken::String && i > from &&
                            tokens[i - 1].kind == TSqlToken::Word && tokens[i - 1].end == token.begin;
    if (!out.empty() && !introduced) out += ' ';
    if (token.kind == TSqlToken::Name) {
      // Written back into DDL, so a name that needs its quotes keeps them.
      out += ScriptName(lower(token.value()), false);
    } else if (nameLike) {
      out += lower(token.value());
    } else if (token.kind == TSqlToken::String) {
      out += '\'';
      for (char ch : token.value()) {
        if (ch == '\0') {
          out += "\\0";
          continue;
        }
        if (ch == '\'' || ch == '\\') out += ch;  // doubled
        out += ch;
      }
      out += '\'';
    } else {
      out += token.text;
    }
  }
  return out;
}

}  // namespace lomarin
