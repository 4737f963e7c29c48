#include "ui/sqleditor/vtd_table_model.h"

namespace lomarin::ui {

VtdTableModel::VtdTableModel(const TVirtualTable& table, QObject* parent) : QAbstractTableModel(parent), table_(table) {}

void VtdTableModel::reload() {
  beginResetModel();
  endResetModel();
}

int VtdTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.RecordCount());
}

int VtdTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(table_.Fields().size());
}

QVariant VtdTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
  const std::string& value = table_.Records()[static_cast<size_t>(index.row())][static_cast<size_t>(index.column())];
  QString text = QString::fromStdString(value);
  // A statement of many lines shows as one in a grid cell.
  if (role == Qt::DisplayRole) text.replace(QChar('\n'), QChar(' ')).remove(QChar('\r'));
  return text;
}

QVariant VtdTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return QString::fromStdString(table_.Fields()[static_cast<size_t>(section)].Name);
}

}  // namespace lomarin::ui
