#pragma once

#include <QDialog>

#include "engine/admin/maintenance.h"
#include "engine/connect/my_connection.h"
#include "ui/sqleditor/error_reporter.h"

class QCheckBox;
class QComboBox;
class QListWidget;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace lomarin::ui {

class TSessionActivity;

// "Optimize tables": runs analyze, check, optimize or repair over the checked tables of one
// database and lists the server's answer per table.
class TfrmOptimizingTables : public QDialog {
  Q_OBJECT
 public:
  TfrmOptimizingTables(TMyConnection& session, ErrorReporter report, QWidget* parent = nullptr);
  ~TfrmOptimizingTables() override;

  // The operation and type as the dialog's buttons choose them.
  admin::TMaintenanceOperation operation() const;
  admin::TMaintenanceType type() const;
  // Runs over the checked tables; nothing is sent when none is checked.
  void btnOkClick();

  void reject() override;

 private:
  void buildUi();
  void loadDatabases();
  void loadTables();
  void onCheckAll(bool checked);
  void updateTypeBoxes();
  void addResult(const admin::TMaintenanceResult& result);

  TMyConnection& session_;
  ErrorReporter report_;
  TSessionActivity* activity_;
  bool running_ = false;

  QComboBox* cobodb_;
  QListWidget* lstTables_;
  QCheckBox* chkCheckAll_;
  QRadioButton* rbAnalyze_;
  QRadioButton* rbCheck_;
  QRadioButton* rbOptimize_;
  QRadioButton* rbRepair_;
  QRadioButton* rbQuick_;
  QRadioButton* rbExtended_;
  QProgressBar* ProgressBar_;
  QTreeWidget* lvResult_;
  QPushButton* btnOk_;
  QPushButton* btnClose_;
};

}  // namespace lomarin::ui
