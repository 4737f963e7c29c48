#include "ui/sqleditor/result_view.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QTableView>

#include "engine/sqleditor/query_results.h"

namespace lomarin::ui {

namespace {

class ResultModel : public QAbstractTableModel {
 public:
  ResultModel(std::shared_ptr<const TResultSet> result, QObject* parent)
      : QAbstractTableModel(parent), result_(std::move(result)) {}

  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(result_->Rows.size());
  }
  int columnCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(result_->Columns.size());
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole && role != Qt::ForegroundRole) return {};
    const auto& cell = result_->Rows[static_cast<size_t>(index.row())][static_cast<size_t>(index.column())];
    if (role == Qt::ForegroundRole) return cell ? QVariant() : QVariant(QColor(Qt::gray));
    return cell ? QString::fromUtf8(cell->data(), static_cast<qsizetype>(cell->size())) : QString("(NULL)");
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    return QString::fromStdString(result_->Columns[static_cast<size_t>(section)]);
  }

 private:
  std::shared_ptr<const TResultSet> result_;
};

}  // namespace

QTableView* createResultView(std::shared_ptr<const TResultSet> result, QWidget* parent) {
  auto* view = new QTableView(parent);
  view->setObjectName("grdResult");
  view->setModel(new ResultModel(std::move(result), view));
  view->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view->setAlternatingRowColors(true);
  view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 6);
  view->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
  view->resizeColumnsToContents();
  return view;
}

}  // namespace lomarin::ui
