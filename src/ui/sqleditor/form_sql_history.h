#pragma once

#include <QDialog>

#include "ui/sqleditor/error_reporter.h"

class QButtonGroup;
class QPushButton;
class QRadioButton;
class QTableView;

namespace lomarin {
class SettingsStore;
class THsitory;
}

namespace lomarin::ui {

class TframeecSQL;
class VtdTableModel;

// "SQL history": the recorded statements, newest selected. OK closes with ResultOK ("SQL
// editor") or ResultYes ("Clipboard"); the caller copies SelectedSQL() there.
class TformSQLHistory : public QDialog {
  Q_OBJECT
 public:
  static constexpr int ResultOK = 1;
  static constexpr int ResultYes = 6;

  TformSQLHistory(THsitory& history, SettingsStore& settings, const ErrorReporter& reportError,
                  QWidget* parent = nullptr);

  QString SelectedSQL() const;

 private:
  void currentRecordChanged();
  void btnOkClick();

  THsitory& history_;
  VtdTableModel* model_;
  TframeecSQL* frameSQL_;
  QTableView* grdHistory_;
  QRadioButton* rbSQLEditor_;
  QRadioButton* rbClipboard_;
};

}  // namespace lomarin::ui
