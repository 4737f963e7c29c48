#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/sqleditor/query_params.h"
#include "engine/sqleditor/sql_history.h"
#include "engine/sqleditor/sqleditor_options.h"

namespace lomarin {
namespace {

class StoreFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    folder = std::filesystem::temp_directory_path() /
             ("lomarin_stores_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    std::filesystem::remove_all(folder);
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  static std::string bytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  std::filesystem::path folder;
};

std::vector<std::string> column(const TVirtualTable& table, size_t field) {
  std::vector<std::string> values;
  for (const auto& r : table.Records()) values.push_back(r[field]);
  return values;
}

TEST_F(StoreFolder, HistoryRecordsOnlyWhenEnabled) {
  THsitory off(folder, false);
  off.addRecToHistory("select 1", "root@localhost");
  EXPECT_FALSE(std::filesystem::exists(folder / "history.vtd"));

  THsitory history(folder, true);
  int tick = 0;
  history.DateText = [&] { return "2026-01-01 00:00:0" + std::to_string(tick++); };
  history.addRecToHistory("select 1 ", "owner-with-a-name-longer-than-twenty");
  history.addRecToHistory("select 2", "me");
  history.addRecToHistory(" select 1", "me");
  history.addRecToHistory("SELECT 1", "me");
  // A fresh object reads what the first one wrote.
  THsitory reader(folder, true);
  reader.LoadFile();
  EXPECT_EQ(column(reader.Table(), 0), (std::vector<std::string>{"select 2", "select 1", "SELECT 1"}));
  EXPECT_EQ(column(reader.Table(), 2),
            (std::vector<std::string>{"2026-01-01 00:00:01", "2026-01-01 00:00:02", "2026-01-01 00:00:03"}));
  history.addRecToHistory("x", "owner-with-a-name-longer-than-twenty");
  reader.LoadFile();
  EXPECT_EQ(reader.Table().Records().back()[1], "owner-with-a-name-lo");
}

TEST_F(StoreFolder, HistoryKeepsAtMost101AndDropsTheOldest) {
  THsitory history(folder, true);
  history.LoadFile();
  TVirtualTable full(history.Table().Fields());
  for (int i = 0; i < 101; ++i) full.Append({"q" + std::to_string(i), "o", "d"});
  full.SaveToFile(history.FileName());
  history.addRecToHistory("new", "o");
  history.LoadFile();
  const auto sql = column(history.Table(), 0);
  ASSERT_EQ(sql.size(), 101u);
  EXPECT_EQ(sql.front(), "q1");
  EXPECT_EQ(sql.back(), "new");
}

TEST_F(StoreFolder, DamagedFilesAreReportedAndLeftAlone) {
  std::filesystem::create_directories(folder);
  const std::string garbage = "not a table file\x01\x02\n";
  for (const char* name : {"history.vtd", "params.vtd"}) {
    std::ofstream(folder / name, std::ios::binary) << garbage;
  }
  THsitory history(folder, true);
  try {
    history.addRecToHistory("select 1", "o");
    FAIL() << "no error";
  } catch (const VtdFormatError& e) {
    EXPECT_STREQ(e.what(), "Invalid file format");
  }
  TMyParams params(folder);
  EXPECT_THROW(params.addRecToParamas("id", "7", "Integer"), VtdFormatError);
  EXPECT_EQ(bytes(folder / "history.vtd"), garbage);
  EXPECT_EQ(bytes(folder / "params.vtd"), garbage);

  // A sound file of another table is not taken either.
  TVirtualTable other({{"a", "memo", 0}});
  other.SaveToFile(folder / "history.vtd");
  const std::string before = bytes(folder / "history.vtd");
  EXPECT_THROW(history.LoadFile(), VtdFormatError);
  EXPECT_EQ(bytes(folder / "history.vtd"), before);
}

TEST_F(StoreFolder, ParamsReplaceByNameAndKeepThirty) {
  TMyParams params(folder);
  params.addRecToParamas("id", "3", "Integer");
  params.addRecToParamas("name", "abc", "String");
  params.addRecToParamas("id", "7", "Integer");
  TMyParams reader(folder);
  reader.LoadFile();
  EXPECT_EQ(column(reader.Table(), 0), (std::vector<std::string>{"name", "id"}));
  EXPECT_EQ(reader.Table().Records()[1], (TVirtualTable::Record{"id", "7", "Integer"}));
  for (int i = 0; i < 40; ++i) params.addRecToParamas("v" + std::to_string(i), "x", "Char");
  reader.LoadFile();
  const auto names = column(reader.Table(), 0);
  ASSERT_EQ(names.size(), 30u);
  EXPECT_EQ(names.front(), "v10");
  EXPECT_EQ(names.back(), "v39");
  params.DeleteRecord("v39");
  reader.LoadFile();
  EXPECT_EQ(reader.Table().RecordCount(), 29u);
  EXPECT_FALSE(reader.Find("v39"));
}

TEST_F(StoreFolder, OptionsDecideRecordingAndTheScriptRunner) {
  std::filesystem::create_directories(folder);
  setenv("LOMARIN_DATA_DIR", folder.c_str(), 1);
  SettingsStore settings(folder / "settings.sqlite");
  OpenHistory(settings).addRecToHistory("select 1", "o");
  EXPECT_FALSE(std::filesystem::exists(folder / "history.vtd"));
  settings.write(opt::SqlTrace, true);
  OpenHistory(settings).addRecToHistory("select 1", "o");
  EXPECT_TRUE(std::filesystem::exists(folder / "history.vtd"));
  OpenParams().addRecToParamas("id", "7", "Integer");
  EXPECT_TRUE(std::filesystem::exists(folder / "params.vtd"));
  unsetenv("LOMARIN_DATA_DIR");

  TMyConnection session;
  TMyScript script(session);
  ApplyScriptOptions(script, settings);
  EXPECT_EQ(script.Delimiter, ";");
  EXPECT_FALSE(script.UseOptimization);
  settings.write(opt::ScriptDelimiter, "$$");
  settings.write(opt::ScriptExecutionOptime, true);
  ApplyScriptOptions(script, settings);
  EXPECT_EQ(script.Delimiter, "$$");
  EXPECT_TRUE(script.UseOptimization);
}

}  // namespace
}  // namespace lomarin
