#include "ui/dataview/data_model.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QFont>
#include <QStyle>
#include <algorithm>
#include <cctype>

#include "engine/dataview/exporters.h"
#include "engine/dataview/field_kinds.h"
#include "engine/dataview/row_poster.h"

namespace lomarin::ui {

using dataview::TCellValue;
using dataview::TRecord;

namespace {

constexpr int kFetchBatch = static_cast<int>(TDataModel::FirstRows);
// A view that keeps reaching the end gets ever larger batches, so scrolling through a big
// result costs a few dozen repaints instead of one per thousand rows.
constexpr int kMaxFetchBatch = 1 << 17;
// Binary cells show this many bytes as hex; the editor gets them all.
constexpr size_t kShownBinaryBytes = 64;
// The tint of a row whose change the server has not stored.
const QColor kUnsavedRow(255, 226, 214);

QString textOf(const TMyField& field, std::string_view bytes, bool forEdit) {
  if (!dataview::IsBinaryField(field))
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
  if (forEdit || bytes.size() <= kShownBinaryBytes) return QString::fromStdString(dataview::HexText(bytes));
  return QString::fromStdString(dataview::HexText(bytes.substr(0, kShownBinaryBytes))) + "…";
}

// Binary columns are edited as hex digits; anything else would not survive the round trip.
std::optional<std::string> bytesOf(const TMyField& field, const QString& text) {
  if (!dataview::IsBinaryField(field)) return text.toStdString();
  const QByteArray hex = text.toLatin1();
  if (hex.size() % 2 != 0 || !std::all_of(hex.begin(), hex.end(), [](char c) {
        return std::isxdigit(static_cast<unsigned char>(c));
      }))
    return std::nullopt;
  return QByteArray::fromHex(hex).toStdString();
}

}  // namespace

TDataModel::TDataModel(TMyConnection& session, QObject* parent)
    : QAbstractTableModel(parent),
      session_(session),
      writer_(std::make_unique<dataview::TRowWriter>(std::vector<TMyField>{}, "")) {}

TDataModel::~TDataModel() = default;

void TDataModel::resetState() {
  query_.reset();
  shownSourceRows_ = 0;
  deleted_.clear();
  confirmed_.clear();
  pending_.clear();
  newRows_.clear();
  writer_ = std::make_unique<dataview::TRowWriter>(std::vector<TMyField>{}, "");
  writerReady_ = false;
  maybeEditable_ = false;
  fetchBatch_ = kFetchBatch;
}

void TDataModel::open(const std::string& sql, bool fetchAll) {
  // The old result goes first, with its memory and its hold on the session.
  clear();
  auto query = std::make_unique<TMyQuery>(session_);
  query->SQL = sql;
  query->FetchAll = fetchAll;
  query->ExactFloats = true;
  query->Open();
  adopt(std::move(query));
}

void TDataModel::adopt(std::unique_ptr<TMyQuery> query) {
  beginResetModel();
  resetState();
  try {
    query_ = std::move(query);
    query_->MoveTo(kFetchBatch - 1);
    shownSourceRows_ = static_cast<int>(query_->RecordCount());
    maybeEditable_ = !dataview::BaseTableOf(query_->Fields()).table.empty();
    if (query_->Eof()) writer();
  } catch (...) {
    resetState();
    endResetModel();
    throw;
  }
  endResetModel();
}

void TDataModel::clear() {
  beginResetModel();
  resetState();
  endResetModel();
}

const dataview::TRowWriter& TDataModel::writer() {
  if (!writerReady_ && query_) {
    writer_ = std::make_unique<dataview::TRowWriter>(
        dataview::RowWriterFor(session_, query_->Fields(), &tableInfo_));
    writerReady_ = true;
  }
  return *writer_;
}

const std::vector<TMyField>& TDataModel::fields() const {
  static const std::vector<TMyField> none;
  return query_ ? query_->Fields() : none;
}

bool TDataModel::allFetched() const {
  return !query_ || (query_->Eof() && shownSourceRows_ == static_cast<int>(query_->RecordCount()));
}

void TDataModel::fetchAll() {
  while (canFetchMore({})) fetchMore({});
}

int TDataModel::sourceRowCount() const { return shownSourceRows_ - static_cast<int>(deleted_.size()); }

int TDataModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : sourceRowCount() + static_cast<int>(newRows_.size());
}

int TDataModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(fields().size());
}

bool TDataModel::canFetchMore(const QModelIndex& parent) const { return !parent.isValid() && !allFetched(); }

void TDataModel::fetchMore(const QModelIndex& parent) {
  if (parent.isValid() || !query_) return;
  const size_t wanted = static_cast<size_t>(shownSourceRows_) + static_cast<size_t>(fetchBatch_);
  fetchBatch_ = std::min(fetchBatch_ * 2, kMaxFetchBatch);
  if (query_->RecordCount() < wanted && !query_->Eof()) query_->MoveTo(wanted - 1);
  const int available = static_cast<int>(std::min(query_->RecordCount(), wanted));
  if (available == shownSourceRows_) return;
  // New rows of the result go before the rows the user added.
  const int first = sourceRowCount();
  beginInsertRows({}, first, first + available - shownSourceRows_ - 1);
  shownSourceRows_ = available;
  endInsertRows();
}

size_t TDataModel::sourceRowOf(int row) const {
  size_t source = static_cast<size_t>(row);
  for (size_t removed : deleted_)
    if (removed <= source) ++source;
  return source;
}

TRecord TDataModel::sourceRecord(size_t source) const {
  TRecord record;
  query_->MoveTo(source);
  for (size_t i = 0; i < query_->Fields().size(); ++i)
    record.push_back({query_->IsNull(i), query_->IsNull(i) ? std::string() : std::string(query_->Value(i))});
  return record;
}

TRecord TDataModel::confirmedRecord(int row) const {
  if (row >= sourceRowCount()) return newRows_[static_cast<size_t>(row - sourceRowCount())].values;
  const size_t source = sourceRowOf(row);
  auto it = confirmed_.find(source);
  return it != confirmed_.end() ? it->second : sourceRecord(source);
}

TCellValue TDataModel::cell(int row, int column) const {
  const auto c = static_cast<size_t>(column);
  if (row >= sourceRowCount()) return newRows_.at(static_cast<size_t>(row - sourceRowCount())).values.at(c);
  const size_t source = sourceRowOf(row);
  if (auto it = pending_.find(source); it != pending_.end()) return it->second.values.at(c);
  if (auto it = confirmed_.find(source); it != confirmed_.end()) return it->second.at(c);
  query_->MoveTo(source);
  if (query_->IsNull(c)) return {};
  return {false, std::string(query_->Value(c))};
}

QVariant TDataModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !query_) return {};
  const TMyField& field = fields()[static_cast<size_t>(index.column())];
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: {
      const TCellValue value = cell(index.row(), index.column());
      if (value.null) return role == Qt::DisplayRole ? QVariant(QStringLiteral("(NULL)")) : QVariant();
      return textOf(field, value.bytes, role == Qt::EditRole);
    }
    case Qt::ForegroundRole:
      return cell(index.row(), index.column()).null ? QVariant(QBrush(QColor(Qt::gray))) : QVariant();
    case Qt::TextAlignmentRole:
      return dataview::IsNumberField(field) ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter)) : QVariant();
    case Qt::BackgroundRole: {
      if (isPendingRow(index.row())) return QBrush(kUnsavedRow);
      const QColor colour = rowColour ? rowColour(index.row()) : QColor();
      return colour.isValid() ? QVariant(QBrush(colour)) : QVariant();
    }
    case Qt::ToolTipRole:
      return isPendingRow(index.row()) ? headerData(index.row(), Qt::Vertical, role) : QVariant();
    default:
      return {};
  }
}

