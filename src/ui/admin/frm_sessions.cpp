#include "ui/admin/frm_sessions.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/admin/admin_statements.h"
#include "engine/admin/status_charts.h"
#include "engine/connect/my_query.h"
#include "engine/connect/read_result_table.h"
#include "ui/admin/session_work.h"
#include "ui/admin/status_chart_view.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

QColor colourOf(admin::TProcessColour colour) {
  switch (colour) {
    case admin::TProcessColour::Query:
      return QColor(0, 255, 255);  // aqua
    case admin::TProcessColour::Sleep:
      return QColor(Qt::yellow);
    case admin::TProcessColour::Killed:
      return QColor(Qt::red);
    case admin::TProcessColour::None:
      break;
  }
  return {};
}

// The process list is read-only: the frame's commands that change rows go.
constexpr const char* kEditingActions[] = {"actPaste", "actClearCell", "actInsertRecord", "actDeleteRecords",
                                           "actPost",  "actRevertRow", "actRefresh"};

void fill(QTreeWidget* list, const explorer::ResultTable& table) {
  list->clear();
  for (const auto& row : table.rows) {
    auto* item = new QTreeWidgetItem(list);
    for (int column = 0; column < list->columnCount() && column < static_cast<int>(row.size()); ++column)
      item->setText(column, QString::fromStdString(row[static_cast<size_t>(column)]));
  }
}

}  // namespace

TfrmSessions::TfrmSessions(TMyConnection& session, SettingsStore& settings, ErrorReporter report,
                           QWidget* parent)
    : QWidget(parent),
      session_(session),
      settings_(settings),
      report_(std::move(report)),
      activity_(new TSessionActivity(session, this)) {
  setObjectName("TfrmSessions");
  setWindowTitle("Session Monitor");
  clock_.start();
  buildUi();
}

TfrmSessions::~TfrmSessions() = default;

void TfrmSessions::buildUi() {
  auto* bar = new QHBoxLayout;
  btnRefresh_ = new QPushButton("&Refresh", this);
  btnRefresh_->setObjectName("btnRefresh");
  edtInterval_ = new QSpinBox(this);
  edtInterval_->setObjectName("edtInterval");
  edtInterval_->setRange(0, 3600);
  edtInterval_->setValue(0);
  edtInterval_->setSuffix(" s");
  btnKill_ = new QPushButton("&Kill", this);
  btnKill_->setObjectName("btnKill");
  chkRefreshGraphic_ = new QCheckBox("Refresh graphic", this);
  chkRefreshGraphic_->setObjectName("chkRefreshGraphic");
  chkRefreshGraphic_->setChecked(true);
  bar->addWidget(btnRefresh_);
  bar->addWidget(new QLabel("Auto refresh every", this));
  bar->addWidget(edtInterval_);
  bar->addSpacing(12);
  bar->addWidget(btnKill_);
  bar->addSpacing(12);
  bar->addWidget(chkRefreshGraphic_);
  bar->addStretch(1);
  bar->addWidget(buildLegend());

  tmrRefresh_ = new QTimer(this);
  tmrRefresh_->setObjectName("tmrRefresh");

  fraData_ = new TframeData(session_, settings_, this);
  fraData_->BestFit = true;
  QTableView* grid = fraData_->grid();
  grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid->setSelectionMode(QAbstractItemView::SingleSelection);
  for (const char* name : kEditingActions) grid->removeAction(fraData_->action(name));
  fraData_->model()->rowColour = [this](int row) {
    const int command = columnOf(admin::kCommandField.data());
    if (command < 0) return QColor();
    const dataview::TCellValue value = fraData_->model()->cell(row, command);
    return colourOf(admin::ProcessColourOf(value.null ? std::string_view() : value.bytes));
  };
  fraSQL_ = TframeecSQL::createReadOnly(settings_, this);

  pgcStatus_ = new QTabWidget(this);
  pgcStatus_->setObjectName("pgcStatus");
  for (const admin::TStatusChart& chart : admin::StatusCharts()) {
    auto* view = new TStatusChartView(chart, pgcStatus_);
    view->setObjectName(QString::fromStdString("cht" + chart.Series.front()));
    pgcStatus_->addTab(view, QString::fromStdString(chart.Tab));
    charts_.push_back(view);
  }
  lvVariables_ = addList("lvVariables", "&Variables", {"Variable Name ", "Value"});
  lvServer_ = addList("lvServer", "&Server", {"Variable Name ", "Value"});
  if (admin::PluginsTabShown(session_.ServerVersionNumber()))
    lvPlugins_ = addList("lvPlugins", "Installed plugins", {"Name", "Status"});

  auto* processes = new QSplitter(Qt::Vertical, this);
  processes->addWidget(fraData_);
  processes->addWidget(fraSQL_);
  processes->setStretchFactor(0, 3);
  processes->setStretchFactor(1, 1);
  auto* split = new QSplitter(Qt::Vertical, this);
  split->addWidget(processes);
  split->addWidget(pgcStatus_);
  split->setStretchFactor(0, 1);
  split->setStretchFactor(1, 1);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addLayout(bar);
  layout->addWidget(split, 1);

  connect(btnRefresh_, &QPushButton::clicked, this, &TfrmSessions::Refresh);
  connect(btnKill_, &QPushButton::clicked, this, &TfrmSessions::Kill);
  connect(edtInterval_, &QSpinBox::valueChanged, this, &TfrmSessions::onIntervalChanged);
  connect(tmrRefresh_, &QTimer::timeout, this, &TfrmSessions::Refresh);
  connect(grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &TfrmSessions::showStatement);
}

