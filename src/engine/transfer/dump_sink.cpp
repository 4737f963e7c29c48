#include "engine/transfer/dump_sink.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace lomarin {

namespace {

[[noreturn]] void failOn(const std::filesystem::path& file, const char* what) {
  throw std::runtime_error(std::string("Cannot ") + what + " " + file.string() + ": " + std::strerror(errno));
}

void writeAll(std::FILE* stream, std::string_view text, const std::filesystem::path& file) {
  if (!text.empty() && std::fwrite(text.data(), 1, text.size(), stream) != text.size()) failOn(file, "write");
}

}  // namespace

TLinesDumpSink::~TLinesDumpSink() { flush(); }

void TLinesDumpSink::write(std::string_view text) {
  // A CR LF may be split between two writes: search from the last unfinished character.
  const size_t from = partial_.empty() ? 0 : partial_.size() - 1;
  partial_.append(text);
  size_t start = 0;
  for (size_t end = partial_.find("\r\n", from); end != std::string::npos;
       end = partial_.find("\r\n", start)) {
    lines_.emplace_back(partial_, start, end - start);
    start = end + 2;
  }
  partial_.erase(0, start);
}

void TLinesDumpSink::flush() {
  if (partial_.empty()) return;
  lines_.push_back(std::move(partial_));
  partial_.clear();
}

void TStreamDumpSink::write(std::string_view text) { writeAll(stream_, text, "standard output"); }

TFileDumpSink::TFileDumpSink(std::filesystem::path file, Access access)
    : file_(std::move(file)), temp_(file_.string() + ".tmp"), buffer_(1 << 20) {
  const mode_t mode = access == Access::OwnerOnly ? 0600 : 0666;
  // A temporary file left by an earlier run would keep its own permissions.
  std::error_code ignored;
  std::filesystem::remove(temp_, ignored);
  const int fd = ::open(temp_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  if (fd < 0) failOn(temp_, "create");
  stream_ = fdopen(fd, "wb");
  if (!stream_) {
    ::close(fd);
    failOn(temp_, "create");
  }
  std::setvbuf(stream_, buffer_.data(), _IOFBF, buffer_.size());
}

TFileDumpSink::~TFileDumpSink() {
  if (!stream_) return;
  std::fclose(stream_);
  std::error_code ignored;
  std::filesystem::remove(temp_, ignored);
}

void TFileDumpSink::write(std::string_view text) {
  if (!stream_) throw std::logic_error("dump file already committed");
  writeAll(stream_, text, temp_);
}

void TFileDumpSink::commit() {
  if (!stream_) return;
  const bool flushed = std::fflush(stream_) == 0 && fsync(fileno(stream_)) == 0;
  std::FILE* stream = stream_;
  stream_ = nullptr;
  if (std::fclose(stream) != 0 || !flushed) {
    const int error = errno;
    std::error_code ignored;
    std::filesystem::remove(temp_, ignored);
    errno = error;
    failOn(temp_, "write");
  }
  std::error_code renamed;
  std::filesystem::rename(temp_, file_, renamed);
  if (renamed) {
    std::error_code ignored;
    std::filesystem::remove(temp_, ignored);
    throw std::runtime_error("Cannot rename " + temp_.string() + " to " + file_.string() + ": " +
                             renamed.message());
  }
}

}  // namespace lomarin