QVariant TDataModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical) {
    if (role == Qt::DisplayRole) return section + 1;
    if (section >= rowCount() || !isPendingRow(section)) return {};
    if (role == Qt::DecorationRole) return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    if (role == Qt::ToolTipRole) {
      const QString reason = pendingReason(section);
      return reason.isEmpty() ? tr("Not saved yet") : tr("Not saved: %1").arg(reason);
    }
    return {};
  }
  const QString name = QString::fromStdString(fields().at(static_cast<size_t>(section)).Name);
  if (role == Qt::DisplayRole) return name;
  if (role == Qt::FontRole && !keyColumn_.isEmpty() && name == keyColumn_) {
    QFont bold;
    bold.setBold(true);
    return bold;
  }
  return {};
}

Qt::ItemFlags TDataModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const bool writable =
      writerReady_ ? writer_->Writable(static_cast<size_t>(index.column())) : maybeEditable_;
  if (index.isValid() && writable) flags |= Qt::ItemIsEditable;
  return flags;
}

bool TDataModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::EditRole) return false;
  const TMyField& field = fields()[static_cast<size_t>(index.column())];
  if (value.isNull()) return setCell(index.row(), index.column(), {});
  const std::optional<std::string> bytes = bytesOf(field, value.toString());
  if (!bytes) {
    if (onPostError) onPostError(tr("Binary values are edited as an even number of hex digits"), false);
    return false;
  }
  return setCell(index.row(), index.column(), {false, *bytes});
}

QString TDataModel::reportFailure(const std::exception& error, bool serverError) {
  const QString message = QString::fromUtf8(error.what());
  if (onPostError) onPostError(message, serverError);
  return message;
}

void TDataModel::rowMarkChanged(int row) {
  emit dataChanged(index(row, 0), index(row, columnCount() - 1));
  emit headerDataChanged(Qt::Vertical, row, row);
}

bool TDataModel::setCell(int row, int column, const TCellValue& value) {
  if (!writer().Writable(static_cast<size_t>(column))) {
    if (onPostError)
      onPostError(QString::fromStdString(writer_->ColumnReadOnlyReason(static_cast<size_t>(column))), false);
    return false;
  }
  const QModelIndex changed = index(row, column);
  if (row >= sourceRowCount()) {
    NewRow& added = newRows_[static_cast<size_t>(row - sourceRowCount())];
    const TRecord before = added.values;
    added.values[static_cast<size_t>(column)] = value;
    added.given[static_cast<size_t>(column)] = true;
    emit dataChanged(changed, changed);
    if (!added.posted) return true;
    bool ok = false;
    try {
      dataview::TRowPoster(session_, *writer_).Update(added.stored, added.values);
      added.stored = added.values;
      added.reason.clear();
      ok = true;
    } catch (const ServerError& e) {
      added.reason = reportFailure(e, true);
    } catch (const std::exception& e) {
      added.reason = reportFailure(e, false);
    }
    rowMarkChanged(row);
    return ok;
  }
  const size_t source = sourceRowOf(row);
  const TRecord before = confirmedRecord(row);
  TRecord after = pending_.count(source) ? pending_[source].values : before;
  after[static_cast<size_t>(column)] = value;
  bool ok = false;
  try {
    dataview::TRowPoster(session_, *writer_).Update(before, after);
    confirmed_[source] = after;
    pending_.erase(source);
    ok = true;
  } catch (const ServerError& e) {
    pending_[source] = {after, reportFailure(e, true)};
  } catch (const std::exception& e) {
    pending_[source] = {after, reportFailure(e, false)};
  }
  rowMarkChanged(row);
  return ok;
}

bool TDataModel::isPendingRow(int row) const {
  if (row >= sourceRowCount()) {
    const NewRow& added = newRows_.at(static_cast<size_t>(row - sourceRowCount()));
    return !added.posted || added.values != added.stored;
  }
  return pending_.count(sourceRowOf(row)) != 0;
}

