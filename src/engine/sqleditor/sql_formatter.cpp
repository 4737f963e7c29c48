#include "engine/sqleditor/sql_formatter.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <vector>

#include "engine/sqleditor/sql_analyzer.h"

namespace lomarin {

namespace {

std::string upper(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

std::string tagValue(std::string_view xml, std::string_view tag) {
  const std::string open = "<" + std::string(tag) + ">";
  const size_t start = xml.find(open);
  if (start == std::string_view::npos) return {};
  const size_t end = xml.find("</", start + open.size());
  if (end == std::string_view::npos) return {};
  std::string value(xml.substr(start + open.size(), end - start - open.size()));
  value.erase(0, value.find_first_not_of(" \t\r\n"));
  value.erase(value.find_last_not_of(" \t\r\n") + 1);
  return value;
}

int lineOf(std::string_view text, size_t offset) {
  return 1 +
         static_cast<int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

// Clauses that start a line of their own; their items go one level deeper.
const std::set<std::string>& clauseWords() {
  static const std::set<std::string> kWords = {"SELECT", "FROM",   "WHERE",   "GROUP", "ORDER",    "HAVING",
                                               "LIMIT",  "VALUES", "SET",     "UNION", "INTO",     "UPDATE",
                                               "DELETE", "INSERT", "REPLACE", "WITH",  "RETURNING"};
  return kWords;
}

// Joins start a line among the items of FROM, with their ON condition after them.
bool startsJoin(const std::string& word) {
  return word == "JOIN" || word == "LEFT" || word == "RIGHT" || word == "INNER" || word == "CROSS" ||
         word == "NATURAL" || word == "STRAIGHT_JOIN";
}

// Words that continue the clause word before them on the same line ("GROUP BY", "LEFT JOIN").
bool continuesClause(const std::string& previous, const std::string& word) {
  if (word == "BY") return previous == "GROUP" || previous == "ORDER";
  if (word == "JOIN")
    return previous == "LEFT" || previous == "RIGHT" || previous == "INNER" || previous == "CROSS" ||
           previous == "OUTER" || previous == "NATURAL";
  if (word == "OUTER") return previous == "LEFT" || previous == "RIGHT";
  if (word == "INTO") return previous == "INSERT" || previous == "REPLACE";
  if (word == "FROM") return previous == "DELETE";
  if (word == "ALL") return previous == "UNION";
  return false;
}

class Formatter {
 public:
  Formatter(std::string_view source, const TFormatterSettings& settings) : src_(source), set_(settings) {}

  TFormatResult run() {
    const std::vector<TSqlToken> tokens = TokenizeSql(src_);
    for (size_t i = 0; i < tokens.size(); ++i) emit(tokens, i);
    trimLine();
    while (!out_.empty() && out_.back() == '\n') out_.pop_back();
    if (error_ < 0 && !opens_.empty()) error_ = lineOf(src_, opens_.back().offset);
    // Broken text stays as written, so the error line points into what the user sees.
    if (error_ >= 0) return {std::string(src_), error_};
    return {out_, error_};
  }

 private:
  struct Open {
    size_t offset;
    int depthBefore;
    bool subquery;
  };

  void emit(const std::vector<TSqlToken>& tokens, size_t i) {
    const TSqlToken& token = tokens[i];
    const std::string_view text = src_.substr(token.Start, token.Length);
    checkClosed(token, text);
    if (token.Type == TTokenType::Comment) {
      word(std::string(text), false);
      if (text.starts_with("--") || text.starts_with("#")) newLine(depth_);
      return;
    }
    if (token.Type == TTokenType::Symbol) return symbols(tokens, i, text);
    std::string piece(text);
    if (token.Type == TTokenType::MainKeyWords || token.Type == TTokenType::Function)
      piece = keywordCase(piece);
    const std::string key = upper(text);
    if (token.Type == TTokenType::MainKeyWords && clauseWords().count(key) &&
        !continuesClause(previousKey_, key)) {
      newLine(clauseDepth_);
      word(piece, false);
      inList_ = key == "SELECT" || key == "SET";
      depth_ = clauseDepth_ + 1;
      previousKey_ = key;
      pendingBreak_ = true;
      return;
    }
    const bool join =
        token.Type == TTokenType::MainKeyWords && startsJoin(key) && !continuesClause(previousKey_, key);
    if (join || (token.Type == TTokenType::MainKeyWords && (key == "AND" || key == "OR") && !betweenOpen_)) {
      newLine(depth_);
    } else if (pendingBreak_ &&
               !(token.Type == TTokenType::MainKeyWords && continuesClause(previousKey_, key))) {
      newLine(depth_);
    }
    if (token.Type == TTokenType::MainKeyWords) {
      if (key == "BY") inList_ = true;
      betweenOpen_ = key == "BETWEEN" || (betweenOpen_ && key != "AND");
    }
    pendingBreak_ =
        pendingBreak_ && token.Type == TTokenType::MainKeyWords && continuesClause(previousKey_, key);
    word(piece, false);
    previousKey_ = token.Type == TTokenType::MainKeyWords ? key : std::string();
    callable_ = token.Type == TTokenType::Function || token.Type == TTokenType::Identifier;
  }

  void symbols(const std::vector<TSqlToken>& tokens, size_t i, std::string_view text) {
    if (pendingBreak_) newLine(depth_);
    for (size_t k = 0; k < text.size(); ++k) {
      const char c = text[k];
      const size_t offset = tokens[i].Start + k;
      if (c == '(') {
        const bool subquery = k + 1 == text.size() && i + 1 < tokens.size() &&
                              upper(src_.substr(tokens[i + 1].Start, tokens[i + 1].Length)) == "SELECT";
        opens_.push_back({offset, clauseDepth_, subquery});
        word("(", k == 0 && callable_);
        glue_ = true;
        if (subquery) clauseDepth_ = depth_ + 1;
      } else if (c == ')') {
        if (opens_.empty()) {
          if (error_ < 0) error_ = lineOf(src_, offset);
          word(")", true);
          continue;
        }
        const Open open = opens_.back();
        opens_.pop_back();
        if (open.subquery) {
          clauseDepth_ = open.depthBefore;
          depth_ = clauseDepth_ + 1;
        }
        word(")", true);
      } else if (c == ',') {
        word(",", true);
        if (set_.BreakLists && inList_ && opens_.empty()) newLine(depth_);
      } else if (c == ';') {
        word(";", true);
        newLine(0);
        out_ += '\n';
        clauseDepth_ = 0;
        depth_ = 0;
        inList_ = false;
        previousKey_.clear();
      } else if (c == '.') {
        word(".", true);
        glue_ = true;
      } else {
        word(std::string(1, c), text.size() > 1 && k > 0);
      }
      pendingBreak_ = false;
    }
    callable_ = false;
  }

  void checkClosed(const TSqlToken& token, std::string_view text) {
    if (error_ >= 0) return;
    const bool openString =
        token.Type == TTokenType::String && (text.size() < 2 || text.back() != text.front());
    const bool openComment =
        token.Type == TTokenType::Comment && text.starts_with("/*") && !text.ends_with("*/");
    if (openString || openComment) error_ = lineOf(src_, token.Start);
  }

  std::string keywordCase(const std::string& word) const {
    switch (set_.KeywordCase) {
      case TFormatterSettings::Case::Upper:
        return upper(word);
      case TFormatterSettings::Case::Lower:
        return lower(word);
      case TFormatterSettings::Case::Keep:
        break;
    }
    return word;
  }

  void word(const std::string& text, bool attach) {
    const bool lineStart = out_.empty() || out_.back() == '\n' || out_.back() == ' ';
    if (!lineStart && !attach && !glue_) out_ += ' ';
    if (out_.empty() || out_.back() == '\n') out_.append(static_cast<size_t>(indentOf_ * set_.Indent), ' ');
    out_ += text;
    glue_ = false;
  }

  void newLine(int depth) {
    trimLine();
    if (!out_.empty() && out_.back() != '\n') out_ += '\n';
    indentOf_ = depth;
    glue_ = false;
  }

  void trimLine() {
    while (!out_.empty() && out_.back() == ' ') out_.pop_back();
  }

  std::string_view src_;
  TFormatterSettings set_;
  std::string out_;
  std::vector<Open> opens_;
  std::string previousKey_;
  int clauseDepth_ = 0;
  int depth_ = 0;
  int indentOf_ = 0;
  int error_ = -1;
  bool inList_ = false;
  bool pendingBreak_ = false;
  bool betweenOpen_ = false;
  bool glue_ = false;
  // The last word may take an argument list: "count(", not "count (".
  bool callable_ = false;
};

}  // namespace

TFormatterSettings ParseFormatterSettings(std::string_view xml) {
  TFormatterSettings settings;
  const std::string indent = tagValue(xml, "indent");
  if (!indent.empty() && std::all_of(indent.begin(), indent.end(), ::isdigit) && indent.size() < 3)
    settings.Indent = std::stoi(indent);
  const std::string keywordCase = lower(tagValue(xml, "keywordCase"));
  if (keywordCase == "lower") settings.KeywordCase = TFormatterSettings::Case::Lower;
  if (keywordCase == "keep") settings.KeywordCase = TFormatterSettings::Case::Keep;
  const std::string breakLists = tagValue(xml, "breakLists");
  if (breakLists == "0") settings.BreakLists = false;
  return settings;
}

TFormatResult FormatSql(std::string_view source, const TFormatterSettings& settings) {
  return Formatter(source, settings).run();
}

}  // namespace lomarin
