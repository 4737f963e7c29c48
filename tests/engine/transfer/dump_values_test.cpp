#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <random>

#include "dump_fixture.h"
#include "engine/connect/float_text.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {
namespace {

using test::DumpFixture;

const std::vector<std::string> kTypes = {
    "CREATE TABLE v (id INT NOT NULL PRIMARY KEY, i BIGINT UNSIGNED NULL, d DECIMAL(30,10) NULL, f FLOAT "
    "NULL,"
    " g DOUBLE NULL, dt DATE NULL, tm TIME(3) NULL, dtm DATETIME(6) NULL, ts TIMESTAMP NULL, y YEAR NULL,"
    " b BIT(10) NULL, s VARCHAR(50) NULL, bin VARBINARY(20) NULL, e ENUM('a','b') NULL, st SET('x','y') NULL,"
    " u VARCHAR(20) CHARACTER SET utf8mb4 NULL, p POINT NULL, twice INT AS (id * 2) VIRTUAL) ENGINE=InnoDB",
    "SET time_zone = '+02:00'",
    "INSERT INTO v (id, i, d, f, g, dt, tm, dtm, ts, y, b, s, bin, e, st, u, p) VALUES"
    " (1, 18446744073709551615, -12345678901234567890.0123456789, 0.1, 1.7976931348623157e308, '2024-02-29',"
    " '-838:59:59.500', '2024-01-02 03:04:05.123456', '2024-06-01 14:00:00', 2155, b'1010000001',"
    " CONCAT('It''s\\n\\\\ \"q\"', CHAR(0), CHAR(26)), X'00FF27', 'b', 'x,y', "
    "'\xF0\x9F\x98\x80\xF0\x9D\x84\x9E', POINT(1, 2)),"
    " (2, 0, 0, -0.5, 2.5e-300, '0000-00-00', '00:00:00', '0000-00-00 00:00:00', '0000-00-00 00:00:00', 0, "
    "b'0',"
    " '', X'', 'a', '', '', NULL),"
    " (3, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL)",
};

const std::string kColumns =
    "INSERT INTO v(id, i, d, f, g, dt, tm, dtm, ts, y, b, s, bin, e, st, u, p) VALUES\r\n";
const std::string kRow1Head =
    "(1, 18446744073709551615, -12345678901234567890.0123456789, 0.1, 1.7976931348623157e308, '2024-02-29', "
    "'-838:59:59.500', '2024-01-02 03:04:05.123456', '2024-06-01 12:00:00', 2155, b'1010000001', "
    "'It\\'s\\n\\\\ \\\"q\\\"\\0\\Z', ";
const std::string kRow1Tail = ", 'b', 'x,y', '\xF0\x9F\x98\x80\xF0\x9D\x84\x9E', ";
const std::string kRow2Head =
    "(2, 0, 0.0000000000, -0.5, 2.5e-300, '0000-00-00', '00:00:00.000', '0000-00-00 00:00:00.000000', "
    "'0000-00-00 00:00:00', 0000, b'0', '', ";
const std::string kRow3 =
    "(3, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, "
    "NULL);\r\n";

std::vector<std::string> checksums(TMyConnection& session) {
  TMyQuery query(session);
  query.SQL = "CHECKSUM TABLE v";
  query.Open();
  std::vector<std::string> sums;
  while (query.Next()) sums.emplace_back(query.Value(1));
  return sums;
}

TEST(DumpValues, LiteralsAsStoredAndTheyLoadBack) {
  DumpFixture f("dump_values", kTypes);
  // The user's own zone is not UTC; timestamps are written in UTC all the same and the zone is kept.
  ExecSQLText(*f.session, "SET time_zone = '+05:00'");
  f.dump.Objects = TMyDumpObjects(TMyDumpObject::doTables) | TMyDumpObject::doData;
  f.dump.Options.GenerateHeader = false;
  const auto before = checksums(*f.session);
  for (bool hex : {false, true}) {
    SCOPED_TRACE(hex ? "HexBlob" : "escaped binary");
    f.dump.Options.HexBlob = hex;
    const std::string script = f.script();
    EXPECT_EQ(test::scalar(*f.session, "SELECT @@session.time_zone"), "+05:00");
    const std::string point =
        hex ? "0x000000000101000000000000000000F03F0000000000000040"
            : std::string("'\\0\\0\\0\\0\1\1\\0\\0\\0\\0\\0\\0\\0\\0\\0\xF0?\\0\\0\\0\\0\\0\\0\\0@'");
    const std::string rows = kColumns + kRow1Head + (hex ? "0x00FF27" : "'\\0\xFF\\''") + kRow1Tail + point +
                             "),\r\n" + kRow2Head + "''" + ", 'a', '', '', NULL),\r\n" + kRow3;
    EXPECT_NE(script.find("LOCK TABLES v WRITE;\r\n" + rows + "UNLOCK TABLES;\r\n"), std::string::npos)
        << script;

    ExecSQLText(*f.session, "DROP TABLE v");
    TMyScript run(*f.session);
    run.SQL = script;
    run.Execute();
    EXPECT_EQ(checksums(*f.session), before);
    EXPECT_EQ(test::scalar(*f.session, "SELECT CONCAT(twice, ' ', ts) FROM v WHERE id = 1"),
              "2 2024-06-01 17:00:00");
    EXPECT_EQ(test::scalar(*f.session, "SELECT @@session.time_zone"), "+05:00");
  }
}

std::string floatLiteral(std::string_view exactDouble) {
  std::string out;
  AppendFloatLiteral(out, exactDouble);
  return out;
}

TEST(DumpValues, FloatsAreWrittenAsTheShortestTextThatLoadsBack) {
  // The server's DOUBLE text of a FLOAT value, as the dump reads it, and what the script holds.
  EXPECT_EQ(floatLiteral("1234567"), "1234567");
  EXPECT_EQ(floatLiteral("0.10000000149011612"), "0.1");
  EXPECT_EQ(floatLiteral("-0.5"), "-0.5");
  EXPECT_EQ(floatLiteral("16777216"), "16777216");
  EXPECT_EQ(floatLiteral("1.401298464324817e-45"), "1e-45");
  EXPECT_EQ(floatLiteral("1.1754943508222875e-38"), "1.1754944e-38");
  // The largest FLOAT's shortest text is beyond the range the server accepts for a FLOAT.
  EXPECT_EQ(floatLiteral("3.4028234663852886e38"), "3.4028234663852886e38");
  EXPECT_EQ(floatLiteral("0.1"), "0.1") << "not a FLOAT value: written as it came";

  // Any FLOAT: the text reads back, through DOUBLE as the server reads it, to the same value.
  std::mt19937 random(20240506);
  for (int i = 0; i < 200000; ++i) {
    const auto value = std::bit_cast<float>(static_cast<uint32_t>(random()));
    if (!std::isfinite(value)) continue;
    char wide[32];
    const auto end = std::to_chars(wide, wide + sizeof wide, static_cast<double>(value)).ptr;
    const std::string text = floatLiteral(std::string_view(wide, end - wide));
    double reread = 0;
    ASSERT_EQ(std::from_chars(text.data(), text.data() + text.size(), reread).ec, std::errc()) << text;
    ASSERT_LE(std::abs(reread), std::numeric_limits<float>::max()) << text;
    ASSERT_EQ(static_cast<float>(reread), value) << text;
    ASSERT_LE(text.size(), static_cast<size_t>(end - wide)) << text;
  }
}

}  // namespace
}  // namespace lomarin
