#include "engine/sqleditor/sql_analyzer.h"

#include <array>
#include <cctype>

#include "engine/sqleditor/sql_dialect.h"

namespace lomarin {

namespace {

bool isWordStart(unsigned char c) { return std::isalpha(c) || c == '_' || c >= 0x80; }
bool isWordChar(unsigned char c) { return std::isalnum(c) || c == '_' || c == '$' || c >= 0x80; }
bool isSymbol(char c) { return std::string_view("/,.;:()=<>+-").find(c) != std::string_view::npos; }

std::string upper(std::string_view word) {
  std::string out(word);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::string lower(std::string_view word) {
  std::string out(word);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

class Lexer {
 public:
  explicit Lexer(std::string_view text) : t_(text) {}

  std::vector<TSqlToken> run() {
    std::vector<TSqlToken> tokens;
    while (skipBlanks()) tokens.push_back(next());
    return tokens;
  }

 private:
  bool skipBlanks() {
    while (p_ < t_.size() && std::isspace(static_cast<unsigned char>(t_[p_]))) ++p_;
    return p_ < t_.size();
  }

  TSqlToken next() {
    const size_t start = p_;
    const char c = t_[p_];
    auto token = [&](TTokenType type) { return TSqlToken{type, start, p_ - start}; };
    if (startsWith("--") || c == '#') {
      p_ = std::min(t_.find('\n', p_), t_.size());
      return token(TTokenType::Comment);
    }
    if (startsWith("/*")) {
      const size_t end = t_.find("*/", p_ + 2);
      p_ = end == std::string_view::npos ? t_.size() : end + 2;
      return token(TTokenType::Comment);
    }
    if (c == '\'' || c == '"') {
      ++p_;
      while (p_ < t_.size() && t_[p_] != c && t_[p_] != '\n')
        p_ += t_[p_] == '\\' && p_ + 1 < t_.size() ? 2 : 1;
      if (p_ < t_.size() && t_[p_] == c) ++p_;
      return token(TTokenType::String);
    }
    if (c == '`') {
      const size_t end = t_.find('`', p_ + 1);
      p_ = end == std::string_view::npos ? t_.size() : end + 1;
      return token(TTokenType::Identifier);
    }
    if (std::isdigit(static_cast<unsigned char>(c))) return number(start);
    if (isWordStart(static_cast<unsigned char>(c))) {
      while (p_ < t_.size() && isWordChar(static_cast<unsigned char>(t_[p_]))) ++p_;
      return token(TTokenType::Identifier);
    }
    if (isSymbol(c)) {
      while (p_ < t_.size() && isSymbol(t_[p_]) && !startsWith("--") && !startsWith("/*")) ++p_;
      return token(TTokenType::Symbol);
    }
    ++p_;
    return token(TTokenType::Unknown);
  }

  TSqlToken number(size_t start) {
    auto digits = [&] {
      while (p_ < t_.size() && std::isdigit(static_cast<unsigned char>(t_[p_]))) ++p_;
    };
    digits();
    bool isFloat = false;
    if (p_ + 1 < t_.size() && t_[p_] == '.' && std::isdigit(static_cast<unsigned char>(t_[p_ + 1]))) {
      ++p_;
      digits();
      isFloat = true;
    }
    if (p_ < t_.size() && (t_[p_] == 'e' || t_[p_] == 'E')) {
      size_t q = p_ + 1;
      if (q < t_.size() && (t_[q] == '+' || t_[q] == '-')) ++q;
      if (q < t_.size() && std::isdigit(static_cast<unsigned char>(t_[q]))) {
        p_ = q;
        digits();
        isFloat = true;
      }
    }
    // "1abc" is a name in MySQL, not a number followed by a word.
    if (p_ < t_.size() && isWordStart(static_cast<unsigned char>(t_[p_]))) {
      while (p_ < t_.size() && isWordChar(static_cast<unsigned char>(t_[p_]))) ++p_;
      return {TTokenType::Identifier, start, p_ - start};
    }
    return {isFloat ? TTokenType::FloatConst : TTokenType::IntegerConst, start, p_ - start};
  }

  bool startsWith(std::string_view s) const { return t_.substr(p_, s.size()) == s; }

  std::string_view t_;
  size_t p_ = 0;
};

// Words after which a table name is expected.
bool opensTableList(const std::string& word) {
  return word == "FROM" || word == "JOIN" || word == "UPDATE" || word == "INTO" || word == "TABLE";
}

// Words that end an alias-less table reference.
bool endsTableReference(std::string_view word) { return IsSqlKeyword(word) && upper(word) != "AS"; }

struct Statement {
  size_t First = 0;  // token range [First, Last)
  size_t Last = 0;
};

class Analyzer {
 public:
  explicit Analyzer(std::string_view text) : text_(text), tokens_(Lexer(text).run()) { classify(); }

  std::vector<TSqlToken>& tokens() { return tokens_; }
  std::string_view textOf(const TSqlToken& token) const { return text_.substr(token.Start, token.Length); }

  std::vector<Statement> statements() const {
    std::vector<Statement> out;
    size_t first = 0;
    for (size_t i = 0; i <= tokens_.size(); ++i) {
      if (i < tokens_.size() &&
          !(tokens_[i].Type == TTokenType::Symbol && textOf(tokens_[i]).find(';') != std::string_view::npos))
        continue;
      size_t begin = first;
      while (begin < i && tokens_[begin].Type == TTokenType::Comment) ++begin;
      if (begin < i) out.push_back({begin, i});
      first = i + 1;
    }
    return out;
  }

  TSqlTreeNode statementNode(const Statement& s) const {
    TSqlTreeNode node;
    node.Caption = std::string(textOf(tokens_[s.First]));
    node.Start = static_cast<int>(tokens_[s.First].Start);
    node.End = static_cast<int>(tokens_[s.Last - 1].Start + tokens_[s.Last - 1].Length);
    TSqlTreeNode* section = nullptr;
    size_t itemFirst = 0;  // first token of the section item being read; 0 when none
    auto flushItem = [&](size_t end) {
      if (section && section->Caption != "From" && itemFirst != 0 && itemFirst < end)
        section->Children.push_back({spanText(itemFirst, end), -1, -1, {}});
      itemFirst = 0;
    };
    int depth = 0;
    for (size_t i = s.First; i < s.Last; ++i) {
      const TSqlToken& token = tokens_[i];
      const std::string_view word = textOf(token);
      const int depthBefore = depth;
      if (token.Type == TTokenType::Symbol) depth += countOf(word, '(') - countOf(word, ')');
      if (token.Type == TTokenType::Comment) continue;
      if (depthBefore == 0 && token.Type == TTokenType::MainKeyWords) {
        if (const char* name = sectionName(upper(word))) {
          flushItem(i);
          node.Children.push_back({name, -1, -1, {}});
          section = &node.Children.back();
          continue;
        }
        if (upper(word) == "BY" && itemFirst == 0) continue;
        if (endsSection(upper(word))) {
          flushItem(i);
          section = nullptr;
          continue;
        }
      }
      if (!section) continue;
      if (depthBefore == 0 && depth == 0 && token.Type == TTokenType::Symbol && word == ",") {
        flushItem(i);
        continue;
      }
      if (itemFirst == 0) itemFirst = i;
      if (depthBefore > 0) continue;
      if (token.Type == TTokenType::TableName) {
        section->Children.push_back({tableName(i), -1, -1, {}});
      } else if (token.Type == TTokenType::Alias) {
        section->Children.push_back({tableName(tableBefore(i)) + " = " + std::string(word), -1, -1, {}});
      }
    }
    flushItem(s.Last);
    return node;
  }

  std::map<std::string, std::string> aliases(const Statement& s) const {
    std::map<std::string, std::string> out;
    for (size_t i = s.First; i < s.Last; ++i)
      if (tokens_[i].Type == TTokenType::Alias) out[lower(textOf(tokens_[i]))] = lastNamePart(tableBefore(i));
    return out;
  }

 private:
  // The source of tokens [first, end) with each run of white space as one blank.
  std::string spanText(size_t first, size_t end) const {
    const std::string_view raw = text_.substr(
        tokens_[first].Start, tokens_[end - 1].Start + tokens_[end - 1].Length - tokens_[first].Start);
    std::string out;
    for (char c : raw) {
      const bool blank = std::isspace(static_cast<unsigned char>(c));
      if (!blank)
        out += c;
      else if (!out.empty() && out.back() != ' ')
        out += ' ';
    }
    return out;
  }

  static int countOf(std::string_view s, char c) {
    int n = 0;
    for (char x : s) n += x == c;
    return n;
  }

  static const char* sectionName(const std::string& word) {
    static constexpr std::array<std::pair<std::string_view, const char*>, 6> kSections = {
        {{"SELECT", "Select"},
         {"FROM", "From"},
         {"WHERE", "Where"},
         {"GROUP", "Group"},
         {"ORDER", "Order"},
         {"JOIN", "From"}}};
    for (const auto& [key, name] : kSections)
      if (word == key) return name;
    return nullptr;
  }

  // Clauses the tree shows no section for; they end the section before them.
  static bool endsSection(const std::string& word) {
    return word == "LIMIT" || word == "HAVING" || word == "UNION" || word == "ON" || word == "USING" ||
           word == "INTO" || word == "VALUES" || word == "SET" || word == "WINDOW";
  }

  // The TableName token an alias belongs to.
  size_t tableBefore(size_t alias) const {
    size_t i = alias;
    while (i > 0 && tokens_[i].Type != TTokenType::TableName) --i;
    return i;
  }

  // "database.table" when the table is qualified.
  std::string tableName(size_t table) const {
    std::string name(textOf(tokens_[table]));
    if (table >= 2 && textOf(tokens_[table - 1]) == "." && tokens_[table - 2].Type == TTokenType::Identifier)
      name = std::string(textOf(tokens_[table - 2])) + "." + name;
    return name;
  }

  std::string lastNamePart(size_t table) const { return std::string(textOf(tokens_[table])); }

  void classify() {
    enum class Expect { Nothing, Table, AliasOrNext, NextTable } expect = Expect::Nothing;
    for (size_t i = 0; i < tokens_.size(); ++i) {
      TSqlToken& token = tokens_[i];
      if (token.Type == TTokenType::Comment) continue;
      const std::string_view word = textOf(token);
      if (token.Type == TTokenType::Identifier && word.front() != '`') {
        const bool call = i + 1 < tokens_.size() && textOf(tokens_[i + 1]).starts_with("(");
        if (call && IsSqlFunction(word)) {
          token.Type = TTokenType::Function;
          expect = Expect::Nothing;
          continue;
        }
        if (IsSqlKeyword(word)) {
          const std::string key = upper(word);
          token.Type = TTokenType::MainKeyWords;
          if (opensTableList(key))
            expect = Expect::Table;
          else if (!(key == "AS" && expect == Expect::AliasOrNext))
            expect = Expect::Nothing;
          continue;
        }
      }
      if (token.Type == TTokenType::Identifier) {
        const bool qualified = i + 1 < tokens_.size() && textOf(tokens_[i + 1]) == ".";
        if (expect == Expect::Table && !qualified) {
          token.Type = TTokenType::TableName;
          expect = Expect::AliasOrNext;
        } else if (expect == Expect::AliasOrNext && !endsTableReference(word)) {
          token.Type = TTokenType::Alias;
          expect = Expect::NextTable;
        }
        continue;
      }
      if (token.Type == TTokenType::Symbol && word == "." && expect == Expect::Table) continue;
      if (token.Type == TTokenType::Symbol && word == "," && expect != Expect::Nothing) {
        expect = Expect::Table;
        continue;
      }
      expect = Expect::Nothing;
    }
  }

  std::string_view text_;
  std::vector<TSqlToken> tokens_;
};

}  // namespace

std::string_view TokenTypeName(TTokenType type) {
  static constexpr std::array<std::string_view, 11> kNames = {
      "Unknown",     "Comment",    "Identifier", "Symbol",   "String",       "Integer const",
      "Float const", "Table name", "Alias",      "Function", "Main KeyWords"};
  return kNames[static_cast<size_t>(type)];
}

std::vector<TSqlToken> TokenizeSql(std::string_view text) { return Analyzer(text).tokens(); }

std::vector<TSqlTreeNode> BuildStatementTree(std::string_view text) {
  Analyzer analyzer(text);
  std::vector<TSqlTreeNode> out;
  for (const Statement& s : analyzer.statements()) out.push_back(analyzer.statementNode(s));
  return out;
}

std::map<std::string, std::string> AliasesAt(std::string_view text, size_t position) {
  Analyzer analyzer(text);
  for (const Statement& s : analyzer.statements()) {
    const TSqlToken& last = analyzer.tokens()[s.Last - 1];
    // The statement still being typed reaches up to the caret.
    const size_t end = s.Last < analyzer.tokens().size() ? last.Start + last.Length : text.size();
    if (position <= end) return analyzer.aliases(s);
  }
  return {};
}

}  // namespace lomarin
