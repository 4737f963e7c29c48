#include "ui/sqleditor/form_parameters_monitor.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "engine/sqleditor/query_params.h"
#include "ui/sqleditor/vtd_table_model.h"

namespace lomarin::ui {

TformParametersMonitor::TformParametersMonitor(TMyParams& params, ErrorReporter reportError, QWidget* parent)
    : QDialog(parent), params_(params), reportError_(std::move(reportError)) {
  setObjectName("TformParametersMonitor");
  setWindowTitle("Parameters Monitor");
  model_ = new VtdTableModel(params_.Table(), this);
  grdParams_ = new QTableView(this);
  grdParams_->setObjectName("grdParams");
  grdParams_->setModel(model_);
  grdParams_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grdParams_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdParams_->horizontalHeader()->setStretchLastSection(true);

  auto* btnRefresh = new QPushButton("&Refresh", this);
  btnRefresh->setObjectName("btnRefresh");
  auto* btnClose = new QPushButton("&Close", this);
  btnClose->setObjectName("btnClose");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(btnRefresh);
  buttons->addStretch();
  buttons->addWidget(btnClose);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(grdParams_);
  layout->addLayout(buttons);
  resize(460, 360);

  connect(btnRefresh, &QPushButton::clicked, this, &TformParametersMonitor::Refresh);
  connect(btnClose, &QPushButton::clicked, this, &QDialog::accept);
  Refresh();
}

void TformParametersMonitor::Refresh() {
  try {
    params_.LoadFile();
  } catch (const std::exception& error) {
    if (reportError_) reportError_(QString::fromStdString(error.what()));
  }
  model_->reload();
}

}  // namespace lomarin::ui
