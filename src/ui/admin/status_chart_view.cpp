#include "ui/admin/status_chart_view.h"

#include <QLineSeries>
#include <QValueAxis>
#include <algorithm>
#include <limits>

namespace lomarin::ui {

TStatusChartView::TStatusChartView(const admin::TStatusChart& chart, QWidget* parent)
    : QChartView(parent), time_(new QValueAxis), values_(new QValueAxis) {
  setRenderHint(QPainter::Antialiasing);
  QChart* c = this->chart();
  c->setTitle(QString::fromStdString(chart.Title));
  c->legend()->setAlignment(Qt::AlignRight);
  time_->setTitleText("Seconds");
  time_->setLabelFormat("%.1f");
  values_->setTitleText(QString::fromStdString(chart.ValueAxis));
  values_->setLabelFormat("%g");
  c->addAxis(time_, Qt::AlignBottom);
  c->addAxis(values_, Qt::AlignLeft);
  for (const std::string& name : chart.Series) {
    auto* line = new QLineSeries;
    line->setName(QString::fromStdString(name));
    line->setPointsVisible(true);
    c->addSeries(line);
    line->attachAxis(time_);
    line->attachAxis(values_);
    series_ << line;
  }
  time_->setRange(0, 1);
  values_->setRange(0, 1);
}

void TStatusChartView::addPoints(double seconds, const std::vector<double>& points) {
  for (size_t i = 0; i < points.size() && i < static_cast<size_t>(series_.size()); ++i) {
    QLineSeries* line = series_[static_cast<qsizetype>(i)];
    line->append(seconds, points[i]);
    if (line->count() > kKeptPoints) line->removePoints(0, line->count() - kKeptPoints);
  }
  rescale();
}

void TStatusChartView::rescale() {
  double minX = std::numeric_limits<double>::max(), maxX = std::numeric_limits<double>::lowest();
  double minY = minX, maxY = maxX;
  for (const QLineSeries* line : series_)
    for (const QPointF& point : line->points()) {
      minX = std::min(minX, point.x());
      maxX = std::max(maxX, point.x());
      minY = std::min(minY, point.y());
      maxY = std::max(maxY, point.y());
    }
  if (minX > maxX) return;
  time_->setRange(minX, std::max(maxX, minX + 1));
  // Running totals: a flat line stays visible in the middle.
  const double margin = std::max(1.0, (maxY - minY) * 0.1);
  values_->setRange(std::max(0.0, minY - margin), maxY + margin);
  values_->applyNiceNumbers();
}

}  // namespace lomarin::ui
