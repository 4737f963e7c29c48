#pragma once

#include <QDialog>
#include <memory>
#include <string>
#include <vector>

#include "engine/designers/create_table.h"

namespace Ui {
class TfrmTable;
}

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// "Table Properties": a new table's columns, keys, options and partitions, created with one
// CREATE TABLE. The dialog closes only when the server took it.
class TfrmTable : public QDialog {
  Q_OBJECT
 public:
  TfrmTable(TMyConnection& session, SettingsStore& settings, const QString& database,
            QWidget* parent = nullptr);
  ~TfrmTable() override;

  designers::TCreateTableState state() const;
  QString database() const;
  TframeecSQL* sourceFrame() const { return frameSQL_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void coboDataTypeChange();
  void chkPkClick(bool checked);
  void chkforeingClick(bool checked);
  void applyCouplings();
  void spbuaddClick();
  void spbuDeleteClick();
  void cxcoboPartTypeChange(int index);
  void pgcTableChange(int index);
  void btnOkClick();
  designers::TColumnEntry entry() const;
  std::vector<designers::TTableColumnRow> rows() const;
  void resetEntry();

  TMyConnection& session_;
  QString database_;
  std::unique_ptr<Ui::TfrmTable> ui_;
  TframeecSQL* frameSQL_;
  std::string foreignKeyClause_;
  bool databasesRead_ = false;
};

}  // namespace lomarin::ui
