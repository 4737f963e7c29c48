#include "compare_command.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "cli_options.h"
#include "cli_test_support.h"

namespace lomarin::cli {
namespace {

struct CompareRun {
  int status = -1;
  std::string out;
  std::string err;
};

CompareRun compare(std::vector<std::string> extra) {
  std::vector<std::string> args = test::connectionArgs();
  args.insert(args.end(), extra.begin(), extra.end());
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
  CompareRun run;
  run.status = runCompare(parseArgs(args), out, err);
  run.out = test::slurp(out);
  run.err = test::slurp(err);
  std::fclose(out);
  std::fclose(err);
  return run;
}

const std::string kSections =
    "/* Drop Index... */\r\n/* Create index... */\r\n/* Alter index (Drop, Create)... */\r\n"
    "/* Create check(not null)... */\r\n/* Create Default... */\r\n/* Create Primary Key... */\r\n"
    "/* Create Unique... */\r\n/* Create Foreign Key... */\r\n/* Create Check... */\r\n"
    "/* Create event... */\r\n/* Alter event... */\r\n/* Drop event... */\r\n";

class CompareCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* db : {"cli_cmp_a", "cli_cmp_b"}) {
      test::sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
      test::sideExec(std::string("CREATE DATABASE ") + db + " DEFAULT CHARACTER SET utf8mb4");
    }
    test::sideExec("CREATE TABLE cli_cmp_a.t (id INT NOT NULL PRIMARY KEY, v VARCHAR(5) NOT NULL)");
    test::sideExec("CREATE TABLE cli_cmp_b.t (id INT NOT NULL PRIMARY KEY, v VARCHAR(9) NOT NULL)");
    test::sideExec("INSERT INTO cli_cmp_b.t VALUES (1, 'kept')");
  }
  std::filesystem::path dir = std::filesystem::temp_directory_path() / "lomarin_cli_compare";
};

TEST_F(CompareCommand, WritesTheScriptAndExitsLikeDiff) {
  CompareRun run = compare({"cli_cmp_a", "cli_cmp_b", "--objects=table"});
  EXPECT_EQ(1, run.status) << run.err;
  EXPECT_EQ(
      "USE `cli_cmp_b`;\r\n"
      "ALTER TABLE `t` MODIFY `v` varchar(5) NOT NULL;\r\n"
      "/* Create event... */\r\n/* Alter event... */\r\n/* Drop event... */\r\n",
      run.out);
  EXPECT_EQ("", run.err);

  run = compare({"cli_cmp_a", "cli_cmp_a"});
  EXPECT_EQ(0, run.status) << run.err;
  EXPECT_EQ("USE `cli_cmp_a`;\r\n" + kSections, run.out);
}

TEST_F(CompareCommand, ReadsScriptFilesAndAppliesToALiveTarget) {
  std::filesystem::create_directories(dir);
  const auto file = (dir / "source.sql").string();
  std::ofstream(file)
      << "CREATE TABLE t (id INT NOT NULL, v VARCHAR(5) NOT NULL, w INT, PRIMARY KEY (id));\n";
  const auto result = (dir / "result.sql").string();
  CompareRun run = compare({file, "cli_cmp_b", "--result-file=" + result, "--names=utf8mb4"});
  EXPECT_EQ(1, run.status) << run.err;
  EXPECT_EQ("", run.out);
  std::ifstream in(result, std::ios::binary);
  const std::string written((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_TRUE(
      written.starts_with("SET NAMES utf8mb4;\r\nUSE `cli_cmp_b`;\r\n/* Drop Index... */\r\n"
                          "ALTER TABLE `t` MODIFY `v` varchar(5) NOT NULL;\r\n"
                          "ALTER TABLE `t` ADD `w` int AFTER `v`;\r\n"))
      << written;

  run = compare({file, "cli_cmp_b", "--apply"});
  EXPECT_EQ(1, run.status) << run.err;
  EXPECT_EQ("< Script executed succesfully! >\n", run.err);
  EXPECT_EQ(0, compare({file, "cli_cmp_b"}).status);
  auto session = test::connect("cli_cmp_b");
  EXPECT_EQ("kept", test::scalar(*session, "SELECT v FROM t WHERE id = 1"));
}

TEST_F(CompareCommand, ErrorsExitWithTwo) {
  CompareRun run = compare({"cli_cmp_a", "no_such_database"});
  EXPECT_EQ(2, run.status);
  EXPECT_NE(std::string::npos, run.err.find("no_such_database")) << run.err;

  run = compare({"cli_cmp_a", "cli_cmp_b", "--objects=table,tables"});
  EXPECT_EQ(2, run.status);
  EXPECT_TRUE(run.err.starts_with("lomarin-cli compare: unknown kind \"tables\" in --objects\n")) << run.err;

  std::filesystem::create_directories(dir);
  const auto file = (dir / "target.sql").string();
  std::ofstream(file) << "CREATE TABLE t (id INT);\n";
  run = compare({"cli_cmp_a", file, "--apply"});
  EXPECT_EQ(2, run.status);
  EXPECT_EQ("lomarin-cli compare: --apply needs a database as TARGET\n", run.err);
}

}  // namespace
}  // namespace lomarin::cli
