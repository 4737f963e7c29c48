#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "engine/connect/my_query.h"
#include "engine/dataview/exporters.h"
#include "test_server.h"

namespace lomarin::dataview {
namespace {

std::string hex(std::string_view bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : bytes) {
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out;
}

// What the independent reader finds in the file, in read_export.py's form.
std::string readBack(const std::filesystem::path& file) {
  const std::string command = "python3 " LOMARIN_TEST_SOURCE_DIR "/read_export.py '" + file.string() + "'";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return {};
  std::string out;
  std::array<char, 4096> buffer;
  while (size_t n = fread(buffer.data(), 1, buffer.size(), pipe)) out.append(buffer.data(), n);
  EXPECT_EQ(pclose(pipe), 0) << command;
  return out;
}

// The table as the server holds it, NULL as empty and the BLOB as hex text.
std::string expectedMedia(TMyConnection& session, const std::string& where) {
  std::string out = hex("media_id") + "\t" + hex("product_id") + "\t" + hex("file_name") + "\t" +
                    hex("caption") + "\t" + hex("notes") + "\t" + hex("mime_type") + "\t" + hex("content") +
                    "\n";
  TMyQuery query(session);
  query.SQL =
      "select media_id, ifnull(product_id, ''), file_name, ifnull(caption, ''), ifnull(notes, ''), "
      "mime_type, "
      "ifnull(hex(content), '') from lomarin_demo.product_media " +
      where + " order by media_id";
  query.Open();
  while (query.Next()) {
    for (size_t i = 0; i < 7; ++i) out += (i ? "\t" : "") + hex(query.Value(i));
    out += "\n";
  }
  return out;
}

class ExportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    session = test::connect();
    folder = std::filesystem::temp_directory_path() / ("dataview-export-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  std::unique_ptr<TMyConnection> session;
  std::filesystem::path folder;
};

TEST_F(ExportTest, BlobTableReadsBackEqualFromCsvAndXlsx) {
  const auto csv = folder / "media.csv";
  EXPECT_EQ(ExportQuery(*session, "select * from lomarin_demo.product_media order by media_id",
                        TExportFormat::Csv, csv),
            10u);
  EXPECT_EQ(readBack(csv), expectedMedia(*session, ""));

  // A spreadsheet cell holds at most 32767 characters: the 64 KiB pattern row cannot go there.
  const std::string fitting = "where media_id <> 10";
  const auto xlsx = folder / "media.xlsx";
  EXPECT_EQ(
      ExportQuery(*session, "select * from lomarin_demo.product_media " + fitting + " order by media_id",
                  TExportFormat::Xlsx, xlsx),
      9u);
  EXPECT_EQ(readBack(xlsx), expectedMedia(*session, fitting));
  const auto tooLong = folder / "long.xlsx";
  EXPECT_THROW(
      ExportQuery(*session, "select content from lomarin_demo.product_media", TExportFormat::Xlsx, tooLong),
      std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(tooLong));
  EXPECT_FALSE(std::filesystem::exists(tooLong.string() + ".part"));
}

TEST_F(ExportTest, MarkupFormatsEscapeTextAndNull) {
  const std::string sql =
      "select 1 as n, cast(12345678901234567890.5 as decimal(30,1)) as d, 'a<b & \"c\"' as s, null as z, "
      "x'0001' as b, concat('x', char(1 using utf8mb4)) as ctl";
  std::stringstream html, xml, json, text;
  for (auto [format, out] : {std::pair{TExportFormat::Html, &html}, std::pair{TExportFormat::Xml, &xml},
                             std::pair{TExportFormat::Json, &json}, std::pair{TExportFormat::Text, &text}}) {
    const auto file = folder / ("x" + ExportExtension(format));
    ExportQuery(*session, sql, format, file);
    *out << std::ifstream(file).rdbuf();
  }
  EXPECT_NE(html.str().find("<tr><td>1</td><td>12345678901234567890.5</td><td>a&lt;b &amp; &quot;c&quot;</td>"
                            "<td></td><td>0001</td>"),
            std::string::npos)
      << html.str();
  EXPECT_NE(
      xml.str().find("<row><field name=\"n\">1</field><field name=\"d\">12345678901234567890.5</field>"
                     "<field name=\"s\">a&lt;b &amp; &quot;c&quot;</field><field name=\"z\" null=\"true\"/>"
                     "<field name=\"b\" encoding=\"hex\">0001</field>"
                     "<field name=\"ctl\" encoding=\"hex\">7801</field></row>"),
      std::string::npos)
      << xml.str();
  EXPECT_EQ(json.str(),
            "[\n{\"n\":1,\"d\":12345678901234567890.5,\"s\":\"a<b & \\\"c\\\"\",\"z\":null,\"b\":\"0001\","
            "\"ctl\":\"x\\u0001\"}\n]\n");
  EXPECT_EQ(text.str(),
            std::string("n\td\ts\tz\tb\tctl\n1\t12345678901234567890.5\ta<b & \"c\"\t\t0001\tx\x01\n"));
}

TEST_F(ExportTest, FailedOrStoppedExportLeavesNoFile) {
  const auto file = folder / "bad.csv";
  EXPECT_THROW(ExportQuery(*session, "select * from no_such_table", TExportFormat::Csv, file), ServerError);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  std::atomic<bool> stop{true};
  ExportQuery(*session, "select * from lomarin_demo.order_items", TExportFormat::Csv, file, {{}, &stop});
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

}  // namespace
}  // namespace lomarin::dataview
