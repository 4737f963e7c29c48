#pragma once

#include <QAbstractTableModel>

#include "engine/sqleditor/vtd_table.h"

namespace lomarin::ui {

// Read-only view of a table file's records, one column per field, headed by the field name.
class VtdTableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit VtdTableModel(const TVirtualTable& table, QObject* parent = nullptr);

  // Call after the table's records changed.
  void reload();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  const TVirtualTable& table_;
};

}  // namespace lomarin::ui