int TDataModel::firstPendingRow() const {
  if (!pending_.empty()) {
    // Deleted rows are never pending, so the row is its source row less the deleted ones before it.
    const size_t source = pending_.begin()->first;
    return static_cast<int>(source) -
           static_cast<int>(std::lower_bound(deleted_.begin(), deleted_.end(), source) - deleted_.begin());
  }
  for (int row = sourceRowCount(); row < rowCount(); ++row)
    if (isPendingRow(row)) return row;
  return -1;
}

QString TDataModel::pendingReason(int row) const {
  if (row >= sourceRowCount()) return newRows_.at(static_cast<size_t>(row - sourceRowCount())).reason;
  const auto it = pending_.find(sourceRowOf(row));
  return it == pending_.end() ? QString() : it->second.reason;
}

void TDataModel::revertRow(int row) {
  if (row < 0 || row >= rowCount() || !isPendingRow(row)) return;
  if (row < sourceRowCount()) {
    pending_.erase(sourceRowOf(row));
  } else if (NewRow& added = newRows_[static_cast<size_t>(row - sourceRowCount())]; added.posted) {
    added.values = added.stored;
    added.reason.clear();
  } else {
    beginRemoveRows({}, row, row);
    newRows_.erase(newRows_.begin() + (row - sourceRowCount()));
    endRemoveRows();
    return;
  }
  rowMarkChanged(row);
}

int TDataModel::appendRow() {
  if (!writer().RowsReadOnlyReason().empty()) {
    if (onPostError) onPostError(QString::fromStdString(writer_->RowsReadOnlyReason()), false);
    return -1;
  }
  fetchAll();
  const int row = rowCount();
  beginInsertRows({}, row, row);
  newRows_.push_back({TRecord(fields().size()), std::vector<bool>(fields().size(), false), false, {}, {}});
  endInsertRows();
  return row;
}

bool TDataModel::postRow(int row) {
  if (row < sourceRowCount() || row >= rowCount()) return true;
  NewRow& added = newRows_[static_cast<size_t>(row - sourceRowCount())];
  if (added.posted) return true;
  try {
    const uint64_t id = dataview::TRowPoster(session_, *writer_).Insert(added.values, added.given);
    for (size_t i = 0; i < fields().size(); ++i)
      if (id && fields()[i].has(fieldflag::AutoIncrement) && !added.given[i])
        added.values[i] = {false, std::to_string(id)};
    added.posted = true;
    added.stored = added.values;
    added.reason.clear();
    rowMarkChanged(row);
    return true;
  } catch (const ServerError& e) {
    added.reason = reportFailure(e, true);
  } catch (const std::exception& e) {
    added.reason = reportFailure(e, false);
  }
  rowMarkChanged(row);
  return false;
}

bool TDataModel::deleteRows(std::vector<int> rows) {
  if (!writer().RowsReadOnlyReason().empty()) {
    if (onPostError) onPostError(QString::fromStdString(writer_->RowsReadOnlyReason()), false);
    return false;
  }
  std::sort(rows.rbegin(), rows.rend());
  for (int row : rows) {
    try {
      if (row >= sourceRowCount()) {
        const auto added = newRows_.begin() + (row - sourceRowCount());
        if (added->posted) dataview::TRowPoster(session_, *writer_).Delete(added->stored);
        beginRemoveRows({}, row, row);
        newRows_.erase(added);
        endRemoveRows();
        continue;
      }
      const size_t source = sourceRowOf(row);
      dataview::TRowPoster(session_, *writer_).Delete(confirmedRecord(row));
      beginRemoveRows({}, row, row);
      deleted_.insert(std::upper_bound(deleted_.begin(), deleted_.end(), source), source);
      confirmed_.erase(source);
      pending_.erase(source);
      endRemoveRows();
    } catch (const ServerError& e) {
      reportFailure(e, true);
      return false;
    } catch (const std::exception& e) {
      reportFailure(e, false);
      return false;
    }
  }
  return true;
}

}  // namespace lomarin::ui
