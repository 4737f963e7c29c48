#include "ui/dataview/frame_data.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <stdexcept>

#include "engine/app/settings_store.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/field_kinds.h"
#include "ui/dataview/data_card.h"
#include "ui/dataview/data_delegate.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/foreign_key_box.h"
#include "ui/dataview/form_limit_settings.h"
#include "ui/focus_return.h"

namespace lomarin::ui {

namespace {

QToolButton* pagingButton(QWidget* parent, const char* name, QStyle::StandardPixmap icon) {
  auto* button = new QToolButton(parent);
  button->setObjectName(name);
  button->setIcon(parent->style()->standardIcon(icon));
  button->setAutoRaise(true);
  return button;
}

QString qs(const std::string& text) { return QString::fromStdString(text); }

// Keeps the wait cursor up while the server works.
struct WaitCursor {
  WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QApplication::restoreOverrideCursor(); }
};

}  // namespace

TframeData::TframeData(TMyConnection& session, SettingsStore& settings, QWidget* parent)
    : QWidget(parent), session_(session), settings_(settings), model_(new TDataModel(session, this)) {
  setObjectName("TframeData");
  ErrorDisplay = [this](const QString& message) {
    TFocusReturn focus;
    QMessageBox::critical(this, tr("Error"), message);
  };
  model_->onPostError = [this](const QString& message, bool serverError) {
    reportError(message, serverError);
  };
  buildUi();
  buildActions();
  applyOptions();
  connect(model_, &QAbstractItemModel::modelReset, this, &TframeData::updateRecordIndicator);
  connect(model_, &QAbstractItemModel::rowsInserted, this, &TframeData::updateRecordIndicator);
  connect(model_, &QAbstractItemModel::rowsRemoved, this, &TframeData::updateRecordIndicator);
}

TframeData::~TframeData() = default;

