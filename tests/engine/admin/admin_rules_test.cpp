// Statement texts and the pure rules of the administration windows.
#include <gtest/gtest.h>

#include "engine/admin/admin_statements.h"
#include "engine/admin/maintenance.h"
#include "engine/admin/size_stats.h"
#include "engine/admin/status_charts.h"

namespace lomarin::admin {
namespace {

using Op = TMaintenanceOperation;
using Type = TMaintenanceType;

TEST(MaintenanceStatement, KeywordTypeAndDatabasePrefix) {
  EXPECT_EQ(MaintenanceSQL(Op::Analyze, Type::Extended, "t", "shop", "shop"), "analyze table `t`");
  EXPECT_EQ(MaintenanceSQL(Op::Optimize, Type::Quick, "t", "shop", "shop"), "optimize table `t`");
  EXPECT_EQ(MaintenanceSQL(Op::Check, Type::Quick, "t", "shop", "shop"), "check table `t` Quick");
  EXPECT_EQ(MaintenanceSQL(Op::Repair, Type::Extended, "t", "shop", "shop"), "repair table `t` Extended");
  // Another database than the current one (or none current) is named before the table, as it is.
  EXPECT_EQ(MaintenanceSQL(Op::Check, Type::Extended, "t", "shop", "other"), "check table shop.`t` Extended");
  EXPECT_EQ(MaintenanceSQL(Op::Analyze, Type::Quick, "we`ird", "shop", ""), "analyze table shop.`we``ird`");
  EXPECT_TRUE(MaintenanceTypeApplies(Op::Check));
  EXPECT_TRUE(MaintenanceTypeApplies(Op::Repair));
  EXPECT_FALSE(MaintenanceTypeApplies(Op::Analyze));
  EXPECT_FALSE(MaintenanceTypeApplies(Op::Optimize));
  EXPECT_EQ(MaintenanceResultText("status", "OK"), "status : OK");
}

TEST(AdminStatements, FixedTexts) {
  EXPECT_EQ(kProcessListSQL, "show full processlist ");
  EXPECT_EQ(KillSQL(4294967301ULL), "kill 4294967301");
  EXPECT_EQ(TableStatusSQL("sh`op"), "show table status  from `sh``op`");
  EXPECT_EQ(StatusSetSQL(TStatusSet::Bytes), "show status like 'Bytes_%'");
  EXPECT_EQ(StatusSetSQL(TStatusSet::Threads), "show status like 'Threads_%'");
  EXPECT_EQ(StatusSetSQL(TStatusSet::Com), "show status like 'com_%'");
  EXPECT_EQ(StatusSetSQL(TStatusSet::Handler), "show status like 'Handler_%'");
  EXPECT_FALSE(PluginsTabShown(50));
  EXPECT_TRUE(PluginsTabShown(51));
  EXPECT_TRUE(PluginsTabShown(55));
  EXPECT_EQ(ProcessColourOf("Query"), TProcessColour::Query);
  EXPECT_EQ(ProcessColourOf("Sleep"), TProcessColour::Sleep);
  EXPECT_EQ(ProcessColourOf("Killed"), TProcessColour::Killed);
  EXPECT_EQ(ProcessColourOf("query"), TProcessColour::None);
  EXPECT_EQ(ProcessColourOf("Daemon"), TProcessColour::None);
}

TEST(SizeRule, EachLengthIsCutToKilobytesBeforeTheSum) {
  // 1023 + 1023 bytes are almost two kilobytes, but each part alone is below one.
  EXPECT_EQ(KilobytesOf(1023, 1023), 0u);
  EXPECT_EQ(KilobytesOf(2047, 3071), 3u);
  EXPECT_EQ(KilobytesOf(1ULL << 40, 0), 1ULL << 30);
  EXPECT_EQ(KilobyteText(0), "0 KB");
  EXPECT_EQ(KilobyteText(16384), "16384 KB");

  explorer::ResultTable status;
  status.columns = {"Name",           "Engine",      "Version",         "Row_format",  "Rows",
                    "Avg_row_length", "Data_length", "Max_data_length", "Index_length"};
  status.rows = {{"a", "InnoDB", "10", "Dynamic", "7", "0", "16384", "0", "2047"},
                 {"v", "", "", "", "", "", "", "", ""},  // a view: NULL everywhere
                 {"b", "MyISAM", "10", "Fixed", "3", "0", "3071", "0", "1024"}};
  const std::vector<TTableSize> tables = TableSizes(status);
  ASSERT_EQ(tables.size(), 3u);
  EXPECT_EQ(tables[0].Kilobytes, 17u);
  EXPECT_EQ(tables[1].Kilobytes, 0u);
  EXPECT_EQ(tables[2].Engine, "MyISAM");
  EXPECT_EQ(tables[2].Kilobytes, 3u);
  const TDatabaseSize db = DatabaseSizeOf("shop", tables);
  EXPECT_EQ(db.Name, "shop");
  EXPECT_EQ(db.Tables, 3u);
  EXPECT_EQ(db.Records, 10u);
  EXPECT_EQ(db.Kilobytes, 20u);
}

explorer::ResultTable statusRows(std::vector<std::pair<std::string, std::string>> rows) {
  explorer::ResultTable table{{"Variable_name", "Value"}, {}};
  for (auto& [name, value] : rows) table.rows.push_back({name, value});
  return table;
}

const TStatusChart& chart(std::string_view title) {
  for (const TStatusChart& c : StatusCharts())
    if (c.Title == title) return c;
  throw std::runtime_error("no chart " + std::string(title));
}

TEST(ChartFeeding, TheNthMatchingRowFeedsTheNthSeries) {
  ASSERT_EQ(StatusCharts().size(), 5u);
  // Kilobytes, not bytes; unmatched rows are skipped.
  const auto network =
      ChartPoints(chart("Network(KBytes/Secs)"),
                  statusRows({{"Bytes_received", "2048"}, {"Other", "9"}, {"Bytes_sent", "512"}}));
  EXPECT_EQ(network, (std::vector<double>{2.0, 0.5}));

  // Rows feed by their order, not their names.
  const auto threads = ChartPoints(chart("Threads(Threads/Secs)"),
                                   statusRows({{"Threads_running", "2"}, {"Threads_connected", "5"}}));
  EXPECT_EQ(threads, (std::vector<double>{2, 5}));

  // The server's "com_%" rows in its own order: six names match the seven DDL series, so
  // "create_table" plots Com_drop_db and "Drop_table" gets nothing.
  const auto com = statusRows({{"Com_admin_commands", "1"},
                               {"Com_alter_table", "10"},
                               {"Com_create_db", "11"},
                               {"Com_create_index", "12"},
                               {"Com_create_table", "99"},
                               {"Com_delete", "20"},
                               {"Com_drop_db", "13"},
                               {"Com_drop_index", "14"},
                               {"Com_drop_table", "15"},
                               {"Com_insert", "21"},
                               {"Com_select", "22"},
                               {"Com_update", "23"}});
  const TStatusChart& ddl = chart("DDL Operations(Operations/Secs)");
  ASSERT_EQ(ddl.Series.size(), 7u);
  EXPECT_EQ(ddl.Series[3], "create_table");
  EXPECT_EQ(ChartPoints(ddl, com), (std::vector<double>{10, 11, 12, 13, 14, 15}));
  EXPECT_EQ(ChartPoints(chart("DML Operations(Operations/Secs)"), com),
            (std::vector<double>{20, 21, 22, 23}));

  const auto disk = ChartPoints(chart("DISK I/O(I/O/Secs)"), statusRows({{"Handler_commit", "8"},
                                                                         {"Handler_delete", "1"},
                                                                         {"Handler_read_first", "2"},
                                                                         {"Handler_read_key", "3"},
                                                                         {"Handler_read_next", "7"},
                                                                         {"Handler_update", "4"},
                                                                         {"Handler_write", "5"}}));
  EXPECT_EQ(disk, (std::vector<double>{1, 2, 3, 4, 5}));
}

}  // namespace
}  // namespace lomarin::admin
