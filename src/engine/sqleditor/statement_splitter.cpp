#include "engine/sqleditor/statement_splitter.h"

#include <strings.h>

#include <cstring>

namespace lomarin {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

// "--" starts a comment only before a blank or control character (or the end of the input).
bool dashCommentFollows(unsigned char c) { return c <= ' '; }

}  // namespace

TStatementSplitter::TStatementSplitter(std::istream& in, std::string delimiter, size_t chunkSize)
    : in_(in), buf_(chunkSize ? chunkSize : 1) {
  setDelimiter(std::move(delimiter));
}

void TStatementSplitter::setDelimiter(std::string delimiter) {
  delimiter_ = delimiter.empty() ? ";" : std::move(delimiter);
  normalStops_ = detail::ByteSet<8>({'\n', '\'', '"', '`', '#', '-', '/', delimiter_[0]});
}

void TStatementSplitter::flushSegment() {
  if (pos_ > seg_) stmt_.append(buf_.data() + seg_, pos_ - seg_);
  seg_ = pos_;
}

bool TStatementSplitter::ensure(size_t count) {
  if (end_ - pos_ >= count) return true;
  if (eof_) return false;
  flushSegment();
  // Keep only the unscanned tail; everything before it is already in stmt_.
  const size_t keep = end_ - pos_;
  std::memmove(buf_.data(), buf_.data() + pos_, keep);
  consumedBefore_ += pos_;
  pos_ = seg_ = 0;
  end_ = keep;
  if (buf_.size() < count) buf_.resize(count);
  while (end_ < count && !eof_) {
    in_.read(buf_.data() + end_, static_cast<std::streamsize>(buf_.size() - end_));
    const auto got = static_cast<size_t>(in_.gcount());
    end_ += got;
    if (got == 0 || !in_) eof_ = true;
  }
  return end_ >= count;
}

// The break stays as the script has it: inside a literal or a routine body it is the user's data.
void TStatementSplitter::lineBreak() {
  ++pos_;
  ++linesDone_;
}

bool TStatementSplitter::next(std::string& statement) {
  if (atStart_) {
    atStart_ = false;
    if (ensure(3) && std::memcmp(buf_.data() + pos_, "\xEF\xBB\xBF", 3) == 0) pos_ += 3;
  }
  stmt_.clear();
  hasCode_ = false;
  statementDone_ = false;
  state_ = State::Normal;
  seg_ = pos_;
  for (;;) {
    if (pos_ == end_ && !ensure(1)) return finishStatement(statement);
    if (!hasCode_ && state_ == State::Normal) {
      if (!scanLeadingBlanks()) continue;
    }
    if (state_ != State::LineComment && state_ != State::BlockComment) {
      scanCodeRun();
      if (pos_ == end_) continue;
    }
    switch (state_) {
      case State::Normal: scanNormal(); break;
      case State::SingleQuote: scanQuoted('\'', singleQuoteStops_); break;
      case State::DoubleQuote: scanQuoted('"', doubleQuoteStops_); break;
      case State::BackQuote: scanQuoted('`', backQuoteStops_); break;
      case State::LineComment: scanLineComment(); break;
      case State::BlockComment: scanBlockComment(); break;
    }
    if (statementDone_) return finishStatement(statement);
  }
}

// Before the first code of a statement: skips leading blanks, opens comments, takes DELIMITER
// lines and drops empty statements. Returns true when scanning should go on in the current state.
bool TStatementSplitter::scanLeadingBlanks() {
  while (pos_ < end_) {
    const char c = buf_[pos_];
    const bool nothingYet = stmt_.empty() && seg_ == pos_;
    if (isBlank(c) || (c == '\n' && nothingYet)) {
      if (c == '\n') ++linesDone_;
      ++pos_;
      if (nothingYet) seg_ = pos_;
      continue;
    }
    if (c == '\n') {
      lineBreak();
      continue;
    }
    ensure(delimiter_.size() > 16 ? delimiter_.size() : 16);
    const char* p = buf_.data() + pos_;
    const size_t avail = end_ - pos_;
    if (avail >= delimiter_.size() && std::memcmp(p, delimiter_.data(), delimiter_.size()) == 0) {
      // An empty statement, or one of comments only: nothing to send.
      pos_ += delimiter_.size();
      seg_ = pos_;
      stmt_.clear();
      continue;
    }
    if (c == '#' || (c == '-' && avail >= 2 && p[1] == '-' &&
                     (avail == 2 || dashCommentFollows(static_cast<unsigned char>(p[2]))))) {
      pos_ += c == '#' ? 1 : 2;
      state_ = State::LineComment;
      return true;
    }
    if (c == '/' && avail >= 3 && p[1] == '*' && p[2] != '!' && !(p[2] == 'M' && avail >= 4 && p[3] == '!')) {
      pos_ += 2;
      state_ = State::BlockComment;
      return true;
    }
    if ((c == 'd' || c == 'D') && handleDelimiterCommand()) continue;
    hasCode_ = true;
    statementLine_ = linesDone_ + 1;
    return true;
  }
  return false;
}