QWidget* TfrmSessions::buildLegend() {
  auto* legend = new QGroupBox("Status", this);
  legend->setObjectName("gbLegend");
  auto* layout = new QHBoxLayout(legend);
  layout->setContentsMargins(6, 2, 6, 2);
  const std::pair<const char*, admin::TProcessColour> entries[] = {{"Killed", admin::TProcessColour::Killed},
                                                                   {"Sleep", admin::TProcessColour::Sleep},
                                                                   {"Query", admin::TProcessColour::Query}};
  for (const auto& [text, colour] : entries) {
    auto* label = new QLabel(text, legend);
    label->setObjectName(QString("lblLegend") + text);
    label->setMargin(3);
    label->setAutoFillBackground(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::Window, colourOf(colour));
    palette.setColor(QPalette::WindowText, Qt::black);
    label->setPalette(palette);
    layout->addWidget(label);
  }
  return legend;
}

QTreeWidget* TfrmSessions::addList(const char* name, const QString& tab, const QStringList& headers) {
  auto* list = new QTreeWidget(pgcStatus_);
  list->setObjectName(name);
  list->setHeaderLabels(headers);
  list->setRootIsDecorated(false);
  list->header()->setDefaultSectionSize(320);
  pgcStatus_->addTab(list, tab);
  return list;
}

void TfrmSessions::Open() {
  fillLists();
  Refresh();
}

void TfrmSessions::fillLists() {
  explorer::ResultTable variables, status, plugins;
  const bool withPlugins = lvPlugins_ != nullptr;
  setRefreshing(true);
  const bool ok = RunOnSession(
      *activity_, session_, "Session Monitor",
      [&] {
        variables = ReadResultTable(session_, std::string(admin::kVariablesSQL));
        status = ReadResultTable(session_, std::string(admin::kServerStatusSQL));
        if (withPlugins) plugins = ReadResultTable(session_, std::string(admin::kPluginsSQL));
      },
      report_);
  setRefreshing(false);
  if (!ok) return;
  fill(lvVariables_, variables);
  fill(lvServer_, status);
  if (lvPlugins_) fill(lvPlugins_, plugins);
}

