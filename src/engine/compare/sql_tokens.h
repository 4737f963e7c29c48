#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

struct TSqlToken {
  enum Kind { Word, Name, String, Number, Symbol };
  Kind kind = Word;
  std::string_view text;  // as written, quotes included
  size_t begin = 0;       // offsets into the tokenized text
  size_t end = 0;

  bool is(std::string_view keyword) const;  // a bare word, any letter case
  bool isSymbol(char c) const { return kind == Symbol && text.size() == 1 && text[0] == c; }
  // A name without its back-quotes (or a bare word as written); a string's value unescaped.
  std::string value() const;
};

// Drops the markers of version comments ("/*!50001 ", "/*M!100401 ") and their closing "*/",
// keeping what they hold, as a server that runs the script reads it. Other comments stay.
std::string UnwrapVersionComments(std::string_view sql);

// Words, names, strings, numbers and symbols; blanks and comments are left out. The tokens point
// into sql, which must outlive them.
std::vector<TSqlToken> Tokenize(std::string_view sql);

// The tokens joined by single blanks, words and names in lower case and names without their
// back-quotes, strings in single quotes: two texts that differ only in layout, comments, letter case
// of keywords or quoting of names give the same result. "`database`." qualifiers are left out.
std::string NormaliseTokens(const std::vector<TSqlToken>& tokens, size_t from, size_t to,
                            std::string_view database = {});

}  // namespace lomarin
