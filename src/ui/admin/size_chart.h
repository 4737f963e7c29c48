#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <vector>

class QChartView;

namespace lomarin::ui {

// A bar chart of sizes in kilobytes, one bar per name, redrawn by setBars.
class TSizeChart : public QWidget {
  Q_OBJECT
 public:
  TSizeChart(const QString& title, QWidget* parent = nullptr);

  void setBars(const QStringList& names, const std::vector<double>& kilobytes);
  QChartView* view() const { return view_; }

 private:
  QChartView* view_;
};

}  // namespace lomarin::ui
