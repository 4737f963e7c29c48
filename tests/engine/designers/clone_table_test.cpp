#include "engine/designers/clone_table.h"

#include <gtest/gtest.h>

#include "engine/connect/my_query.h"
#include "engine/sqleditor/script_services.h"
#include "test_server.h"

namespace lomarin::designers {
namespace {

const char* const kScript =
    "CREATE TABLE `t` (\r\n  `t` int(11) DEFAULT NULL\r\n);\r\n\r\nLOCK TABLES `t` WRITE;\r\n"
    "INSERT INTO `t` VALUES\r\n(1);\r\nUNLOCK TABLES;\r\n";

TEST(CloneTable, TheTableNameBecomesTheCopyButAColumnOfThatNameStays) {
  TCloneTableState state{"d", "t", "t_new", "d", "d", false};
  EXPECT_EQ(RenameClonedScript(kScript, state),
            "CREATE TABLE `t_new` (\r\n  `t` int(11) DEFAULT NULL\r\n);\r\n\r\nLOCK TABLES `t_new` WRITE;\r\n"
            "INSERT INTO `t_new` VALUES\r\n(1);\r\nUNLOCK TABLES;\r\n");
  state.TargetDatabase = "other`db";
  EXPECT_EQ(RenameClonedScript(kScript, state),
            "CREATE TABLE `other``db`.`t_new` (\r\n  `t` int(11) DEFAULT NULL\r\n);\r\n\r\n"
            "LOCK TABLES `other``db`.`t_new` WRITE;\r\nINSERT INTO `other``db`.`t_new` "
            "VALUES\r\n(1);\r\nUNLOCK TABLES;\r\n");
  EXPECT_EQ(CloneDefaultName("t"), "t_new");
}

TEST(CloneTable, CopiesIntoAnotherDatabaseWithAndWithoutRows) {
  test::sideExec("DROP DATABASE IF EXISTS designers_clone_a");
  test::sideExec("DROP DATABASE IF EXISTS designers_clone_b");
  test::sideExec("CREATE DATABASE designers_clone_b");
  auto session = test::connect("designers_clone_a");
  ASSERT_TRUE(ExecSQLText(*session, "CREATE TABLE src (id INT PRIMARY KEY, t VARCHAR(5))"));
  ASSERT_TRUE(ExecSQLText(*session, "INSERT INTO src VALUES (1, 'a'), (2, 'b')"));
  TCloneTableState state{"designers_clone_a", "src", "copy", "designers_clone_b", "designers_clone_a", true};
  ASSERT_TRUE(ExecScriptText(*session, CloneTableScript(*session, state)));
  state.NewName = "empty";
  state.WithData = false;
  ASSERT_TRUE(ExecScriptText(*session, CloneTableScript(*session, state)));
  state.TargetDatabase = "designers_clone_a";
  state.NewName = "here";
  ASSERT_TRUE(ExecScriptText(*session, CloneTableScript(*session, state)));
  EXPECT_EQ(test::scalar(*session, "select group_concat(t order by id) from designers_clone_b.copy"), "a,b");
  EXPECT_EQ(test::scalar(*session, "select count(*) from designers_clone_b.empty"), "0");
  EXPECT_EQ(test::scalar(*session, "select count(*) from designers_clone_a.here"), "0");
  // The source stays as it was, and an existing copy is never replaced.
  EXPECT_EQ(test::scalar(*session, "select count(*) from src"), "2");
  EXPECT_FALSE(ExecScriptText(*session, CloneTableScript(*session, state)));
  test::sideExec("DROP DATABASE designers_clone_a");
  test::sideExec("DROP DATABASE designers_clone_b");
}

}  // namespace
}  // namespace lomarin::designers