void TframeData::buildUi() {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);

  // One row: the limit bar (tables only) and the filter line (once EnableFilter is called).
  auto* top = new QHBoxLayout;
  top->setContentsMargins(2, 2, 2, 0);
  cxgrbolimit_ = new QFrame(this);
  cxgrbolimit_->setObjectName("cxgrbolimit");
  cxgrbolimit_->setFrameShape(QFrame::StyledPanel);
  auto* bar = new QHBoxLayout(cxgrbolimit_);
  bar->setContentsMargins(4, 0, 4, 0);
  spleftall_ = pagingButton(cxgrbolimit_, "spleftall", QStyle::SP_MediaSkipBackward);
  spleft_ = pagingButton(cxgrbolimit_, "spleft", QStyle::SP_MediaSeekBackward);
  cxspnLimit_ = new QLineEdit(cxgrbolimit_);
  cxspnLimit_->setObjectName("cxspnLimit");
  cxspnLimit_->setFixedWidth(70);
  cxspnLimit_->setAlignment(Qt::AlignRight);
  cxspnLimit_->setReadOnly(true);
  spLimitSettings_ = pagingButton(cxgrbolimit_, "spLimitSettings", QStyle::SP_FileDialogDetailedView);
  spLimitSettings_->setToolTip(tr("Limit settings"));
  spright_ = pagingButton(cxgrbolimit_, "spright", QStyle::SP_MediaSeekForward);
  sprightall_ = pagingButton(cxgrbolimit_, "sprightall", QStyle::SP_MediaSkipForward);
  cxchkActive_ = new QCheckBox(tr("Active"), cxgrbolimit_);
  cxchkActive_->setObjectName("cxchkActive");
  for (QWidget* w : std::initializer_list<QWidget*>{spleftall_, spleft_, cxspnLimit_, spLimitSettings_,
                                                    spright_, sprightall_, cxchkActive_})
    bar->addWidget(w);
  cxgrbolimit_->setVisible(false);
  top->addWidget(cxgrbolimit_);
  filterLabel_ = new QLabel(tr("Filter:"), this);
  edtFilter_ = new QLineEdit(this);
  edtFilter_->setObjectName("edtFilter");
  edtFilter_->setPlaceholderText(tr("condition, e.g. price > 10 (Enter applies)"));
  edtFilter_->setClearButtonEnabled(true);
  filterLabel_->setVisible(false);
  edtFilter_->setVisible(false);
  top->addWidget(filterLabel_);
  top->addWidget(edtFilter_, 1);
  layout->addLayout(top);

  pages_ = new QTabWidget(this);
  pages_->setObjectName("pgcData");
  pages_->setTabPosition(QTabWidget::South);
  grid_ = new QTableView(pages_);
  grid_->setObjectName("cxdbgrData");
  grid_->setModel(model_);
  delegate_ = new TDataDelegate(model_, grid_);
  grid_->setItemDelegate(delegate_);
  grid_->setSelectionBehavior(QAbstractItemView::SelectItems);
  grid_->setContextMenuPolicy(Qt::ActionsContextMenu);
  grid_->verticalHeader()->setDefaultSectionSize(grid_->fontMetrics().height() + 6);
  grid_->horizontalHeader()->setSectionsClickable(false);
  pages_->addTab(grid_, tr("&Data"));
  card_ = new TDataCard(model_, pages_);
  pages_->addTab(card_, tr("&Form"));
  layout->addWidget(pages_, 1);

  statusBar_ = new QStatusBar(this);
  statusBar_->setObjectName("StatusBar");
  statusBar_->setSizeGripEnabled(false);
  statusText_ = new QLabel(statusBar_);
  statusText_->setObjectName("lblStatusText");
  recordText_ = new QLabel(tr("Record ???"), statusBar_);
  recordText_->setObjectName("lblRecord");
  statusBar_->addWidget(statusText_, 1);
  statusBar_->addPermanentWidget(recordText_);
  layout->addWidget(statusBar_);

  connect(spleftall_, &QToolButton::clicked, this, [this] { pagingStep(&dataview::TLimitPaging::First); });
  connect(spleft_, &QToolButton::clicked, this, [this] { pagingStep(&dataview::TLimitPaging::Prior); });
  connect(spright_, &QToolButton::clicked, this, [this] { pagingStep(&dataview::TLimitPaging::Next); });
  connect(sprightall_, &QToolButton::clicked, this, [this] { pagingStep(&dataview::TLimitPaging::Last); });
  connect(spLimitSettings_, &QToolButton::clicked, this, &TframeData::onLimitSettings);
  connect(cxchkActive_, &QCheckBox::toggled, this, &TframeData::onActiveToggled);
  connect(grid_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &TframeData::onCurrentRowChanged);
  setPagingEnabled(false);
}

void TframeData::onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous) {
  if (previous.isValid() && previous.row() != current.row() && !returningToRow_ &&
      !leaveRow(previous.row())) {
    returningToRow_ = true;
    grid_->setCurrentIndex(previous);
    returningToRow_ = false;
    return;
  }
  card_->showRow(current.row());
  updateRecordIndicator();
}

bool TframeData::leaveRow(int row) {
  model_->postRow(row);
  if (!model_->isPendingRow(row)) return true;
  if (!askDiscard(row)) return false;
  model_->revertRow(row);
  return true;
}

