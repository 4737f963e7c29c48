#pragma once

#include <QChartView>
#include <QList>
#include <vector>

#include "engine/admin/status_charts.h"

class QLineSeries;
class QValueAxis;

namespace lomarin::ui {

// One status chart of the session monitor: a line per series over the seconds since the monitor
// opened. The last kKeptPoints points of each series stay; older ones scroll out.
class TStatusChartView : public QChartView {
  Q_OBJECT
 public:
  static constexpr int kKeptPoints = 120;

  explicit TStatusChartView(const admin::TStatusChart& chart, QWidget* parent = nullptr);

  // One refresh: points[i] goes to the i-th series; series past the end get none.
  void addPoints(double seconds, const std::vector<double>& points);
  const QList<QLineSeries*>& series() const { return series_; }

 private:
  void rescale();

  QList<QLineSeries*> series_;
  QValueAxis* time_;
  QValueAxis* values_;
};

}  // namespace lomarin::ui
