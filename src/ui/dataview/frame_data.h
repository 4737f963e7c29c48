#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/browse_sql.h"
#include "engine/dataview/exporters.h"
#include "engine/dataview/foreign_keys.h"
#include "engine/dataview/limit_paging.h"

class QAction;
class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QStatusBar;
class QTabWidget;
class QTableView;
class QToolButton;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

class TDataModel;
class TDataCard;
class TDataDelegate;

// The data grid embedded by every document that shows rows: a grid ("&Data") and a one-record
// card ("&Form") over a result of the session, the LIMIT bar for paging through a table, the
// server-side filter line and header-click sort, row editing and export.
class TframeData : public QWidget {
  Q_OBJECT
 public:
  TframeData(TMyConnection& session, SettingsStore& settings, QWidget* parent = nullptr);
  ~TframeData() override;

  std::string BaseSQL;
  std::string TableName;
  std::string ViewTableName;
  std::string WhereLine;
  std::string LimitClause;
  bool IsTable = false;
  bool BestFit = true;

  // Shows errors that the session's own OnError handler does not (validation, row counts, and
  // server errors when no handler is set). Defaults to a message box.
  std::function<void(const QString& message)> ErrorDisplay;

  // Browsing a table: the options set the limit bar, ExecSQL opens BaseSQL with the limit line,
  // InitLimit sets up paging from the row count.
  void EnableLimit();
  bool ExecSQL();
  bool ExecViewSQL();
  void InitLimit();
  void GetDefaultColumns(const QString& keyColumn);
  void EnableCxGridSort();
  void EnableFilter();
  // Any statement, shown without the limit bar (SQL editor results and the like).
  bool OpenSQL(const std::string& sql);
  // Shows the result of a query opened elsewhere, without the limit bar.
  bool ShowQuery(std::unique_ptr<TMyQuery> query);
  // Cells of these referencing columns are edited with a drop-down of the referenced values, read
  // in pages of the limit bar's size.
  void SetForeignKeys(const std::vector<dataview::TMyFK>& keys);
  // Empties the grid, columns included.
  void ClearResult();
  // Reopens the current statement.
  bool Refresh();
  // A document with a status bar of its own shows the record indicator there.
  void setStatusBarVisible(bool visible);

  // Asks before a row change the server has not stored is dropped (by paging, refreshing,
  // filtering, sorting); true when there is none or the user lets it go, which restores the rows.
  bool ConfirmDropUnsaved();

  // Applies a server-side filter condition; empty removes the filter.
  bool ApplyFilter(const QString& condition);
  // The distinct values of a column as literals (at most `limit`), for its filter drop-down.
  std::vector<std::pair<QString, std::string>> FilterValues(int column, int limit);
  // Filters on one value taken from FilterValues.
  bool FilterOnValue(int column, const std::string& literal);
  // Orders by the given column (toggling ASC/DESC on a second click); false for BLOB/memo columns.
  bool SortByColumn(int column);

  const std::string& SQLText() const { return sql_; }
  const dataview::TLimitPaging& Paging() const { return paging_; }
  bool LimitActive() const;
  TDataModel* model() const { return model_; }
  QTableView* grid() const { return grid_; }
  QString recordText() const;
  QString statusText() const;
  QAction* action(const QString& objectName) const;

  // Commands of the frame (also on its tool bar and context menu).
  void CopyCell();
  void CopySelectedRows();
  void CopyGrid();
  void PasteCells();
  void ClearCell();
  void InsertRecord();
  void DeleteRecords();
  void PostRecord();
  // Drops the current row's unsaved change and shows the stored values again.
  void RevertRow();
  void LoadAllRecords();
  void ShowRecordCount();
  void FitColumns();
  void RestoreColumns();
  // Composes a condition in the advanced filter builder and applies it as the server-side filter.
  void AdvancedFilter();
  // Shows the current cell's value in the BLOB viewer.
  void BlobViewer();
  // Exports the current statement (all its rows, read from the server) into a file.
  bool ExportTo(dataview::TExportFormat format, const QString& file);

 signals:
  void opened();
  void recordTextChanged(const QString& text);

 private:
  void buildUi();
  void buildActions();
  void applyOptions();
  bool reopen(const std::string& sql);
  void afterOpen();
  bool applyLimitClause(const std::string& clause);
  void pagingStep(std::string (dataview::TLimitPaging::*step)());
  void restartPaging();
  void refreshLimitBar();
  void setPagingEnabled(bool enabled);
  void onActiveToggled(bool active);
  void applyFilterLine();
  void onFilterTextChanged(const QString& text);
  void onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous);
  bool leaveRow(int row);
  bool askDiscard(int row);
  void showFilterValues(const QPoint& pos);
  void onLimitSettings();
  void updateRecordIndicator();
  void reportError(const QString& message, bool serverError);
  void exportWithDialog(dataview::TExportFormat format);
  bool confirmLoadAll();
  std::vector<int> selectedRows() const;

  TMyConnection& session_;
  SettingsStore& settings_;
  TDataModel* model_;
  TDataDelegate* delegate_ = nullptr;
  dataview::TLimitPaging paging_;
  std::vector<dataview::SortColumn> sortColumns_;
  std::string sql_;
  QString filterCondition_;
  bool returningToRow_ = false;
  bool fetchAll_ = false;
  std::vector<int> defaultWidths_;

  QFrame* cxgrbolimit_ = nullptr;
  QToolButton* spleftall_ = nullptr;
  QToolButton* spleft_ = nullptr;
  QLineEdit* cxspnLimit_ = nullptr;
  QToolButton* spLimitSettings_ = nullptr;
  QToolButton* spright_ = nullptr;
  QToolButton* sprightall_ = nullptr;
  QCheckBox* cxchkActive_ = nullptr;
  QLabel* filterLabel_ = nullptr;
  QLineEdit* edtFilter_ = nullptr;
  QTabWidget* pages_ = nullptr;
  QTableView* grid_ = nullptr;
  TDataCard* card_ = nullptr;
  QStatusBar* statusBar_ = nullptr;
  QLabel* statusText_ = nullptr;
  QLabel* recordText_ = nullptr;
};

}  // namespace lomarin::ui
