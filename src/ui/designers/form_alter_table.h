#pragma once

#include <QDialog>
#include <memory>

#include "engine/designers/alter_column.h"

namespace Ui {
class TfrmAlterTable;
}

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// "Alter Table": adds one column to a table, or, given a column name, changes that column.
class TfrmAlterTable : public QDialog {
  Q_OBJECT
 public:
  TfrmAlterTable(TMyConnection& session, const QString& table, const QString& column = {},
                 QWidget* parent = nullptr);
  ~TfrmAlterTable() override;

  designers::TAlterColumnState state() const;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void readPresentColumn();
  void coboDataTypeChange();
  void chkAutoIncClick(bool checked);
  void btnOkClick();

  TMyConnection& session_;
  std::string table_;
  std::string column_;
  std::unique_ptr<Ui::TfrmAlterTable> ui_;
  bool read_ = false;
};

}  // namespace lomarin::ui
