#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// Where a dump's text goes, in pieces as it is produced; line ends are part of the text.
class TDumpSink {
 public:
  virtual ~TDumpSink() = default;
  virtual void write(std::string_view text) = 0;
};

// Collects the script as a list of lines (split at CR LF, the ends left out): the `SQL` of a dump.
class TLinesDumpSink : public TDumpSink {
 public:
  explicit TLinesDumpSink(std::vector<std::string>& lines) : lines_(lines) {}
  ~TLinesDumpSink() override;
  void write(std::string_view text) override;
  // Hands over a last line that has no line end.
  void flush();

 private:
  std::vector<std::string>& lines_;
  std::string partial_;
};

// Writes to an open stream the caller owns (standard output, a pipe).
class TStreamDumpSink : public TDumpSink {
 public:
  explicit TStreamDumpSink(std::FILE* stream) : stream_(stream) {}
  void write(std::string_view text) override;

 private:
  std::FILE* stream_;
};

// Writes "<file>.tmp" beside the file and renames it into place on commit(), so the file is
// never seen half-written; without commit() the temporary file is removed.
class TFileDumpSink : public TDumpSink {
 public:
  // OwnerOnly: the file is readable by its owner alone from its first byte (it holds secrets).
  enum class Access { Default, OwnerOnly };
  // Throws std::runtime_error when the temporary file cannot be created.
  explicit TFileDumpSink(std::filesystem::path file, Access access = Access::Default);
  ~TFileDumpSink() override;
  TFileDumpSink(const TFileDumpSink&) = delete;
  TFileDumpSink& operator=(const TFileDumpSink&) = delete;

  void write(std::string_view text) override;
  void commit();
  const std::filesystem::path& file() const { return file_; }

 private:
  std::filesystem::path file_;
  std::filesystem::path temp_;
  std::FILE* stream_ = nullptr;
  std::vector<char> buffer_;
};

}  // namespace lomarin
