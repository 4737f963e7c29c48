#include "engine/admin/status_charts.h"

#include <algorithm>
#include <cstdlib>

namespace lomarin::admin {

std::string StatusSetSQL(TStatusSet set) {
  switch (set) {
    case TStatusSet::Bytes:
      return "show status like 'Bytes_%'";
    case TStatusSet::Threads:
      return "show status like 'Threads_%'";
    case TStatusSet::Com:
      return "show status like 'com_%'";
    case TStatusSet::Handler:
      return "show status like 'Handler_%'";
  }
  return {};
}

const std::vector<TStatusChart>& StatusCharts() {
  static const std::vector<TStatusChart> charts{
      {"&Network",
       "Network(KBytes/Secs)",
       "KBytes",
       {"KBytes_received", "KBytes_sent"},
       {"Bytes_received", "Bytes_sent"},
       TStatusSet::Bytes,
       1024.0},
      {"T&hreads",
       "Threads(Threads/Secs)",
       "Threads",
       {"Threads_connected", "Threads_running"},
       {"Threads_connected", "Threads_running"},
       TStatusSet::Threads,
       1.0},
      {"D&ML ",
       "DML Operations(Operations/Secs)",
       "Operations",
       {"Delete", "Insert", "Select", "Update"},
       {"Com_delete", "Com_insert", "Com_select", "Com_update"},
       TStatusSet::Com,
       1.0},
      {"DD&L",
       "DDL Operations(Operations/Secs)",
       "Operations",
       {"Alter_table", "Create_db", "Create_index", "create_table", "Drop_db", "Drop_index", "Drop_table"},
       {"Com_alter_table", "Com_create_db", "Com_create_index", "Com_drop_db", "Com_drop_index",
        "Com_drop_table"},
       TStatusSet::Com,
       1.0},
      {"D&isk",
       "DISK I/O(I/O/Secs)",
       "I/O",
       {"Handler_delete", "Handler_read_first", "Handler_read_key", "Handler_update", "Handler_write"},
       {"Handler_delete", "Handler_read_first", "Handler_read_key", "Handler_update", "Handler_write"},
       TStatusSet::Handler,
       1.0},
  };
  return charts;
}

std::vector<double> ChartPoints(const TStatusChart& chart, const explorer::ResultTable& statusRows) {
  std::vector<double> points;
  for (const auto& row : statusRows.rows) {
    if (points.size() == chart.Series.size()) break;
    if (row.size() < 2 ||
        std::find(chart.Counters.begin(), chart.Counters.end(), row[0]) == chart.Counters.end())
      continue;
    points.push_back(std::strtod(row[1].c_str(), nullptr) / chart.Divisor);
  }
  return points;
}

}  // namespace lomarin::admin
