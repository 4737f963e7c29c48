#include "engine/dataview/blob_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace lomarin::dataview {

namespace {

[[noreturn]] void fail(const std::filesystem::path& file, const char* what, int error) {
  throw std::runtime_error(std::string("Cannot ") + what + " " + file.string() + ": " + std::strerror(error));
}

}  // namespace

void WriteOwnerOnlyFile(const std::filesystem::path& file, std::string_view bytes) {
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  std::filesystem::path temp = file;
  temp += ".tmp";
  std::filesystem::remove(temp, ignored);
  const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) fail(temp, "create", errno);
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      const int error = errno;
      ::close(fd);
      std::filesystem::remove(temp, ignored);
      fail(temp, "write", error);
    }
    done += static_cast<size_t>(n);
  }
  if (::close(fd) != 0 || std::rename(temp.c_str(), file.c_str()) != 0) {
    const int error = errno;
    std::filesystem::remove(temp, ignored);
    fail(file, "write", error);
  }
}

std::string ReadFileBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) fail(file, "read", errno);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) fail(file, "read", errno);
  return bytes;
}

THexLine HexLine(uint64_t offset, std::string_view bytes) {
  static const char digits[] = "0123456789ABCDEF";
  THexLine line;
  for (int shift = 28; shift >= 0; shift -= 4) line.offset += digits[(offset >> shift) & 15];
  for (size_t i = 0; i < bytes.size() && i < kHexBytesPerLine; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (i > 0) line.hex += ' ';
    line.hex += digits[byte >> 4];
    line.hex += digits[byte & 15];
    line.text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
  }
  return line;
}

}  // namespace lomarin::dataview