bool TStatementSplitter::handleDelimiterCommand() {
  static constexpr char kWord[] = "delimiter";
  constexpr size_t kLen = sizeof kWord - 1;
  if (end_ - pos_ < kLen + 2 || strncasecmp(buf_.data() + pos_, kWord, kLen) != 0) return false;
  if (buf_[pos_ + kLen] != ' ' && buf_[pos_ + kLen] != '\t') return false;
  // The whole line is needed; it is short, so reading up to its end is cheap.
  size_t lineEnd;
  for (;;) {
    const void* nl = std::memchr(buf_.data() + pos_, '\n', end_ - pos_);
    if (nl) {
      lineEnd = static_cast<const char*>(nl) - buf_.data();
      break;
    }
    if (eof_) {
      lineEnd = end_;
      break;
    }
    ensure(end_ - pos_ + 4096);
  }
  size_t p = pos_ + kLen;
  while (p < lineEnd && isBlank(buf_[p])) ++p;
  size_t q = p;
  while (q < lineEnd && !isBlank(buf_[q])) ++q;
  if (q == p) return false;
  setDelimiter(std::string(buf_.data() + p, q - p));
  if (lineEnd < end_) ++linesDone_;
  pos_ = lineEnd < end_ ? lineEnd + 1 : lineEnd;
  seg_ = pos_;
  stmt_.clear();
  return true;
}

// The common case without leaving the loop: code, and quoted text opening, escaping and
// closing. Stops at the end of the buffer or at a byte the scan functions have to look at.
void TStatementSplitter::scanCodeRun() {
  const char* const b = buf_.data();
  const char* const e = b + end_;
  const char* p = b + pos_;
  for (;;) {
    if (state_ == State::Normal) {
      p = normalStops_.find(p, e);
      if (p == e || *p == delimiter_[0]) break;
      if (*p == '\'') {
        state_ = State::SingleQuote;
      } else if (*p == '"') {
        state_ = State::DoubleQuote;
      } else if (*p == '`') {
        state_ = State::BackQuote;
      } else {
        break;
      }
      ++p;
      continue;
    }
    const char quote = state_ == State::SingleQuote ? '\'' : state_ == State::DoubleQuote ? '"' : '`';
    p = state_ == State::SingleQuote   ? singleQuoteStops_.find(p, e)
        : state_ == State::DoubleQuote ? doubleQuoteStops_.find(p, e)
                                       : backQuoteStops_.find(p, e);
    if (p == e) break;
    if (*p == quote) {
      state_ = State::Normal;
      ++p;
    } else if (*p == '\\' && !backslashEscapes_) {
      ++p;
    } else if (*p == '\\' && e - p >= 2 && p[1] != '\n') {
      p += 2;
    } else {
      break;
    }
  }
  pos_ = static_cast<size_t>(p - b);
}

void TStatementSplitter::scanNormal() {
  const char* b = buf_.data();
  const size_t p = normalStops_.find(b + pos_, b + end_) - b;
  pos_ = p;
  if (p == end_) return;
  const char c = b[p];
  if (c == delimiter_[0]) {
    const size_t len = delimiter_.size();
    if (len == 1 || (ensure(len) && std::memcmp(buf_.data() + pos_, delimiter_.data(), len) == 0)) {
      flushSegment();
      pos_ += len;
      seg_ = pos_;
      statementDone_ = true;
      return;
    }
  }
  switch (c) {
    case '\n': lineBreak(); return;
    case '\'': state_ = State::SingleQuote; break;
    case '"': state_ = State::DoubleQuote; break;
    case '`': state_ = State::BackQuote; break;
    case '#': state_ = State::LineComment; break;
    case '-':
      if (ensure(2) && buf_[pos_ + 1] == '-' &&
          (!ensure(3) || dashCommentFollows(static_cast<unsigned char>(buf_[pos_ + 2])))) {
        state_ = State::LineComment;
        ++pos_;
      }
      break;
    case '/':
      if (ensure(3) && buf_[pos_ + 1] == '*') {
        const char third = buf_[pos_ + 2];
        if (third == '!') {
          pos_ += 2;  // version comment: statement text
        } else if (third == 'M' && ensure(4) && buf_[pos_ + 3] == '!') {
          pos_ += 3;
        } else {
          state_ = State::BlockComment;
          ++pos_;
        }
      }
      break;
    default: break;
  }
  ++pos_;
}

template <size_t N>
void TStatementSplitter::scanQuoted(char quote, const detail::ByteSet<N>& stops) {
  const char* b = buf_.data();
  const size_t p = stops.find(b + pos_, b + end_) - b;
  pos_ = p;
  if (p == end_) return;
  if (b[p] == '\n') {
    lineBreak();
  } else if (b[p] == quote) {
    // A doubled quote simply closes and reopens the quoted text.
    state_ = State::Normal;
    ++pos_;
  } else {
    // An escaped line break stays a line break.
    pos_ += backslashEscapes_ && ensure(2) && buf_[pos_ + 1] != '\n' ? 2 : 1;
  }
}

void TStatementSplitter::scanLineComment() {
  const void* nl = std::memchr(buf_.data() + pos_, '\n', end_ - pos_);
  if (!nl) {
    pos_ = end_;
    return;
  }
  pos_ = static_cast<const char*>(nl) - buf_.data();
  state_ = State::Normal;
  lineBreak();
}

void TStatementSplitter::scanBlockComment() {
  const char* b = buf_.data();
  const size_t p = blockCommentStops_.find(b + pos_, b + end_) - b;
  pos_ = p;
  if (p == end_) return;
  if (b[p] == '\n') {
    lineBreak();
  } else if (ensure(2) && buf_[pos_ + 1] == '/') {
    pos_ += 2;
    state_ = State::Normal;
  } else {
    ++pos_;
  }
}

bool TStatementSplitter::finishStatement(std::string& statement) {
  flushSegment();
  size_t keep = stmt_.size();
  while (keep > 0 && (isBlank(stmt_[keep - 1]) || stmt_[keep - 1] == '\n')) --keep;
  if (!hasCode_ || keep == 0) {
    stmt_.clear();
    return false;
  }
  stmt_.resize(keep);
  statement.swap(stmt_);
  return true;
}

}  // namespace lomarin
