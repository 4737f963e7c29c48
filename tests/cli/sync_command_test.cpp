#include "sync_command.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "cli_options.h"
#include "cli_test_support.h"
#include "engine/connect/my_query.h"
#include "test_server.h"

namespace lomarin::cli {
namespace {

struct SyncRun {
  int status = -1;
  std::string out;
  std::string err;
};

SyncRun sync(std::vector<std::string> extra) {
  std::vector<std::string> args = test::connectionArgs();
  args.insert(args.end(), extra.begin(), extra.end());
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
  SyncRun run;
  run.status = runSync(parseArgs(args), out, err);
  run.out = test::slurp(out);
  run.err = test::slurp(err);
  std::fclose(out);
  std::fclose(err);
  return run;
}

class SyncCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* db : {"cli_sync_a", "cli_sync_b"}) {
      test::sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
      test::sideExec(std::string("CREATE DATABASE ") + db);
      test::sideExec(std::string("CREATE TABLE ") + db + ".t (id INT PRIMARY KEY, v VARCHAR(5), b BLOB)");
      test::sideExec(std::string("CREATE TABLE ") + db + ".only_" + db + " (id INT PRIMARY KEY, v INT)");
    }
    test::sideExec("INSERT INTO cli_sync_a.t VALUES (1, 'a', x'00FF'), (2, 'b', NULL)");
    test::sideExec("INSERT INTO cli_sync_b.t VALUES (2, 'B', NULL), (3, 'c', NULL)");
  }
};

TEST_F(SyncCommand, WritesTheScriptForTablesOfTheSameNameAndExitsByWhatItFound) {
  SyncRun run = sync({"cli_sync_a", "cli_sync_b", "--hex-blob"});
  EXPECT_EQ(1, run.status) << run.err;
  EXPECT_EQ(
      "USE `cli_sync_b`;\r\n"
      "INSERT INTO `t` (`id`, `v`, `b`)\r\nVALUES(1, 'a', 0x00FF);\r\n"
      "UPDATE `t` SET `v`='b'\r\nWHERE `id` = 2;\r\n"
      "DELETE FROM `t` WHERE `id` = 3;\r\n",
      run.out);
  EXPECT_EQ("All: 3, Deleted: 1, Updated: 1, Inserted: 1, Equal: 0.\n", run.err);

  // The script runs in any client as it stands.
  const auto script = std::filesystem::temp_directory_path() / "lomarin_cli_sync.sql";
  run = sync({"cli_sync_a", "cli_sync_b", "--hex-blob", "--result-file=" + script.string()});
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("", run.out);
  std::ifstream in(script, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}).substr(0, 20), "USE `cli_sync_b`;\r\nI");

  run = sync({"cli_sync_a", "cli_sync_b", "--apply", "--tables=t"});
  EXPECT_EQ(2, run.status) << "binary values need a BLOB file or hex literals";
  EXPECT_EQ(
      "Error compare tables t : t BlobFileName is not specified. Cann't save BLOBs.\n"
      "All: 0, Deleted: 0, Updated: 0, Inserted: 0, Equal: 0.\n",
      run.err);

  const auto blobs = std::filesystem::temp_directory_path() / "lomarin_cli_sync.LOB";
  run = sync({"cli_sync_a", "cli_sync_b", "--apply", "--tables=t:t", "--blob-file=" + blobs.string()});
  EXPECT_EQ(1, run.status) << run.err;
  EXPECT_EQ("", run.out);
  auto session = test::connect("cli_sync_b");
  EXPECT_EQ("1|a|00FF,2|b", test::scalar(*session,
                                         "SELECT GROUP_CONCAT(CONCAT_WS('|', id, v, HEX(b)) "
                                         "ORDER BY id) FROM t"));
  run = sync({"cli_sync_a", "cli_sync_b", "--tables=t", "--hex-blob"});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("USE `cli_sync_b`;\r\n", run.out);
}

TEST_F(SyncCommand, AFailingPairLeavesTheOthersAndNamesPairByCaseWhenAsked) {
  test::sideExec("CREATE TABLE cli_sync_a.Mixed (id INT PRIMARY KEY, v INT)");
  test::sideExec("CREATE TABLE cli_sync_b.mixed (id INT PRIMARY KEY, v INT)");
  test::sideExec("INSERT INTO cli_sync_a.Mixed VALUES (1, 1)");
  SyncRun run = sync({"cli_sync_a", "cli_sync_b", "--tables=absent,Mixed:mixed", "--hex-blob"});
  EXPECT_EQ(2, run.status);
  EXPECT_EQ(
      "USE `cli_sync_b`;\r\nINSERT INTO `mixed` (`id`, `v`)\r\nVALUES(1, 1);\r\n",
      run.out);
  EXPECT_EQ(
      "Error compare tables absent : absent Database: cli_sync_a Table: absent not exists.\n"
      "All: 1, Deleted: 0, Updated: 0, Inserted: 1, Equal: 0.\n",
      run.err);

  run = sync({"cli_sync_a", "cli_sync_b", "--hex-blob"});
  EXPECT_EQ(std::string::npos, run.out.find("`mixed`")) << "case differs: not the same table";
  run = sync({"cli_sync_a", "cli_sync_b", "--hex-blob", "--case-insensitive"});
  EXPECT_NE(std::string::npos, run.out.find("INSERT INTO `mixed`"));
}

TEST_F(SyncCommand, RefusesBadUsage) {
  EXPECT_EQ(2, sync({"cli_sync_a"}).status);
  EXPECT_EQ(2, sync({"cli_sync_a", "cli_sync_b", "--fast"}).status);
  EXPECT_EQ(2, sync({"cli_sync_a", "nowhere_db", "--tables=t"}).status);
  EXPECT_EQ(0, sync({"--help"}).status);
}

}  // namespace
}  // namespace lomarin::cli
