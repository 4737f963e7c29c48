#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "engine/compare/my_sql_exec.h"
#include "engine/compare/table_data_comparer.h"
#include "engine/connect/my_query.h"
#include "test_server.h"

namespace lomarin::test {

// Two scratch databases, a comparer between them, and what it logged.
class DataSyncTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* db : {"ds_master", "ds_target"}) sideExec(std::string("DROP DATABASE IF EXISTS ") + db);
    master = connect("ds_master");
    target = connect("ds_target");
    masterSide.Settings = master->Settings;
    targetSide.Settings = target->Settings;
    comparer.DBCConnectionMaster = &masterSide;
    comparer.DBCConnectionTarget = &targetSide;
    comparer.OnLogNextLine = [this](const std::string& line) { log.push_back(line); };
  }

  // The same statements on both sides.
  void both(const std::string& sql) {
    exec(*master, sql);
    exec(*target, sql);
  }
  static void exec(TMyConnection& session, const std::string& sql) {
    TMyQuery query(session);
    query.SQL = sql;
    query.Execute();
  }

  // Compares table (the same name on both sides) and returns the script.
  std::string sync(const std::string& table) {
    comparer.TableNameMaster = table;
    comparer.TableNameTarget = table;
    log.clear();
    comparer.CompareData();
    return comparer.Script;
  }

  // Runs the script on the target; its error messages.
  std::vector<std::string> apply(const std::string& script) {
    std::vector<std::string> errors;
    TMySQLExec exec;
    exec.Connection = target.get();
    exec.OnErrorMessage = [&](const std::string& message) { errors.push_back(message); };
    exec.ExecuteScript(script);
    return errors;
  }

  std::string checksum(TMyConnection& session, const std::string& table) {
    TMyQuery query(session);
    query.SQL = "CHECKSUM TABLE `" + table + "` EXTENDED";
    query.Open();
    query.Next();
    return std::string(query.Value(1));
  }
  void expectSynchronised(const std::string& table) {
    EXPECT_EQ(checksum(*master, table), checksum(*target, table)) << table;
    EXPECT_EQ(scalar(*master, "SELECT COUNT(*) FROM `" + table + "`"),
              scalar(*target, "SELECT COUNT(*) FROM `" + table + "`"))
        << table;
  }

  std::unique_ptr<TMyConnection> master;
  std::unique_ptr<TMyConnection> target;
  TDBCConnectionMySql masterSide;
  TDBCConnectionMySql targetSide;
  TTableDataComparer comparer;
  std::vector<std::string> log;
};

}  // namespace lomarin::test
