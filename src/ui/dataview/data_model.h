#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/connect/my_query.h"
#include "engine/dataview/row_writer.h"

namespace lomarin::ui {

// A grid model over a TMyQuery result: rows are read from the server only as the view scrolls to
// them (fetchMore), and cells are read from the query's own row store, so nothing is copied per
// cell. Edits are posted row by row through the data view's row writer; an edit the server refuses
// stays in the model, marked as not saved, so the user can correct it or go back to the stored row.
class TDataModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  explicit TDataModel(TMyConnection& session, QObject* parent = nullptr);
  ~TDataModel() override;

  // Rows read at once when a result is shown.
  static constexpr size_t FirstRows = 1000;

  // Sends the statement and shows its first rows (all of them with fetchAll). Throws ServerError;
  // the model is then empty.
  void open(const std::string& sql, bool fetchAll);
  // Shows the result of a query opened elsewhere (on a worker thread, say); throws like open.
  void adopt(std::unique_ptr<TMyQuery> query);
  // No result, no columns.
  void clear();
  // The next open describes the base table again (after its structure may have changed).
  void forgetTable() { tableInfo_.reset(); }
  const std::vector<TMyField>& fields() const;
  // Describing the base table sends statements, which reads the rest of the result first: it is
  // done at open only when the whole result is in, otherwise at the first edit.
  const dataview::TRowWriter& writer();
  bool writerReady() const { return writerReady_; }
  // Reads every remaining row of the result.
  void fetchAll();
  bool allFetched() const;

  // The grid's row key (the table's first key column): its header shows in bold.
  void setKeyColumn(const QString& name) { keyColumn_ = name; }
  const QString& keyColumn() const { return keyColumn_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // Posts an existing row's change at once; a new row keeps the value until postRow.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  bool canFetchMore(const QModelIndex& parent) const override;
  void fetchMore(const QModelIndex& parent) override;

  dataview::TCellValue cell(int row, int column) const;
  // Sets a cell to NULL (or a value) the way an edit does.
  bool setCell(int row, int column, const dataview::TCellValue& value);
  // Appends an empty new row (reading the rest of the result first) and returns its index; -1
  // (with the reason reported) when the result is read-only.
  int appendRow();
  // Sends the INSERT of a new row; true when there was nothing to send or it succeeded.
  bool postRow(int row);
  // The row holds a change the server has not stored (refused, or a new row not yet inserted).
  bool isPendingRow(int row) const;
  // The first such row, -1 when none.
  int firstPendingRow() const;
  // Why the server refused the row's change; empty when it was not sent yet.
  QString pendingReason(int row) const;
  // Drops the row's unsaved change: the stored values show again, a row never inserted goes.
  void revertRow(int row);
  // Deletes the rows on the server, last first; stops at the first failure.
  bool deleteRows(std::vector<int> rows);

  // Paints whole rows (a process list by its command, say); an invalid colour leaves the row as
  // it is, and a row not saved keeps its own colour.
  std::function<QColor(int row)> rowColour;

  // Reports of failed posts: server errors (also seen by the session's OnError), refused values
  // and wrong row counts.
  std::function<void(const QString& message, bool serverError)> onPostError;

 private:
  struct NewRow {
    dataview::TRecord values;
    std::vector<bool> given;
    bool posted = false;
    dataview::TRecord stored;  // as last written, once posted
    QString reason;
  };
  struct Refused {
    dataview::TRecord values;
    QString reason;
  };
  size_t sourceRowOf(int row) const;
  int sourceRowCount() const;
  dataview::TRecord sourceRecord(size_t source) const;
  dataview::TRecord confirmedRecord(int row) const;
  // Reports the failure and returns its text.
  QString reportFailure(const std::exception& error, bool serverError);
  void rowMarkChanged(int row);
  void resetState();

  TMyConnection& session_;
  std::unique_ptr<TMyQuery> query_;
  std::unique_ptr<dataview::TRowWriter> writer_;
  std::optional<dataview::TBaseTableInfo> tableInfo_;
  bool writerReady_ = false;
  bool maybeEditable_ = false;
  int shownSourceRows_ = 0;
  int fetchBatch_ = 0;
  QString keyColumn_;
  std::vector<size_t> deleted_;                    // sorted source rows removed on the server
  std::map<size_t, dataview::TRecord> confirmed_;  // source rows as last written
  std::map<size_t, Refused> pending_;              // source rows the server refused
  std::vector<NewRow> newRows_;
};

}  // namespace lomarin::ui
