#pragma once

#include <QDialog>
#include <QStringList>

#include "engine/dataview/filter_condition.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;

namespace lomarin::ui {

// "Advanced filter builder": composes the condition text of the data frame's server-side filter
// from one column, operator, type and value at a time.
class Tformadvfilterbuilder : public QDialog {
  Q_OBJECT
 public:
  Tformadvfilterbuilder(const QStringList& columns, dataview::TEscape escape, QWidget* parent = nullptr);

  QString filterText() const;
  void setFilterText(const QString& text);
  // The condition the fields describe now.
  QString conditionText() const;
  // False (with the reason shown) when the file cannot be read or written.
  bool openFile(const QString& file);
  bool saveFile(const QString& file);

 private:
  void compose(dataview::TFilterJoin join);
  void btnOpenClick();
  void btnSaveClick();
  void updateDateFormat();

  dataview::TEscape escape_;
  QComboBox* cboName_;
  QComboBox* cboCondition_;
  QComboBox* cboType_;
  QLineEdit* edtValue_;
  QCheckBox* chkFormatTypes_;
  QComboBox* cboDateFormat_;
  QPlainTextEdit* memFilter_;
};

}  // namespace lomarin::ui
