#pragma once

#include <QDialog>

#include "engine/sqleditor/macros.h"
#include "ui/sqleditor/error_reporter.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QTableView;

namespace lomarin {
class TMyParams;
}

namespace lomarin::ui {

class VtdTableModel;

// "Parameter Manager": asks the value of one macro, offering the stored values of earlier runs.
class TformParamsManager : public QDialog {
  Q_OBJECT
 public:
  TformParamsManager(TMyParams& params, const QString& macroName, bool quoting, TValueEscaper escape,
                     ErrorReporter reportError, QWidget* parent = nullptr);

  // The text that replaces the macro, valid once the dialog was accepted.
  QString Result() const { return result_; }

 private:
  void btnOkClick();
  void btnDeleteClick();

  TMyParams& params_;
  bool quoting_;
  TValueEscaper escape_;
  ErrorReporter reportError_;
  QString result_;
  VtdTableModel* model_;
  QLineEdit* edtName_;
  QComboBox* cboDataType_;
  QLineEdit* edtValue_;
  QTableView* grdOldValues_;
  QCheckBox* chkSaveVariable_;
  QCheckBox* chkUseOldParam_;
};

// Asks a value for each macro in order; false as soon as one is cancelled (the macros answered
// before keep their values).
bool AskMacroValues(TMacros& macros, TMyParams& params, const TValueEscaper& escape,
                    const ErrorReporter& reportError, QWidget* parent);

}  // namespace lomarin::ui
