#include "ui/admin/size_chart.h"

#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>

namespace lomarin::ui {

TSizeChart::TSizeChart(const QString& title, QWidget* parent) : QWidget(parent), view_(new QChartView(this)) {
  view_->setObjectName("chtSizes");
  view_->setRenderHint(QPainter::Antialiasing);
  view_->chart()->setTitle(title);
  view_->chart()->legend()->hide();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(view_);
}

void TSizeChart::setBars(const QStringList& names, const std::vector<double>& kilobytes) {
  QChart* chart = view_->chart();
  chart->removeAllSeries();
  for (QAbstractAxis* axis : chart->axes()) {
    chart->removeAxis(axis);
    delete axis;
  }
  auto* set = new QBarSet("KB");
  for (double value : kilobytes) *set << value;
  auto* series = new QBarSeries;
  series->append(set);
  series->setLabelsVisible(true);
  series->setLabelsPosition(QAbstractBarSeries::LabelsOutsideEnd);
  chart->addSeries(series);
  auto* names_ = new QBarCategoryAxis;
  names_->append(names);
  chart->addAxis(names_, Qt::AlignBottom);
  series->attachAxis(names_);
  auto* values = new QValueAxis;
  values->setTitleText("KB");
  values->setLabelFormat("%.0f");
  const double top = kilobytes.empty() ? 0 : *std::max_element(kilobytes.begin(), kilobytes.end());
  values->setRange(0, std::max(1.0, top * 1.15));
  chart->addAxis(values, Qt::AlignLeft);
  series->attachAxis(values);
}

}  // namespace lomarin::ui
