#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/app/explorer_nodes.h"

namespace lomarin::admin {

// The four groups of status counters the monitor's charts read.
enum class TStatusSet { Bytes, Threads, Com, Handler };
std::string StatusSetSQL(TStatusSet set);

struct TStatusChart {
  std::string Tab;
  std::string Title;
  std::string ValueAxis;
  std::vector<std::string> Series;
  // The counter names that feed the series, matched in the order the server lists them.
  std::vector<std::string> Counters;
  TStatusSet Source;
  double Divisor;
};

// The Network, Threads, DML, DDL and Disk charts, in tab order.
const std::vector<TStatusChart>& StatusCharts();

// One refresh's points of a chart from its status rows (name, value): the rows are walked in the
// server's order and the n-th row whose name is one of the chart's counters gives the n-th series'
// point. So a chart with more series than matching rows leaves its last series without a point,
// and a series may plot another counter than its name says (the DDL chart does).
std::vector<double> ChartPoints(const TStatusChart& chart, const explorer::ResultTable& statusRows);

}  // namespace lomarin::admin
