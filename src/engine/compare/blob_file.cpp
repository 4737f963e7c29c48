#include "engine/compare/blob_file.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace lomarin {

namespace {

constexpr std::string_view kSetBlobFile = "SET BLOBFILE ";
constexpr char kHexDigits[] = "0123456789ABCDEF";

bool startsWithNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i)
    if (std::toupper(static_cast<unsigned char>(text[i])) != prefix[i]) return false;
  return true;
}

// End of the quoted text or comment that starts at i, or i when none starts there.
size_t skipQuotedOrComment(std::string_view s, size_t i) {
  const char c = s[i];
  if (c == '\'' || c == '"' || c == '`') {
    for (size_t j = i + 1; j < s.size(); ++j) {
      if (s[j] == '\\' && c != '`') {
        ++j;
      } else if (s[j] == c) {
        if (j + 1 < s.size() && s[j + 1] == c) {
          ++j;
        } else {
          return j + 1;
        }
      }
    }
    return s.size();
  }
  if (c == '#' || (c == '-' && s.substr(i, 3) == "-- ")) {
    const size_t end = s.find('\n', i);
    return end == std::string_view::npos ? s.size() : end + 1;
  }
  if (s.substr(i, 2) == "/*") {
    const size_t end = s.find("*/", i + 2);
    return end == std::string_view::npos ? s.size() : end + 2;
  }
  return i;
}

bool parseNumber(std::string_view s, size_t& at, uint64_t& value) {
  const auto r = std::from_chars(s.data() + at, s.data() + s.size(), value);
  if (r.ec != std::errc() || r.ptr == s.data() + at) return false;
  at = static_cast<size_t>(r.ptr - s.data());
  return true;
}

}  // namespace

TBlobFileWriter::TBlobFileWriter(std::string path)
    : path_(std::move(path)),
      temporary_(path_ + ".tmp"),
      out_(temporary_, std::ios::binary | std::ios::trunc) {
  if (!out_) throw std::runtime_error("Cannot write the BLOB file " + temporary_);
}

TBlobFileWriter::~TBlobFileWriter() {
  if (committed_) return;
  out_.close();
  std::error_code ignored;
  std::filesystem::remove(temporary_, ignored);
}

std::string TBlobFileWriter::append(std::string_view bytes) {
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out_) throw std::runtime_error("Cannot write the BLOB file " + temporary_);
  std::string reference = ":h" + std::to_string(size_) + "_" + std::to_string(bytes.size());
  size_ += bytes.size();
  return reference;
}

void TBlobFileWriter::Commit() {
  out_.close();
  if (!out_) throw std::runtime_error("Cannot write the BLOB file " + temporary_);
  std::filesystem::rename(temporary_, path_);
  committed_ = true;
}

TBlobFileReader::TBlobFileReader(const std::string& path) : path_(path), in_(path, std::ios::binary) {
  if (!in_) throw std::runtime_error("Cannot read the BLOB file " + path);
  size_ = std::filesystem::file_size(path);
}

std::string TBlobFileReader::read(uint64_t offset, uint64_t length) {
  if (offset > size_ || length > size_ - offset)
    throw std::runtime_error("The BLOB file " + path_ + " is shorter than the script says");
  std::string bytes(length, '\0');
  in_.seekg(static_cast<std::streamoff>(offset));
  in_.read(bytes.data(), static_cast<std::streamsize>(length));
  if (!in_) throw std::runtime_error("Cannot read the BLOB file " + path_);
  return bytes;
}

std::string TBlobFileReader::Expand(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  size_t i = 0;
  while (i < s.size()) {
    const size_t skipped = skipQuotedOrComment(s, i);
    if (skipped != i) {
      out.append(s.substr(i, skipped - i));
      i = skipped;
      continue;
    }
    size_t at = i + 2;
    uint64_t offset = 0, length = 0;
    if (s.substr(i, 2) == ":h" && parseNumber(s, at, offset) && at < s.size() && s[at] == '_' &&
        parseNumber(s, ++at, length)) {
      out += "0x";
      for (unsigned char b : read(offset, length)) {
        out += kHexDigits[b >> 4];
        out += kHexDigits[b & 15];
      }
      i = at;
      continue;
    }
    out += s[i++];
  }
  return out;
}

std::string BlobFileOfStatement(std::string_view statement) {
  while (!statement.empty() && std::isspace(static_cast<unsigned char>(statement.front())))
    statement.remove_prefix(1);
  while (!statement.empty() &&
         (std::isspace(static_cast<unsigned char>(statement.back())) || statement.back() == ';'))
    statement.remove_suffix(1);
  if (!startsWithNoCase(statement, kSetBlobFile)) return {};
  std::string_view name = statement.substr(kSetBlobFile.size());
  if (name.size() >= 2 && name.front() == '\'' && name.back() == '\'') name = name.substr(1, name.size() - 2);
  std::string path;
  for (size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '\'' && i + 1 < name.size() && name[i + 1] == '\'') ++i;
    path += name[i];
  }
  return path;
}

std::string SetBlobFileStatement(const std::string& path) {
  std::string quoted;
  for (char c : path) {
    if (c == '\'') quoted += '\'';
    quoted += c;
  }
  return "SET BLOBFILE '" + quoted + "'";
}

}  // namespace lomarin
