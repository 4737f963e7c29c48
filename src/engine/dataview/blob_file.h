#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace lomarin::dataview {

// Writes the bytes through a temporary file beside `file` that only its owner can read, then
// renames it into place: a BLOB may hold anything, and the work file lives in a shared folder tree.
// Throws std::runtime_error.
void WriteOwnerOnlyFile(const std::filesystem::path& file, std::string_view bytes);
// The whole file, byte for byte. Throws std::runtime_error.
std::string ReadFileBytes(const std::filesystem::path& file);

// One line of the hexadecimal view: the offset, the bytes as pairs of hex digits and as text
// (a point for every byte outside printable ASCII).
struct THexLine {
  std::string offset;
  std::string hex;
  std::string text;
};
inline constexpr int kHexBytesPerLine = 16;
THexLine HexLine(uint64_t offset, std::string_view bytes);

}  // namespace lomarin::dataview
