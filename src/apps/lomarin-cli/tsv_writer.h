#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace lomarin::cli {

// Tab-separated output in the mariadb client's batch form: NULL as "NULL", and backslash, tab,
// newline and NUL written as \\, \t, \n and \0. Buffered, so millions of rows cost few writes.
class TsvWriter {
 public:
  explicit TsvWriter(std::FILE* out) : out_(out) { buffer_.reserve(kFlushAt + 4096); }
  ~TsvWriter() { flush(); }

  void field(std::string_view value, bool isNull, bool first);
  void endRow();
  void flush();

  static std::string escape(std::string_view value);

 private:
  static constexpr size_t kFlushAt = 1 << 20;
  std::FILE* out_;
  std::string buffer_;
};

}  // namespace lomarin::cli
