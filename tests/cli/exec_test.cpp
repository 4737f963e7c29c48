#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "cli_options.h"
#include "engine/connect/my_query.h"
#include "exec_command.h"
#include "cli_test_support.h"
#include "test_server.h"

namespace lomarin::cli {
namespace {

using test::connectionArgs;
using test::slurp;

std::filesystem::path writeScript(const std::string& name, const std::string& text) {
  const auto path = std::filesystem::temp_directory_path() / name;
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

std::vector<std::string> execArgs(const std::string& database, const std::string& file, bool optimize) {
  std::vector<std::string> args = connectionArgs();
  args.insert(args.end(), {"--database", database, file});
  if (optimize) args.push_back("--optimize");
  return args;
}

int exec(const std::string& database, const std::string& file, bool optimize, std::string* errText) {
  std::FILE* err = std::tmpfile();
  const int status = runExec(parseArgs(execArgs(database, file, optimize)), err);
  *errText = slurp(err);
  std::fclose(err);
  return status;
}

TEST(ExecCommand, ReportsEachFailureAndRunsTheRest) {
  const auto file = writeScript("lomarin_exec_errors.sql",
                                "drop table if exists e1;\r\ncreate table e1 (a int primary key);\r\n"
                                "insert into e1 values (1),(1);\r\ninsert into e1 values (2);\r\n"
                                "insert into nowhere values (3);\r\n");
  for (bool optimize : {false, true}) {
    std::string err;
    EXPECT_EQ(exec("lomarin_test", file.string(), optimize, &err), 1);
    EXPECT_EQ(err,
              "insert into e1 values (1),(1)\nERROR 1062 (23000) at line 3: Duplicate entry '1' for key 'PRIMARY'\n"
              "insert into nowhere values (3)\nERROR 1146 (42S02) at line 5: Table 'lomarin_test.nowhere' doesn't exist\n");
    auto session = test::connect();
    EXPECT_EQ(test::scalar(*session, "select group_concat(a) from e1"), "2");
  }
  std::string err;
  EXPECT_EQ(exec("lomarin_test", (std::filesystem::temp_directory_path() / "no_such.sql").string(), false, &err), 2);
  EXPECT_EQ(runExec(parseArgs({"a.sql", "--fast"}), std::tmpfile()), 2);
}

TEST(ExecCommand, ClientCommandsGoToTheServerAsText) {
  const auto marker = std::filesystem::temp_directory_path() / "lomarin_exec_marker";
  std::filesystem::remove(marker);
  const auto file = writeScript("lomarin_exec_client.sql", "\\! touch " + marker.string() + "\nsystem touch " +
                                                               marker.string() + ";\nselect 1;\n");
  std::string err;
  EXPECT_EQ(exec("lomarin_test", file.string(), false, &err), 1);
  EXPECT_NE(err.find("\\! touch " + marker.string() + "\nsystem touch " + marker.string() +
                     "\nERROR 1064 (42000) at line 1"),
            std::string::npos)
      << err;
  EXPECT_FALSE(std::filesystem::exists(marker));
}

TEST(ExecCommand, LineBreaksOfTheFileAreKept) {
  const auto file =
      writeScript("lomarin_exec_lf.sql",
                  "drop table if exists lf1;\ncreate table lf1 (a int, b text);\nDELIMITER //\n"
                  "create trigger lf1_bi before insert on lf1 for each row\nbegin\n  set new.b = 'x\ny';\n"
                  "end//\nDELIMITER ;\ninsert into lf1 (a) values (1);\n");
  std::string err;
  EXPECT_EQ(exec("lomarin_test", file.string(), false, &err), 0) << err;
  auto session = test::connect();
  EXPECT_EQ(test::scalar(*session, "select hex(b) from lf1"), "780A79");
  TMyQuery original(*session);
  original.SQL = "SHOW CREATE TRIGGER lf1_bi";
  original.Open();
  ASSERT_TRUE(original.Next());
  EXPECT_TRUE(std::string(original.Value(2)).ends_with("for each row\nbegin\n  set new.b = 'x\ny';\nend"))
      << original.Value(2);
}

}  // namespace
}  // namespace lomarin::cli
