#include <gtest/gtest.h>

#include "cli_options.h"
#include "cli_test_support.h"
#include "query_command.h"
#include "test_server.h"
#include "tsv_writer.h"

namespace lomarin::cli {
namespace {

using test::connectionArgs;

TEST(CliOptions, MariadbLongNamesInBothForms) {
  auto a = parseArgs({"--host=db.example", "--port", "3307", "--user=u", "--password=p=w", "--database",
                      "shop", "--ssl-ca=/ca.pem", "--compress", "select 1", "--optimize"});
  EXPECT_EQ(a.connection.Server, "db.example");
  EXPECT_EQ(a.connection.Port, 3307);
  EXPECT_EQ(a.connection.Username, "u");
  EXPECT_EQ(a.connection.Password, "p=w");
  EXPECT_EQ(a.connection.Database, "shop");
  EXPECT_EQ(a.connection.SSL.CACert, "/ca.pem");
  EXPECT_TRUE(a.connection.UseSSL);
  EXPECT_TRUE(a.connection.Compress);
  EXPECT_EQ(a.positional, std::vector<std::string>{"select 1"});
  EXPECT_EQ(a.flags, std::vector<std::string>{"--optimize"});
  EXPECT_THROW(parseArgs({"--port=http"}), std::invalid_argument);
  EXPECT_THROW(parseArgs({"--user"}), std::invalid_argument);
}

TEST(TsvWriter, EscapesLikeTheBatchClient) {
  EXPECT_EQ(TsvWriter::escape(std::string_view("a\tb\nc\\d\0e", 9)), "a\\tb\\nc\\\\d\\0e");
  EXPECT_EQ(TsvWriter::escape("plain"), "plain");
}

TEST(QueryCommand, PrintsRowsTabSeparatedAndServerErrorsWithTheirNumber) {
  auto args = connectionArgs();
  args.push_back("SELECT 1 AS a, NULL AS b, 'x\ty' AS c UNION ALL SELECT 2, 'n', ''");
  const auto rows = test::runQueryCommand(args);
  EXPECT_EQ(rows.code, 0);
  EXPECT_EQ(rows.out, "a\tb\tc\n1\tNULL\tx\\ty\n2\tn\t\n");
  EXPECT_EQ(rows.err, "");

  args.back() = "SELECT * FROM mysql.no_such_table";
  const auto refused = test::runQueryCommand(args);
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.err, "ERROR 1146 (42S02): Table 'mysql.no_such_table' doesn't exist\n");
}

}  // namespace
}  // namespace lomarin::cli