void TfrmSessions::setRefreshing(bool refreshing) {
  refreshing_ = refreshing;
  btnRefresh_->setEnabled(!refreshing);
  btnKill_->setEnabled(!refreshing);
  emit busyChanged(refreshing);
  if (!refreshing && closeWhenIdle_)
    QTimer::singleShot(0, this, [this] {
      // Inside the main window the frame around the document closes it.
      auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget());
      frame ? frame->close() : close();
    });
}

int TfrmSessions::columnOf(const char* name) const {
  const auto& fields = fraData_->model()->fields();
  for (size_t i = 0; i < fields.size(); ++i)
    if (QString::fromStdString(fields[i].Name).compare(name, Qt::CaseInsensitive) == 0)
      return static_cast<int>(i);
  return -1;
}

QString TfrmSessions::currentValue(int column) const {
  const QModelIndex current = fraData_->grid()->currentIndex();
  if (column < 0 || !current.isValid()) return {};
  const dataview::TCellValue value = fraData_->model()->cell(current.row(), column);
  return value.null ? QString() : QString::fromStdString(value.bytes);
}

void TfrmSessions::selectId(const QString& id) {
  const int column = columnOf(admin::kProcessIdField.data());
  if (id.isEmpty() || column < 0) return;
  TDataModel* model = fraData_->model();
  for (int row = 0; row < model->rowCount(); ++row)
    if (QString::fromStdString(model->cell(row, column).bytes) == id) {
      fraData_->grid()->setCurrentIndex(model->index(row, column));
      return;
    }
}

void TfrmSessions::showStatement() { fraSQL_->memo()->setText(currentValue(admin::kProcessInfoColumn)); }

void TfrmSessions::Refresh() {
  if (refreshing_) return;
  const QString id = currentValue(columnOf(admin::kProcessIdField.data()));
  const bool graphic = chkRefreshGraphic_->isChecked();
  std::unique_ptr<TMyQuery> processes;
  std::vector<explorer::ResultTable> statusRows;
  setRefreshing(true);
  const bool ok = RunOnSession(
      *activity_, session_, "Session Monitor",
      [&] {
        processes = std::make_unique<TMyQuery>(session_);
        processes->SQL = std::string(admin::kProcessListSQL);
        processes->FetchAll = true;
        processes->Open();
        // One query per chart: the "com_%" counters are read again for the DDL chart.
        if (graphic)
          for (const admin::TStatusChart& chart : admin::StatusCharts())
            statusRows.push_back(ReadResultTable(session_, admin::StatusSetSQL(chart.Source)));
      },
      report_);
  if (ok) {
    fraData_->ShowQuery(std::move(processes));
    selectId(id);
    showStatement();
    const double seconds = static_cast<double>(clock_.elapsed()) / 1000.0;
    for (size_t i = 0; i < statusRows.size(); ++i)
      charts_[i]->addPoints(seconds, admin::ChartPoints(admin::StatusCharts()[i], statusRows[i]));
  }
  setRefreshing(false);
  if (ok) emit refreshed();
}

void TfrmSessions::Kill() {
  if (refreshing_) return;
  const QString id = currentValue(columnOf(admin::kProcessIdField.data()));
  if (id.isEmpty()) return;
  // The session's error handler shows a refused kill; without one the window reports it.
  std::function<void(const ServerError&)> refused;
  if (!session_.Events.OnError)
    refused = [this](const ServerError& error) { report_(QString::fromStdString(error.message())); };
  ExecSQLText(session_, admin::KillSQL(id.toULongLong()), refused);
  Refresh();
}

void TfrmSessions::onIntervalChanged(int seconds) {
  if (seconds > 0) {
    tmrRefresh_->start(seconds * 1000);
  } else {
    tmrRefresh_->stop();
  }
}

void TfrmSessions::closeEvent(QCloseEvent* event) {
  // The refresh's worker still holds the session: the window goes once it is back.
  if (refreshing_) {
    closeWhenIdle_ = true;
    event->ignore();
    return;
  }
  tmrRefresh_->stop();
  QWidget::closeEvent(event);
}

}  // namespace lomarin::ui
