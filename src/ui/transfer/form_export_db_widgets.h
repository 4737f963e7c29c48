#pragma once
// Private to TfrmExportDb's sources.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <array>

#include "ui/transfer/form_export_db.h"

namespace lomarin::ui {

// Busy cursor while lists fill or a run lasts.
struct BusyCursor {
  BusyCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~BusyCursor() { QApplication::restoreOverrideCursor(); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;
};

struct TfrmExportDb::Widgets {
  QComboBox* cobodb = nullptr;
  QTabWidget* pgcExport = nullptr;
  QWidget* tsObjects = nullptr;
  QWidget* tsStoredProcs = nullptr;
  QWidget* tsUserSql = nullptr;

  QListWidget* lstTables = nullptr;
  QCheckBox* chkCheckAll = nullptr;
  QCheckBox* chkFullExport = nullptr;
  QCheckBox* chkTableData = nullptr;
  QCheckBox* chkDatabaseScripts = nullptr;
  QCheckBox* chkDatabaseUsers = nullptr;
  QCheckBox* chkTableScript = nullptr;
  QCheckBox* chkStoredProcs = nullptr;
  QCheckBox* chkViewScript = nullptr;
  QCheckBox* chkTriggers = nullptr;
  QLabel* lblFullExport = nullptr;

  QCheckBox* chkGenerateHeader = nullptr;
  QCheckBox* chkDropStatements = nullptr;
  QCheckBox* chkQuoteNames = nullptr;
  QCheckBox* chkLockStatements = nullptr;
  QCheckBox* chkDisableKeys = nullptr;
  QCheckBox* chkHexBlob = nullptr;
  QCheckBox* chkExtendedInserts = nullptr;
  QCheckBox* chkDelayedInserts = nullptr;

  QTreeWidget* lstStoredProcs = nullptr;
  QCheckBox* chkCheckAllProcs = nullptr;

  QComboBox* cboUserTable = nullptr;
  std::array<QComboBox*, 3> cboField{};
  std::array<QComboBox*, 3> cboOperator{};
  std::array<QLineEdit*, 3> edtValue{};
  std::array<QComboBox*, 2> cboJoin{};

  QLineEdit* edtDirectory = nullptr;
  QLineEdit* edtFileName = nullptr;
  QRadioButton* rbSaveToFile = nullptr;
  QRadioButton* rbCopyToClipboard = nullptr;
  QCheckBox* chkOnlyFile = nullptr;
  QCheckBox* chkOpenFile = nullptr;

  QProgressBar* pbExport = nullptr;
  QPushButton* btnOk = nullptr;
  QPushButton* btnStop = nullptr;
  QPushButton* btnCancel = nullptr;

  std::array<QCheckBox*, 7> kindBoxes() const {
    return {chkTableData,   chkDatabaseScripts, chkDatabaseUsers, chkTableScript,
            chkStoredProcs, chkViewScript,      chkTriggers};
  }
};

}  // namespace lomarin::ui
