#pragma once

#include <array>
#include <cstdint>
#include <istream>
#include <string>
#include <vector>

#include "engine/sqleditor/byte_scan.h"

namespace lomarin {

// Cuts a script into statements with the server's lexical rules: quoted text ('', "", ``, with
// backslash escapes and doubled quotes), comments ("-- " with a blank or control character after
// the dashes, "#", "/* */"), version comments ("/*!", "/*M!") kept as statement text, and
// DELIMITER lines in any letter case. The script is read in large chunks, so a file of any size
// streams through; a statement keeps the script's line breaks byte for byte. Statements holding
// nothing but blanks and comments are skipped. A quote or comment still open at the end closes the
// last statement instead of failing. A UTF-8 byte order mark at the start is skipped.
class TStatementSplitter {
 public:
  explicit TStatementSplitter(std::istream& in, std::string delimiter = ";",
                              size_t chunkSize = size_t{4} << 20);

  // Puts the next statement into `statement` (its old capacity is reused); false at the end.
  bool next(std::string& statement);

  const std::string& delimiter() const { return delimiter_; }
  // Off while the session's sql_mode holds NO_BACKSLASH_ESCAPES: a backslash in quoted text is
  // then an ordinary character. Takes effect from the next statement.
  void setBackslashEscapes(bool on) { backslashEscapes_ = on; }
  // Bytes of the input consumed up to the end of the last statement returned.
  uint64_t position() const { return consumedBefore_ + pos_; }
  // Line (from 1) where the code of the last statement returned begins.
  uint64_t statementLine() const { return statementLine_; }

 private:
  enum class State { Normal, SingleQuote, DoubleQuote, BackQuote, LineComment, BlockComment };

  // Makes `count` bytes from pos_ available unless the input ends first; false when it did.
  bool ensure(size_t count);
  void flushSegment();
  void setDelimiter(std::string delimiter);
  bool scanLeadingBlanks();
  bool handleDelimiterCommand();
  void scanCodeRun();
  void scanNormal();
  template <size_t N>
  void scanQuoted(char quote, const detail::ByteSet<N>& stops);
  void scanLineComment();
  void scanBlockComment();
  void lineBreak();
  bool finishStatement(std::string& statement);

  std::istream& in_;
  std::vector<char> buf_;
  size_t pos_ = 0;   // next byte to scan
  size_t end_ = 0;   // bytes held in buf_
  size_t seg_ = 0;   // start of the text not yet copied into stmt_
  uint64_t consumedBefore_ = 0;
  bool eof_ = false;
  bool atStart_ = true;
  uint64_t linesDone_ = 0;
  uint64_t statementLine_ = 0;

  std::string delimiter_;
  detail::ByteSet<8> normalStops_;
  const detail::ByteSet<3> singleQuoteStops_{{'\'', '\\', '\n'}};
  const detail::ByteSet<3> doubleQuoteStops_{{'"', '\\', '\n'}};
  const detail::ByteSet<2> backQuoteStops_{{'`', '\n'}};
  const detail::ByteSet<2> blockCommentStops_{{'*', '\n'}};
  State state_ = State::Normal;
  bool backslashEscapes_ = true;
  bool hasCode_ = false;
  bool statementDone_ = false;
  std::string stmt_;
};

}  // namespace lomarin
