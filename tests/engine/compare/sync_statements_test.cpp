#include "engine/compare/sync_statements.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "engine/compare/blob_file.h"
#include "test_server.h"
#include "test_ssh_server.h"

namespace lomarin {
namespace {

class SyncStatementsTest : public ::testing::Test {
 protected:
  void SetUp() override { session = test::connect(); }
  std::unique_ptr<TMyConnection> session;
};

TEST_F(SyncStatementsTest, StatementsAsTheScriptWritesThem) {
  const TSyncValueWriter values{*session};
  const std::vector<TSyncValue> key = {{"`id`", TSyncValueKind::Number, "-7", false},
                                       {"`code`", TSyncValueKind::Text, {}, true}};
  const std::vector<TSyncValue> row = {
      {"`id`", TSyncValueKind::Number, "18446744073709551615", false},
      {"`name`", TSyncValueKind::Text, "O'Brien \\ \"x\"\n", false},
      {"`born`", TSyncValueKind::Temporal, "1999-12-31", false},
      {"`at`", TSyncValueKind::Temporal, "2024-02-29 23:59:59.000001", false},
      {"`t`", TSyncValueKind::Temporal, "-838:59:59", false},
      {"`price`", TSyncValueKind::Number, "12345678901234567890123456789.0123456789", false},
      {"`ratio`", TSyncValueKind::Double, "0.1", false},
      {"`flags`", TSyncValueKind::Bit, std::string_view("\x00\x05", 2), false},
      {"`raw`", TSyncValueKind::Binary, std::string_view("\x00\xFF", 2), false},
      {"`note`", TSyncValueKind::Text, {}, true},
  };
  EXPECT_EQ(
      "INSERT INTO `t` (`id`, `name`, `born`, `at`, `t`, `price`, `ratio`, `flags`, `raw`, `note`)\r\n"
      "VALUES(18446744073709551615, 'O\\'Brien \\\\ \\\"x\\\"\\n', '1999-12-31', '2024-02-29 "
      "23:59:59.000001', "
      "'-838:59:59', 12345678901234567890123456789.0123456789, 0.1, b'101', 0x00FF, Null);",
      InsertStatement("`t`", row, values));
  EXPECT_EQ("UPDATE `t` SET `name`='a',\r\n`note`=Null\r\nWHERE `id` = -7 and `code` is Null;",
            UpdateStatement("`t`", {{"`name`", TSyncValueKind::Text, "a", false}, row.back()}, key, values));
  EXPECT_EQ("DELETE FROM `t` WHERE `id` = -7 and `code` is Null;", DeleteStatement("`t`", key, values));
}

TEST_F(SyncStatementsTest, FloatingPointKeepsTheFormatOnlyWhileItIsExact) {
  EXPECT_EQ("1.5", FloatingLiteral("1.5", false));
  EXPECT_EQ("-0.00001", FloatingLiteral("-1e-5", false));
  EXPECT_EQ("123456789012.5", FloatingLiteral("123456789012.5", false));
  // More digits than eleven decimals or a magnitude the fixed format cannot hold: the exact text.
  EXPECT_EQ("0.1234567890123", FloatingLiteral("0.1234567890123", false));
  EXPECT_EQ("1e-300", FloatingLiteral("1e-300", false));
  EXPECT_EQ("1.7976931348623157e+308", FloatingLiteral("1.7976931348623157e308", false));
  EXPECT_EQ("0.30000000000000004", FloatingLiteral("0.30000000000000004", false));
  // FLOAT arrives widened to DOUBLE; its literal must round back to the same FLOAT.
  EXPECT_EQ("0.10000000149", FloatingLiteral("0.10000000149011612", true));
  // The shortest FLOAT text of FLT_MAX reads as a DOUBLE beyond the FLOAT range: exact text instead.
  EXPECT_EQ("3.4028234663852886e38", FloatingLiteral("3.4028234663852886e38", true));
  EXPECT_EQ("1e-45", FloatingLiteral("1.401298464324817e-45", true));
}

TEST_F(SyncStatementsTest, HeaderNamesOnlyWhatIsSet) {
  EXPECT_EQ("", ScriptHeader({}));
  EXPECT_EQ(
      "SET CHARACTER SET utf8mb4;\r\nSET NAMES utf8mb4;\r\nUSE `shop`;\r\nSET BLOBFILE 'it''s.LOB';\r\n",
      ScriptHeader({"utf8mb4", "utf8mb4", "`shop`", "it's.LOB"}));
  EXPECT_EQ("USE shop;\r\n", ScriptHeader({{}, {}, "shop", {}}));
}

TEST(BlobFileTest, ReferencesReadBackOutsideQuotesOnly) {
  test::TempFolder folder;
  const std::string path = (folder.path() / "data.LOB").string();
  std::string first, second;
  {
    TBlobFileWriter writer(path);
    first = writer.append(std::string("\x00\x01", 2));
    second = writer.append("xyz");
    EXPECT_FALSE(std::filesystem::exists(path)) << "visible before it is complete";
    writer.Commit();
  }
  EXPECT_EQ(":h0_2", first);
  EXPECT_EQ(":h2_3", second);
  EXPECT_EQ(path, BlobFileOfStatement("  SET BLOBFILE '" + path + "';\r\n"));
  EXPECT_EQ("", BlobFileOfStatement("SET NAMES utf8"));

  TBlobFileReader reader(path);
  EXPECT_EQ("UPDATE t SET b=0x78797A, c=':h0_2', d=`:h0_2` /* :h0_2 */\r\nWHERE k = 0x0001;",
            reader.Expand("UPDATE t SET b=:h2_3, c=':h0_2', d=`:h0_2` /* :h0_2 */\r\nWHERE k = :h0_2;"));
  EXPECT_THROW(reader.Expand("SELECT :h4_2"), std::runtime_error);
}

}  // namespace
}  // namespace lomarin
