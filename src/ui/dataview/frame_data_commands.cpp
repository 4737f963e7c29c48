#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTableView>
#include <QToolButton>
#include <algorithm>
#include <numeric>

#include "engine/app/data_folder.h"
#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/field_kinds.h"
#include "engine/dataview/row_writer.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/form_adv_filter_builder.h"
#include "ui/dataview/form_blob_viewer.h"
#include "ui/dataview/frame_data.h"
#include "ui/focus_return.h"

namespace lomarin::ui {

namespace {

QString cellText(TDataModel* model, int row, int column) {
  return model->data(model->index(row, column), Qt::EditRole).toString();
}

// Tab-separated lines, the clipboard form spreadsheets read.
QString rowsText(TDataModel* model, const std::vector<int>& rows) {
  QStringList lines;
  for (int row : rows) {
    QStringList cells;
    for (int c = 0; c < model->columnCount(); ++c) cells << cellText(model, row, c);
    lines << cells.join('\t');
  }
  return lines.join('\n');
}

}  // namespace

void TframeData::buildActions() {
  struct Command {
    const char* name;
    const char* text;
    const char* shortcut;
    void (TframeData::*run)();
  };
  static const Command commands[] = {
      {"actCopyCell", "Copy cell", "Ctrl+C", &TframeData::CopyCell},
      {"actCopyRows", "Copy selected rows", "", &TframeData::CopySelectedRows},
      {"actCopyGrid", "Copy whole grid", "", &TframeData::CopyGrid},
      {"actPaste", "Paste", "Ctrl+V", &TframeData::PasteCells},
      {"actClearCell", "Clear cell (NULL)", "Ctrl+Del", &TframeData::ClearCell},
      {"actInsertRecord", "Insert record", "Ins", &TframeData::InsertRecord},
      {"actDeleteRecords", "Delete records", "Ctrl+Shift+Del", &TframeData::DeleteRecords},
      {"actPost", "Post record", "Ctrl+Return", &TframeData::PostRecord},
      {"actRevertRow", "Restore stored values", "Esc", &TframeData::RevertRow},
      {"actRefresh", "Refresh", "F5", nullptr},
      {"actLoadAll", "Load all records", "", &TframeData::LoadAllRecords},
      {"actRecordCount", "Record count", "", &TframeData::ShowRecordCount},
      {"actBestFit", "Best fit", "", &TframeData::FitColumns},
      {"actRestoreColumns", "Restore columns", "", &TframeData::RestoreColumns},
      {"actAdvancedFilter", "Advanced filter...", "", &TframeData::AdvancedFilter},
      {"actBlobViewer", "Blob viewer...", "", &TframeData::BlobViewer},
  };
  for (const Command& command : commands) {
    auto* action = new QAction(tr(command.text), this);
    action->setObjectName(command.name);
    if (*command.shortcut) action->setShortcut(QKeySequence(QString::fromLatin1(command.shortcut)));
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    if (command.run)
      connect(action, &QAction::triggered, this, command.run);
    else
      connect(action, &QAction::triggered, this, &TframeData::Refresh);
    grid_->addAction(action);
  }
  // Escape in an open cell editor stays the editor's own: it drops the typing.
  action("actRevertRow")->setShortcutContext(Qt::WidgetShortcut);
  auto* exportMenu = new QMenu(tr("Export"), this);
  const std::pair<const char*, dataview::TExportFormat> formats[] = {
      {"Text", dataview::TExportFormat::Text}, {"CSV", dataview::TExportFormat::Csv},
      {"HTML", dataview::TExportFormat::Html}, {"XML", dataview::TExportFormat::Xml},
      {"JSON", dataview::TExportFormat::Json}, {"Excel (.xlsx)", dataview::TExportFormat::Xlsx}};
  for (const auto& [text, format] : formats) {
    QAction* action = exportMenu->addAction(tr(text));
    action->setObjectName(QString("actExport") + QString(text).section(' ', 0, 0));
    connect(action, &QAction::triggered, this, [this, f = format] { exportWithDialog(f); });
  }
  QAction* exportAction = exportMenu->menuAction();
  exportAction->setObjectName("actExport");
  grid_->addAction(exportAction);
}

QAction* TframeData::action(const QString& objectName) const { return findChild<QAction*>(objectName); }

std::vector<int> TframeData::selectedRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : grid_->selectionModel()->selectedIndexes())
    if (std::find(rows.begin(), rows.end(), index.row()) == rows.end()) rows.push_back(index.row());
  if (rows.empty() && grid_->currentIndex().isValid()) rows.push_back(grid_->currentIndex().row());
  std::sort(rows.begin(), rows.end());
  return rows;
}

