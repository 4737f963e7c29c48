#pragma once

#include <QDialog>

#include "ui/sqleditor/error_reporter.h"

class QTableView;

namespace lomarin {
class TMyParams;
}

namespace lomarin::ui {

class VtdTableModel;

// A viewer of the stored parameter values; "Refresh" re-reads the file.
class TformParametersMonitor : public QDialog {
  Q_OBJECT
 public:
  TformParametersMonitor(TMyParams& params, ErrorReporter reportError, QWidget* parent = nullptr);

  void Refresh();

 private:
  TMyParams& params_;
  ErrorReporter reportError_;
  VtdTableModel* model_;
  QTableView* grdParams_;
};

}  // namespace lomarin::ui
