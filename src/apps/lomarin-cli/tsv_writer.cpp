#include "tsv_writer.h"

#include <algorithm>

namespace lomarin::cli {

namespace {

bool needsEscape(char c) { return c == '\\' || c == '\t' || c == '\n' || c == '\0'; }

void appendEscaped(std::string& out, std::string_view value) {
  size_t start = 0;
  for (size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    if (!needsEscape(c)) continue;
    out.append(value.data() + start, i - start);
    out.push_back('\\');
    out.push_back(c == '\t' ? 't' : c == '\n' ? 'n' : c == '\0' ? '0' : '\\');
    start = i + 1;
  }
  out.append(value.data() + start, value.size() - start);
}

}  // namespace

std::string TsvWriter::escape(std::string_view value) {
  std::string out;
  appendEscaped(out, value);
  return out;
}

void TsvWriter::field(std::string_view value, bool isNull, bool first) {
  if (!first) buffer_.push_back('\t');
  if (isNull) {
    buffer_.append("NULL");
  } else if (std::none_of(value.begin(), value.end(), needsEscape)) {
    buffer_.append(value);
  } else {
    appendEscaped(buffer_, value);
  }
}

void TsvWriter::endRow() {
  buffer_.push_back('\n');
  if (buffer_.size() >= kFlushAt) flush();
}

void TsvWriter::flush() {
  if (!buffer_.empty()) std::fwrite(buffer_.data(), 1, buffer_.size(), out_);
  buffer_.clear();
  std::fflush(out_);
}

}  // namespace lomarin::cli