void TframeData::CopyCell() {
  const QModelIndex current = grid_->currentIndex();
  if (current.isValid())
    QApplication::clipboard()->setText(cellText(model_, current.row(), current.column()));
}

void TframeData::CopySelectedRows() { QApplication::clipboard()->setText(rowsText(model_, selectedRows())); }

bool TframeData::confirmLoadAll() {
  if (model_->allFetched()) return true;
  TFocusReturn focus;
  return QMessageBox::warning(
             this, tr("Warning"),
             "All table records will be loaded in memory, this operation may \r\ntake some time",
             QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

void TframeData::CopyGrid() {
  if (!confirmLoadAll()) return;
  model_->fetchAll();
  std::vector<int> rows(static_cast<size_t>(model_->rowCount()));
  std::iota(rows.begin(), rows.end(), 0);
  QApplication::clipboard()->setText(rowsText(model_, rows));
}

void TframeData::PasteCells() {
  const QModelIndex current = grid_->currentIndex();
  if (!current.isValid()) return;
  const QStringList lines = QApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
  for (int r = 0; r < lines.size(); ++r) {
    const int row = current.row() + r;
    if (row >= model_->rowCount() && model_->appendRow() < 0) return;
    const QStringList cells = lines[r].split('\t');
    for (int c = 0; c < cells.size() && current.column() + c < model_->columnCount(); ++c)
      if (!model_->setData(model_->index(row, current.column() + c), cells[c], Qt::EditRole)) return;
    model_->postRow(row);
  }
}

void TframeData::ClearCell() {
  const QModelIndex current = grid_->currentIndex();
  if (current.isValid()) model_->setCell(current.row(), current.column(), {});
}

void TframeData::InsertRecord() {
  const int row = model_->appendRow();
  if (row < 0) return;
  grid_->setCurrentIndex(model_->index(row, 0));
  grid_->scrollTo(model_->index(row, 0));
}

void TframeData::DeleteRecords() {
  const std::vector<int> rows = selectedRows();
  if (rows.empty()) return;
  const QString question =
      rows.size() == 1 ? tr("Delete record?") : tr("Delete %1 records?").arg(rows.size());
  QMessageBox box(QMessageBox::Question, tr("Deleting Confirmation"), question,
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setObjectName("DeletingConfirmation");
  TFocusReturn focus;
  if (box.exec() != QMessageBox::Yes) return;
  model_->deleteRows(rows);
}

void TframeData::PostRecord() {
  const QModelIndex current = grid_->currentIndex();
  if (current.isValid()) model_->postRow(current.row());
}

void TframeData::AdvancedFilter() {
  QStringList columns;
  for (const TMyField& field : model_->fields()) columns << QString::fromStdString(field.Name);
  Tformadvfilterbuilder builder(
      columns, [this](std::string_view value) { return EscapeString(session_, value); }, this);
  builder.setFilterText(filterCondition_);
  TFocusReturn focus;
  if (builder.exec() == QDialog::Accepted) ApplyFilter(builder.filterText());
}

void TframeData::BlobViewer() {
  const QModelIndex current = grid_->currentIndex();
  if (!current.isValid()) return;
  TformBlobViewer viewer(*this, current.column(), settings_, this);
  TFocusReturn focus;
  viewer.exec();
}

void TframeData::LoadAllRecords() {
  if (confirmLoadAll()) model_->fetchAll();
}

std::vector<std::pair<QString, std::string>> TframeData::FilterValues(int column, int limit) {
  std::vector<std::pair<QString, std::string>> values;
  const auto& fields = model_->fields();
  if (TableName.empty() || column < 0 || column >= static_cast<int>(fields.size())) return values;
  const TMyField& field = fields[static_cast<size_t>(column)];
  if (dataview::IsBlobOrMemoField(field) || dataview::IsDateTimeField(field)) return values;
  try {
    TMyQuery query(session_);
    query.SQL = dataview::DistinctValuesSQL(dataview::BackQuote(field.Name), TableName);
    query.UniDirectional = true;
    query.Open();
    auto escape = [this](std::string_view text) { return EscapeString(session_, text); };
    while (static_cast<int>(values.size()) < limit && query.Next()) {
      const dataview::TCellValue value{query.IsNull(0),
                                       query.IsNull(0) ? std::string() : std::string(query.Value(0))};
      const QString shown = value.null ? QStringLiteral("(NULL)") : QString::fromStdString(value.bytes);
      values.emplace_back(shown, dataview::SqlLiteral(field, value, escape));
    }
  } catch (const ServerError& error) {
    reportError(QString::fromStdString(error.message()), true);
  }
  return values;
}

bool TframeData::FilterOnValue(int column, const std::string& literal) {
  const std::string condition =
      dataview::ValueCondition(model_->fields().at(static_cast<size_t>(column)).Name, literal);
  edtFilter_->setText(QString::fromStdString(condition));
  return ApplyFilter(edtFilter_->text());
}

void TframeData::showFilterValues(const QPoint& pos) {
  const int column = grid_->horizontalHeader()->logicalIndexAt(pos);
  constexpr int kShownValues = 50;
  const auto values = FilterValues(column, kShownValues);
  if (values.empty()) return;
  QMenu menu(this);
  menu.setObjectName("mnuFilterValues");
  for (const auto& [shown, literal] : values) {
    QAction* action = menu.addAction(shown);
    connect(action, &QAction::triggered, this, [this, column, l = literal] { FilterOnValue(column, l); });
  }
  menu.exec(grid_->horizontalHeader()->mapToGlobal(pos));
}

void TframeData::ShowRecordCount() {
  try {
    TMyQuery count(session_);
    count.SQL = dataview::RowCountSQL(TableName.empty() ? "(" + sql_ + ") t" : TableName);
    count.Open();
    count.Next();
    const QString name = QString::fromStdString(TableName.empty() ? "query" : TableName);
    TFocusReturn focus;
    QMessageBox::information(this, tr("Information"),
                             "Records for table " + name + " : " + QString::fromUtf8(count.Value(0)));
  } catch (const ServerError& error) {
    reportError(QString::fromStdString(error.message()), true);
  }
}

bool TframeData::ExportTo(dataview::TExportFormat format, const QString& file) {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  bool ok = false;
  try {
    dataview::TExportProgress progress;
    progress.onRows = [this](uint64_t rows) {
      statusText_->setText(tr("%1 rows exported").arg(rows));
      QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
    const uint64_t rows = dataview::ExportQuery(session_, sql_, format, file.toStdString(), progress);
    statusText_->setText(tr("%1 rows exported to %2").arg(rows).arg(file));
    ok = true;
  } catch (const ServerError& error) {
    reportError(QString::fromStdString(error.message()), true);
  } catch (const std::exception& error) {
    reportError(QString::fromUtf8(error.what()), false);
  }
  QApplication::restoreOverrideCursor();
  return ok;
}

void TframeData::exportWithDialog(dataview::TExportFormat format) {
  const QString suggested =
      QString::fromStdString((dataFolder() / dataview::ExportDefaultName(format)).string());
  const QString file = QFileDialog::getSaveFileName(this, tr("Export"), suggested);
  if (!file.isEmpty()) ExportTo(format, file);
}

}  // namespace lomarin::ui
