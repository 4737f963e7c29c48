#include "engine/dataview/blob_file.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace lomarin::dataview {
namespace {

TEST(BlobFile, HexLinesShowOffsetDigitsAndPrintableText) {
  const THexLine full = HexLine(0x1A2B30, std::string_view("A\0\x7F\xFF z~\n0123456789", 16));
  EXPECT_EQ(full.offset, "001A2B30");
  EXPECT_EQ(full.hex, "41 00 7F FF 20 7A 7E 0A 30 31 32 33 34 35 36 37");
  EXPECT_EQ(full.text, "A... z~.01234567");
  const THexLine tail = HexLine(32, "\x27\x5C");
  EXPECT_EQ(tail.hex, "27 5C");
  EXPECT_EQ(tail.text, "'\\");
}

TEST(BlobFile, WorkFileIsOwnerOnlyAndRoundTripsEveryByte) {
  const auto folder = std::filesystem::temp_directory_path() / ("lomarin-blob-" + std::to_string(::getpid()));
  const auto file = folder / "myfile";
  std::string bytes;
  for (int i = 0; i < 512; ++i) bytes += static_cast<char>(i & 0xFF);
  WriteOwnerOnlyFile(file, "an older, longer value");
  std::filesystem::permissions(file, std::filesystem::perms::all);
  WriteOwnerOnlyFile(file, bytes);
  EXPECT_EQ(ReadFileBytes(file), bytes);
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_THROW(ReadFileBytes(folder / "missing"), std::runtime_error);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace lomarin::dataview
