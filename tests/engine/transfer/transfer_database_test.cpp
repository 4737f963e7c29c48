#include "engine/transfer/transfer_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "dump_fixture.h"
#include "engine/connect/my_query.h"
#include "engine/transfer/script_pipe.h"
#include "test_server.h"

namespace lomarin {
namespace {

using Lines = std::vector<std::string>;

// A transfer from the demo database (or another) on one session to `target` on a second one.
struct Transfer {
  explicit Transfer(const std::string& target, const std::string& sourceDatabase = "lomarin_demo")
      : source(test::connect(sourceDatabase)), run(*source, targetSession) {
    test::sideExec("DROP DATABASE IF EXISTS " + target);
    test::sideExec("CREATE DATABASE " + target);
    targetSession.Settings = test::serverSettings();
    targetSession.Settings.Database = target;
    plan.sourceDatabase = sourceDatabase;
    plan.targetDatabase = target;
    run.OnLog = [this](const std::string& line) { log.push_back(line); };
  }
  std::unique_ptr<TMyConnection> source;
  TMyConnection targetSession;
  TTransferDatabase run;
  TTransferPlan plan;
  Lines log;
};

std::string checksum(const std::string& table) {
  auto session = test::connect();
  TMyQuery query(*session);
  query.SQL = "CHECKSUM TABLE " + table;
  query.Open();
  return query.Next() ? std::string(query.Value(1)) : "none";
}

Lines column(const std::string& sql) {
  auto session = test::connect();
  TMyQuery query(*session);
  query.SQL = sql;
  query.Open();
  Lines values;
  while (query.Next()) values.emplace_back(query.Value(0));
  return values;
}

TEST(TransferOptions, ClicksChangeTheObjectSetAndDropOnlyEverTurnsOn) {
  TMyConnection unused;
  TTransferDatabase run(unused, unused);
  EXPECT_EQ(run.Dump.Objects.bits(), 8 + 16 + 32);
  EXPECT_FALSE(run.Dump.Options.GenerateHeader);
  EXPECT_TRUE(run.Dump.Options.DisableKeys);
  EXPECT_FALSE(run.Dump.Options.UseExtSyntax);
  ApplyTransferOption(run.Dump, TTransferOption::TransferTables, false);
  EXPECT_EQ(run.Dump.Objects.bits(), 16 + 32);
  ApplyTransferOption(run.Dump, TTransferOption::TransferViews, false);
  ApplyTransferOption(run.Dump, TTransferOption::TransferData, false);
  EXPECT_EQ(run.Dump.Objects.bits(), 0);
  ApplyTransferOption(run.Dump, TTransferOption::TransferData, true);
  EXPECT_EQ(run.Dump.Objects.bits(), 16);

  run.Dump.Options.AddDrop = false;
  ApplyTransferOption(run.Dump, TTransferOption::DropTable, true);
  EXPECT_TRUE(run.Dump.Options.AddDrop);
  ApplyTransferOption(run.Dump, TTransferOption::DropTable, false);
  EXPECT_TRUE(run.Dump.Options.AddDrop);
}

TEST(ScriptPipe, CarriesEveryByteAndStopsTheWriterWhenTheReaderGivesUp) {
  TScriptPipe pipe(1000, 2);
  std::string sent;
  for (int i = 0; i < 20000; ++i) sent += "INSERT INTO t VALUES (" + std::to_string(i) + ");\r\n";
  std::thread writer([&] {
    for (size_t at = 0; at < sent.size(); at += 333) pipe.write(std::string_view(sent).substr(at, 333));
    pipe.close();
  });
  std::istream in(&pipe);
  const std::string received((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  writer.join();
  EXPECT_EQ(received, sent);

  TScriptPipe stopped(10, 1);
  std::thread blocked([&] { EXPECT_THROW(for (;;) stopped.write("0123456789"), TPipeAborted); });
  stopped.abort();
  blocked.join();
}

TEST(TransferDatabase, CopiesTablesDataViewsAndRoutinesWithTheirLog) {
  Transfer t("lomarin_xfer");
  const Lines tables = TransferTableNames(*t.source, "lomarin_demo");
  // Base tables first; the view on a view after the view it reads.
  EXPECT_EQ(Lines(tables.end() - 2, tables.end()), (Lines{"v_order_totals", "v_customer_revenue"}));
  t.plan.tables = tables;
  t.plan.storedProcedures = true;
  t.plan.procedures = TransferRoutineNames(*t.source, "lomarin_demo");
  EXPECT_EQ(t.plan.procedures, (Lines{"get_customer_orders", "order_total"}));
  ASSERT_TRUE(t.run.Run(t.plan));

  Lines expected{"Connected to database ....... lomarin_xfer",
                 "Init export current database ....... lomarin_demo"};
  for (const auto& table : tables) {
    expected.push_back("Export table ....... " + table);
    expected.push_back("Transfer  ....... " + table);
  }
  for (const auto& routine : t.plan.procedures) {
    expected.push_back("Export procedure ....... " + routine);
    expected.push_back("Transfer  ....... " + routine);
  }
  expected.insert(expected.end(),
                  {"Finish transfer database ....... lomarin_demo",
                   "Disconect to database ....... lomarin_xfer", "process finished without errors"});
  EXPECT_EQ(t.log, expected);
  EXPECT_FALSE(t.targetSession.Connected());

  for (const auto& table : tables) {
    if (table.starts_with("v_")) continue;
    EXPECT_EQ(checksum("lomarin_xfer." + table), checksum("lomarin_demo." + table)) << table;
  }
  EXPECT_EQ(column("SELECT TABLE_NAME FROM information_schema.VIEWS WHERE TABLE_SCHEMA = 'lomarin_xfer' "
                   "ORDER BY 1"),
            (Lines{"v_customer_revenue", "v_order_totals"}));
  EXPECT_EQ(column("SELECT SUM(revenue) FROM lomarin_xfer.v_customer_revenue"),
            column("SELECT SUM(revenue) FROM lomarin_demo.v_customer_revenue"));
  EXPECT_EQ(column("SELECT CONCAT(ROUTINE_TYPE, ' ', ROUTINE_NAME) FROM information_schema.ROUTINES "
                   "WHERE ROUTINE_SCHEMA = 'lomarin_xfer' ORDER BY 1"),
            (Lines{"FUNCTION order_total", "PROCEDURE get_customer_orders"}));
}

// A MyISAM table keeps the rows a failing multi-row INSERT wrote before it failed, so its rows
// go one statement each.
TEST(TransferDatabase, DataWithoutTablesSendsRowsIntoTheExistingTable) {
  Transfer t("lomarin_xfer_data");
  test::sideExec("CREATE TABLE lomarin_xfer_data.categories LIKE lomarin_demo.categories");
  test::sideExec("ALTER TABLE lomarin_xfer_data.categories ENGINE = MyISAM");
  test::SentLog sent(t.targetSession);
  ApplyTransferOption(t.run.Dump, TTransferOption::TransferTables, false);
  t.plan.tables = {"categories"};
  ASSERT_TRUE(t.run.Run(t.plan));
  size_t inserts = 0;
  for (const auto& request : sent.sent) {
    EXPECT_EQ(request.find("CREATE"), std::string::npos) << request;
    EXPECT_EQ(request.find("DROP"), std::string::npos) << request;
    EXPECT_EQ(request.find("),("), std::string::npos) << request;
    for (size_t at = request.find("INSERT INTO"); at != std::string::npos;
         at = request.find("INSERT INTO", at + 1))
      ++inserts;
  }
  EXPECT_EQ(std::to_string(inserts), test::scalar(*t.source, "SELECT COUNT(*) FROM categories"));
  EXPECT_EQ(checksum("lomarin_xfer_data.categories"), checksum("lomarin_demo.categories"));
}

// Rows refused in the middle of a multi-row INSERT: each is logged once, and every other row arrives,
// in the same transaction blocks.
TEST(TransferDatabase, RowsRefusedInsideABatchAreLoggedAndTheRestArrive) {
  Transfer t("lomarin_xfer_refuse");
  test::sideExec("CREATE TABLE lomarin_xfer_refuse.customers LIKE lomarin_demo.customers");
  test::sideExec(
      "CREATE TRIGGER lomarin_xfer_refuse.refuse BEFORE INSERT ON lomarin_xfer_refuse.customers "
      "FOR EACH ROW BEGIN DECLARE m VARCHAR(40) DEFAULT CONCAT('refused ', NEW.customer_id); "
      "IF NEW.customer_id IN (100, 200) THEN SIGNAL SQLSTATE '45000' SET MESSAGE_TEXT = m; END IF; END");
  test::SentLog sent(t.targetSession);
  ApplyTransferOption(t.run.Dump, TTransferOption::TransferTables, false);
  t.run.Dump.Options.CommitBatchSize = 120;
  t.plan.tables = {"customers"};
  EXPECT_FALSE(t.run.Run(t.plan));

  EXPECT_EQ(Lines(t.log.begin() + 2, t.log.end()),
            (Lines{"Export table ....... customers", "Error : 1644 refused 100", "Error : 1644 refused 200",
                   "Transfer  ....... customers", " Errors  \nError : 1644 refused 100\nError : 1644 refused 200",
                   "Finish transfer database ....... lomarin_demo",
                   "Disconect to database ....... lomarin_xfer_refuse", "process finished with errors"}));
  // Row 100 travelled folded between its neighbours; the rows of the two INSERTs that failed went
  // again alone, those of the last one did not.
  EXPECT_NE(std::find_if(sent.sent.begin(), sent.sent.end(),
                         [](const std::string& request) {
                           return request.starts_with("INSERT INTO customers VALUES (1, ") &&
                                  request.find("),(100, ") < request.find("),(101, ");
                         }),
            sent.sent.end());
  const auto alone = [&](const std::string& row) {
    return std::count_if(sent.sent.begin(), sent.sent.end(), [&](const std::string& request) {
      return request.starts_with("INSERT INTO customers VALUES (" + row + ", ") &&
             request.find("),(") == std::string::npos;
    });
  };
  EXPECT_EQ(alone("99"), 1);
  EXPECT_EQ(alone("100"), 1);
  EXPECT_EQ(alone("200"), 1);
  EXPECT_EQ(alone("245"), 0);

  const std::string rows =
      "SELECT CONCAT(COUNT(*), ' ', MD5(GROUP_CONCAT(CONCAT_WS('|', customer_id, first_name, last_name, "
      "email, phone, city, country, birth_date, is_active, credit_limit, created_at) ORDER BY customer_id))) "
      "FROM ";
  EXPECT_EQ(column(rows + "lomarin_xfer_refuse.customers"),
            column(rows + "lomarin_demo.customers WHERE customer_id NOT IN (100, 200)"));
  EXPECT_EQ(column("SELECT COUNT(*) FROM lomarin_xfer_refuse.customers WHERE customer_id IN (100, 200)"),
            Lines{"0"});
}

TEST(TransferDatabase, AProcedureTheTargetRefusesIsLoggedAndTheRunGoesOn) {
  Transfer t("lomarin_xfer_denied");
  test::sideExec("DROP USER IF EXISTS 'lomarin_xfer'@'%'");
  test::sideExec("CREATE USER 'lomarin_xfer'@'%' IDENTIFIED BY 'xfer-pw'");
  test::sideExec(
      "GRANT SELECT, INSERT, CREATE, DROP, ALTER, INDEX, LOCK TABLES, CREATE VIEW "
      "ON lomarin_xfer_denied.* TO 'lomarin_xfer'@'%'");
  t.targetSession.Settings.Username = "lomarin_xfer";
  t.targetSession.Settings.Password = "xfer-pw";
  t.plan.tables = {"categories"};
  t.plan.storedProcedures = true;
  t.plan.procedures = {"get_customer_orders"};
  EXPECT_FALSE(t.run.Run(t.plan));

  const auto exported = std::find(t.log.begin(), t.log.end(), "Export procedure ....... get_customer_orders");
  ASSERT_NE(exported, t.log.end());
  const auto transferred = std::find(exported, t.log.end(), "Transfer  ....... get_customer_orders");
  ASSERT_NE(transferred, t.log.end());
  const Lines errors(exported + 1, transferred);
  ASSERT_FALSE(errors.empty());
  std::string text;
  for (const auto& error : errors) {
    EXPECT_TRUE(error.starts_with("Error : 1")) << error;
    text += (text.empty() ? "" : "\n") + error;
  }
  EXPECT_EQ(*(transferred + 1), " Errors  \n" + text);
  EXPECT_EQ(t.log.back(), "process finished with errors");
  // The table before it went through.
  EXPECT_EQ(t.log[3], "Transfer  ....... categories");
  EXPECT_EQ(checksum("lomarin_xfer_denied.categories"), checksum("lomarin_demo.categories"));
  test::sideExec("DROP USER 'lomarin_xfer'@'%'");
}

TEST(TransferDatabase, StopEndsTheObjectUnderWayAndTheRun) {
  Transfer t("lomarin_xfer_stop");
  t.plan.tables = {"order_items", "orders"};
  t.run.OnProgress = [&](const std::string&, int percent) {
    if (percent > 0) t.run.Stop();
  };
  EXPECT_FALSE(t.run.Run(t.plan));
  EXPECT_EQ(Lines(t.log.begin() + 2, t.log.end()),
            (Lines{"Export table ....... order_items", "Transfer  ....... order_items", "Transfer stopped",
                   "Finish transfer database ....... lomarin_demo",
                   "Disconect to database ....... lomarin_xfer_stop", "process finished with errors"}));
  // The table after it never started.
  EXPECT_EQ(
      column("SELECT TABLE_NAME FROM information_schema.TABLES WHERE TABLE_SCHEMA = 'lomarin_xfer_stop' "
             "AND TABLE_NAME = 'orders'"),
      Lines{});
}

}  // namespace
}  // namespace lomarin
