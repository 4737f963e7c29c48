#include "dump_command.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli_test_support.h"
#include "test_server.h"

namespace lomarin::cli {
namespace {

using test::connectionArgs;
using test::slurp;

TEST(DumpFlags, DefaultsAndEveryFlag) {
  const DumpRequest plain = parseDumpFlags({});
  EXPECT_EQ(plain.objects.bits(), 124);
  EXPECT_TRUE(plain.options.UseExtSyntax);
  EXPECT_TRUE(plain.options.GenerateHeader);
  EXPECT_TRUE(plain.outputFile.empty());

  const DumpRequest r =
      parseDumpFlags({"--objects=database,users,data", "--tables=a,b", "--routines=p", "--triggers=t",
                      "--no-header", "--no-drop", "--quote-names", "--complete-insert", "--no-lock",
                      "--disable-keys", "--hex-blob", "--no-extended-insert", "--delayed-insert", "--replace",
                      "--commit-batch=500", "--result-file=/tmp/x.sql", "--query=SELECT 1"});
  EXPECT_EQ(r.objects.bits(), 1 + 2 + 16);
  EXPECT_EQ(r.tableNames, "a,b");
  EXPECT_EQ(r.routineNames, "p");
  EXPECT_EQ(r.triggerNames, "t");
  const TMyDumpOptions& o = r.options;
  EXPECT_FALSE(o.GenerateHeader || o.AddDrop || o.AddLock || o.UseExtSyntax);
  EXPECT_TRUE(o.QuoteNames && o.CompleteInsert && o.DisableKeys && o.HexBlob && o.UseDelayedIns);
  EXPECT_EQ(o.InsertType, TMyInsertType::itReplaceInto);
  EXPECT_EQ(o.CommitBatchSize, 500);
  EXPECT_EQ(r.outputFile, "/tmp/x.sql");
  EXPECT_EQ(r.query, "SELECT 1");
  EXPECT_EQ(parseDumpFlags({"--objects=all", "--insert-ignore"}).options.InsertType,
            TMyInsertType::itInsertIgnore);
  EXPECT_EQ(parseDumpFlags({"--objects=all"}).objects.bits(), 127);

  for (const char* bad : {"--objects=tables,indexes", "--commit-batch=-1", "--commit-batch=many",
                          "--hex-blob=1", "--frobnicate"})
    EXPECT_THROW(parseDumpFlags({bad}), std::invalid_argument) << bad;
}

TEST(DumpCommand, WritesTheFileWholeOrReportsTheError) {
  test::sideExec("DROP DATABASE IF EXISTS cli_dump");
  test::sideExec("CREATE DATABASE cli_dump");
  test::sideExec("CREATE TABLE cli_dump.t (id INT NULL)");
  test::sideExec("INSERT INTO cli_dump.t VALUES (1), (2)");
  const auto file = std::filesystem::temp_directory_path() / "lomarin-cli-dump.sql";
  std::filesystem::remove(file);
  auto args = connectionArgs();
  for (const char* a : {"cli_dump", "--no-header", "--no-extended-insert"}) args.push_back(a);
  args.push_back("--result-file=" + file.string());
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
  EXPECT_EQ(runDump(parseArgs(args), out, err), 0);
  EXPECT_EQ(slurp(out), "");
  EXPECT_EQ(slurp(err), "") << "no progress when standard error is no terminal";
  std::ifstream in(file, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  EXPECT_NE(text.str().find("\r\nINSERT INTO t VALUES (1);\r\nINSERT INTO t VALUES (2);\r\n"),
            std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(file.string() + ".tmp"));

  auto missing = connectionArgs();
  missing.push_back("--tables=no_such_table");
  missing.push_back("cli_dump");
  std::FILE* out2 = std::tmpfile();
  std::FILE* err2 = std::tmpfile();
  EXPECT_EQ(runDump(parseArgs(missing), out2, err2), 1);
  EXPECT_EQ(slurp(err2), "lomarin-cli: Table no_such_table does not exist in database cli_dump\n");
  for (std::FILE* f : {out, err, out2, err2}) std::fclose(f);
  std::filesystem::remove(file);
  test::sideExec("DROP DATABASE cli_dump");
}

}  // namespace
}  // namespace lomarin::cli