bool TframeData::askDiscard(int row) {
  const QString reason = model_->pendingReason(row);
  const QString state = reason.isEmpty() ? tr("Row %1 has not been saved.").arg(row + 1)
                                         : tr("Row %1 was not saved: %2").arg(row + 1).arg(reason);
  QMessageBox box(QMessageBox::Question, tr("Unsaved change"),
                  state + "\n\n" + tr("Discard the change and show the stored values?"),
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setObjectName("UnsavedChange");
  box.setDefaultButton(QMessageBox::No);
  TFocusReturn focus;
  return box.exec() == QMessageBox::Yes;
}

bool TframeData::ConfirmDropUnsaved() {
  int row = model_->firstPendingRow();
  if (row < 0) return true;
  if (!askDiscard(row)) return false;
  for (; row >= 0; row = model_->firstPendingRow()) model_->revertRow(row);
  return true;
}

void TframeData::RevertRow() {
  const QModelIndex current = grid_->currentIndex();
  if (current.isValid()) model_->revertRow(current.row());
}

void TframeData::applyOptions() {
  BestFit = settings_.read(opt::ColumnsBestFit);
  fetchAll_ = settings_.read(opt::FetchAllRecords);
  if (settings_.read(opt::RowAutoHeight) && !BestFit)
    grid_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  // Typing searches the current column instead of starting an edit.
  if (settings_.read(opt::AutoSearch))
    grid_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
}

void TframeData::reportError(const QString& message, bool serverError) {
  statusText_->setText(message);
  // The session's OnError handler has shown server errors already.
  if (serverError && session_.Events.OnError) return;
  if (ErrorDisplay) ErrorDisplay(message);
}

bool TframeData::reopen(const std::string& sql) {
  if (!ConfirmDropUnsaved()) return false;
  WaitCursor wait;
  const std::string previous = sql_;
  try {
    model_->open(sql, fetchAll_);
    sql_ = sql;
  } catch (const ServerError& error) {
    reportError(qs(error.message()), true);
    // Show the last good result again so the grid keeps its state.
    if (!previous.empty() && previous != sql) {
      try {
        model_->open(previous, fetchAll_);
      } catch (const ServerError&) {
        // Reported by the session's handler like the first error; the grid stays empty.
      }
    }
    return false;
  }
  afterOpen();
  return true;
}

void TframeData::afterOpen() {
  statusText_->setText(model_->writerReady() ? qs(model_->writer().ReadOnlyReason()) : QString());
  if (BestFit) FitColumns();
  defaultWidths_.clear();
  for (int i = 0; i < model_->columnCount(); ++i) defaultWidths_.push_back(grid_->columnWidth(i));
  card_->rebuild();
  if (model_->rowCount() > 0) grid_->setCurrentIndex(model_->index(0, 0));
  updateRecordIndicator();
  emit opened();
}

bool TframeData::ShowQuery(std::unique_ptr<TMyQuery> query) {
  cxgrbolimit_->setVisible(false);
  IsTable = false;
  std::string sql = query->SQL;
  try {
    model_->adopt(std::move(query));
    sql_ = std::move(sql);
  } catch (const ServerError& error) {
    reportError(qs(error.message()), true);
    return false;
  }
  afterOpen();
  return true;
}

void TframeData::ClearResult() {
  model_->clear();
  sql_.clear();
  statusText_->clear();
  card_->rebuild();
  updateRecordIndicator();
}

void TframeData::setStatusBarVisible(bool visible) { statusBar_->setVisible(visible); }

bool TframeData::OpenSQL(const std::string& sql) {
  cxgrbolimit_->setVisible(false);
  IsTable = false;
  return reopen(sql);
}

bool TframeData::Refresh() {
  model_->forgetTable();
  return reopen(sql_);
}

void TframeData::SetForeignKeys(const std::vector<dataview::TMyFK>& keys) {
  delegate_->ForeignEditor = [this, keys](QWidget* parent, int column) -> QWidget* {
    const TMyField& field = model_->fields().at(static_cast<size_t>(column));
    const std::string& name = field.OrgName.empty() ? field.Name : field.OrgName;
    const auto key = std::find_if(keys.begin(), keys.end(),
                                  [&](const dataview::TMyFK& k) { return k.COLUMN_NAME == name; });
    if (key == keys.end()) return nullptr;
    int64_t size = 0;
    try {
      size = dataview::ParsePageSize(cxspnLimit_->text().toStdString());
    } catch (const std::invalid_argument&) {
      return nullptr;  // without a page size the values are not read; the cell takes typed text
    }
    return new TForeignKeyBox(
        [this, key = *key, size](int64_t start) {
          return dataview::TMyFKS::ReadReferencedValues(session_, key, start, size);
        },
        size, parent);
  };
}

bool TframeData::LimitActive() const { return !cxgrbolimit_->isHidden() && cxchkActive_->isChecked(); }

void TframeData::EnableLimit() {
  {
    const QSignalBlocker block(cxchkActive_);
    cxchkActive_->setChecked(settings_.read(opt::UseLimit));
  }
  cxspnLimit_->setText(qs(settings_.read(opt::LimitSize)));
  cxgrbolimit_->setVisible(true);
}

bool TframeData::ExecSQL() {
  std::string sql = BaseSQL;
  if (LimitActive()) {
    LimitClause = "LIMIT 0," + cxspnLimit_->text().toStdString();
    sql += "\n" + LimitClause;
  }
  return reopen(sql);
}

bool TframeData::ExecViewSQL() { return ExecSQL(); }

void TframeData::setPagingEnabled(bool enabled) {
  for (QWidget* w :
       std::initializer_list<QWidget*>{spleftall_, spleft_, spright_, sprightall_, spLimitSettings_})
    w->setEnabled(enabled);
}

void TframeData::refreshLimitBar() {
  spleftall_->setEnabled(paging_.FirstEnabled());
  spleft_->setEnabled(paging_.PriorEnabled());
  spright_->setEnabled(paging_.NextEnabled());
  sprightall_->setEnabled(paging_.LastEnabled());
  spleftall_->setToolTip(qs(paging_.FirstHint()));
  spleft_->setToolTip(qs(paging_.PriorHint()));
  spright_->setToolTip(qs(paging_.NextHint()));
  sprightall_->setToolTip(qs(paging_.LastHint()));
  spLimitSettings_->setEnabled(true);
}

void TframeData::InitLimit() {
  if (!cxchkActive_->isChecked()) {
    setPagingEnabled(false);
    spLimitSettings_->setEnabled(false);
    return;
  }
  try {
    const int64_t size = dataview::ParsePageSize(cxspnLimit_->text().toStdString());
    TMyQuery count(session_);
    count.SQL = dataview::RowCountSQL(TableName);
    count.Open();
    count.Next();
    const int64_t total = std::stoll(std::string(count.Value(0)));
    count.Close();
    paging_.Start(size, total);
  } catch (const ServerError& error) {
    reportError(qs(error.message()), true);
    setPagingEnabled(false);
    return;
  } catch (const std::invalid_argument& error) {
    reportError(QString::fromUtf8(error.what()), false);
    setPagingEnabled(false);
    return;
  }
  refreshLimitBar();
}

bool TframeData::applyLimitClause(const std::string& clause) {
  setPagingEnabled(false);
  const bool ok = reopen(dataview::ReplaceLimitLine(sql_, clause));
  if (ok) LimitClause = clause;
  return ok;
}

void TframeData::pagingStep(std::string (dataview::TLimitPaging::*step)()) {
  const dataview::TLimitPaging before = paging_;
  const std::string clause = (paging_.*step)();
  if (!applyLimitClause(clause)) paging_ = before;
  refreshLimitBar();
}

void TframeData::restartPaging() {
  InitLimit();
  if (!spLimitSettings_->isEnabled()) return;
  applyLimitClause("LIMIT 0," + cxspnLimit_->text().toStdString());
  refreshLimitBar();
}

void TframeData::onActiveToggled(bool active) {
  if (!ConfirmDropUnsaved()) {
    const QSignalBlocker block(cxchkActive_);
    cxchkActive_->setChecked(!active);
    return;
  }
  if (active) {
    restartPaging();
    return;
  }
  setPagingEnabled(false);
  applyLimitClause("");
  spLimitSettings_->setEnabled(false);
}

void TframeData::onLimitSettings() {
  TformLimitSetings dialog(settings_, this);
  if (dialog.exec() != QDialog::Accepted || !ConfirmDropUnsaved()) return;
  cxspnLimit_->setText(QString::number(dialog.limitValue()));
  restartPaging();
}

void TframeData::GetDefaultColumns(const QString& keyColumn) {
  model_->setKeyColumn(keyColumn);
  if (BestFit) FitColumns();
}

void TframeData::EnableCxGridSort() {
  QHeaderView* header = grid_->horizontalHeader();
  header->setSectionsClickable(true);
  connect(header, &QHeaderView::sectionClicked, this, &TframeData::SortByColumn, Qt::UniqueConnection);
}

void TframeData::EnableFilter() {
  connect(edtFilter_, &QLineEdit::returnPressed, this, &TframeData::applyFilterLine, Qt::UniqueConnection);
  connect(edtFilter_, &QLineEdit::textChanged, this, &TframeData::onFilterTextChanged, Qt::UniqueConnection);
  filterLabel_->setVisible(true);
  edtFilter_->setVisible(true);
  QHeaderView* header = grid_->horizontalHeader();
  header->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(header, &QHeaderView::customContextMenuRequested, this, &TframeData::showFilterValues,
          Qt::UniqueConnection);
}

void TframeData::applyFilterLine() { ApplyFilter(edtFilter_->text()); }

void TframeData::onFilterTextChanged(const QString& text) {
  // An emptied box (its clear button, or the text deleted) shows every row again.
  if (!text.isEmpty() || WhereLine.empty() || ApplyFilter({})) return;
  const QSignalBlocker block(edtFilter_);
  edtFilter_->setText(filterCondition_);
}

bool TframeData::ApplyFilter(const QString& condition) {
  const std::string line = dataview::WhereLineFor(condition.toStdString());
  const bool ok = reopen(dataview::ApplyWhereLine(sql_, line, LimitActive(), LimitClause));
  if (ok) {
    WhereLine = line;
    filterCondition_ = condition;
    // The box shows the filter in force, also one chosen from a column's value list.
    const QSignalBlocker block(edtFilter_);
    edtFilter_->setText(condition);
  }
  return ok;
}

bool TframeData::SortByColumn(int column) {
  const auto& fields = model_->fields();
  if (column < 0 || column >= static_cast<int>(fields.size()) || dataview::IsBlobOrMemoField(fields[column]))
    return false;
  const std::string& name = fields[static_cast<size_t>(column)].Name;
  const bool descending =
      sortColumns_.size() == 1 && sortColumns_[0].name == name && !sortColumns_[0].descending;
  const std::vector<dataview::SortColumn> sort{{name, descending}};
  if (!reopen(dataview::PlaceOrderBy(sql_, dataview::OrderByLine(sort)))) return false;
  sortColumns_ = sort;
  grid_->horizontalHeader()->setSortIndicatorShown(true);
  grid_->horizontalHeader()->setSortIndicator(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
  return true;
}

QString TframeData::recordText() const { return recordText_->text(); }
QString TframeData::statusText() const { return statusText_->text(); }

void TframeData::updateRecordIndicator() {
  const int count = model_->rowCount();
  const QModelIndex current = grid_->currentIndex();
  recordText_->setText(count == 0 || !current.isValid()
                           ? tr("Record ???")
                           : QString("Record  %1 / %2").arg(current.row() + 1).arg(count));
  emit recordTextChanged(recordText_->text());
}

void TframeData::FitColumns() {
  const auto& fields = model_->fields();
  for (int i = 0; i < static_cast<int>(fields.size()); ++i)
    if (!dataview::IsBlobOrMemoField(fields[static_cast<size_t>(i)])) grid_->resizeColumnToContents(i);
}

void TframeData::RestoreColumns() {
  QHeaderView* header = grid_->horizontalHeader();
  for (int i = 0; i < static_cast<int>(defaultWidths_.size()); ++i) {
    header->moveSection(header->visualIndex(i), i);
    header->showSection(i);
    grid_->setColumnWidth(i, defaultWidths_[static_cast<size_t>(i)]);
  }
}

}  // namespace lomarin::ui
