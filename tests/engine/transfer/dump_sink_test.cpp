#include "engine/transfer/dump_sink.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "dump_fixture.h"
#include "engine/transfer/dump_catalog.h"

namespace lomarin {
namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(DumpSinks, LinesSplitAtCrLfOnlyAndKeepBareLineFeeds) {
  std::vector<std::string> lines;
  TLinesDumpSink sink(lines);
  sink.write("a\r");
  sink.write("\nb\nc\r\n\r\nd");
  sink.flush();
  EXPECT_EQ(lines, (std::vector<std::string>{"a", "b\nc", "", "d"}));
}

TEST(DumpSinks, FileAppearsOnlyWhenComplete) {
  const fs::path dir = fs::temp_directory_path() / "lomarin-dump-sink";
  fs::remove_all(dir);
  fs::create_directories(dir);
  const fs::path file = dir / "shop.sql";
  {
    std::ofstream(file) << "old script";
    TFileDumpSink sink(file);
    sink.write("SELECT 1;\r\n");
    EXPECT_TRUE(fs::exists(dir / "shop.sql.tmp"));
    EXPECT_EQ(readFile(file), "old script");
    sink.commit();
  }
  EXPECT_EQ(readFile(file), "SELECT 1;\r\n");
  EXPECT_FALSE(fs::exists(dir / "shop.sql.tmp"));
  {
    TFileDumpSink abandoned(file);
    abandoned.write("half");
  }
  EXPECT_EQ(readFile(file), "SELECT 1;\r\n") << "a run that fails leaves the previous file alone";
  EXPECT_FALSE(fs::exists(dir / "shop.sql.tmp"));
  EXPECT_THROW(TFileDumpSink(dir / "missing" / "x.sql"), std::runtime_error);
  fs::remove_all(dir);
}

TEST(DumpSinks, OwnerOnlyFileIsNeverReadableByOthers) {
  const fs::path dir = fs::temp_directory_path() / "lomarin-dump-sink-private";
  fs::remove_all(dir);
  fs::create_directories(dir);
  const fs::path file = dir / "users.sql";
  std::ofstream(file) << "old";
  fs::permissions(
      file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::others_read);
  // A temporary file an earlier run left behind, readable by all.
  std::ofstream(dir / "users.sql.tmp") << "stale";
  fs::permissions(dir / "users.sql.tmp", fs::perms::all);
  const auto others = fs::perms::group_all | fs::perms::others_all;
  {
    TFileDumpSink sink(file, TFileDumpSink::Access::OwnerOnly);
    EXPECT_EQ(fs::status(dir / "users.sql.tmp").permissions() & others, fs::perms::none);
    sink.write("GRANT USAGE ON *.* TO `a`@`%` IDENTIFIED BY PASSWORD '*0';\r\n");
    sink.commit();
  }
  EXPECT_EQ(fs::status(file).permissions() & fs::perms::all, fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(readFile(file), "GRANT USAGE ON *.* TO `a`@`%` IDENTIFIED BY PASSWORD '*0';\r\n");
  fs::remove_all(dir);
}

TEST(DumpNames, ListsTrimBlanksAndDatabaseSuffix) {
  EXPECT_EQ(SplitNames("a,b.shop, c ", "shop"), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(SplitNames("a.other,,", "shop"), (std::vector<std::string>{"a.other"}));
  EXPECT_TRUE(SplitNames(" ", "shop").empty());
  // Names holding a comma or back-quote travel back-quoted.
  const std::vector<std::string> odd = {"a, b", "x`y", " lead"};
  std::string list;
  for (const auto& name : odd) list += ListedName(name) + ".shop,";
  EXPECT_EQ(list, "`a, b`.shop,`x``y`.shop,` lead`.shop,");
  EXPECT_EQ(SplitNames(list, "shop"), odd);
}

TEST(DumpNames, ViewOrderPutsUsedViewsFirstAndSurvivesFalseCycles) {
  const std::vector<std::string> names = {"v_top", "v_mid", "v_base", "v_alone"};
  const std::vector<std::string> texts = {"select * from `v_mid` join `v_base`", "select * from `v_base`",
                                          "select * from `t`", "select 1"};
  EXPECT_EQ(ViewOrder(names, texts), (std::vector<size_t>{2, 3, 1, 0}));
  // Two views that seem to read each other (a column named like the other view) keep their order.
  EXPECT_EQ(ViewOrder({"x", "y"}, {"select `y` from `t`", "select `x` from `t`"}),
            (std::vector<size_t>{0, 1}));
}

TEST(DumpProgress, ReportsEachObjectAndStopsOnRequest) {
  test::DumpFixture f("dump_progress", {"CREATE TABLE a (id INT NULL)", "INSERT INTO a VALUES (1)",
                                        "CREATE TABLE b (id INT NULL)", "CREATE VIEW c AS SELECT id FROM a"});
  std::vector<std::string> seen;
  f.dump.OnBackupProgress = [&](const std::string& name, int num, int count, int percent) {
    seen.push_back(name + " " + std::to_string(num) + "/" + std::to_string(count) + " " +
                   std::to_string(percent));
  };
  f.dump.Backup();
  EXPECT_EQ(seen, (std::vector<std::string>{"a 1/3 0", "a 1/3 100", "b 2/3 0", "b 2/3 100", "c 3/3 0",
                                            "c 3/3 100"}));
  f.dump.StopRequested = [&] { return seen.size() >= 7; };
  const fs::path file = fs::temp_directory_path() / "lomarin-dump-stopped.sql";
  {
    TFileDumpSink sink(file);
    EXPECT_THROW(f.dump.Backup(sink), DumpError);
  }
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(test::scalar(*f.session, "SELECT @@session.time_zone"), "SYSTEM");
}

}  // namespace
}  // namespace lomarin
