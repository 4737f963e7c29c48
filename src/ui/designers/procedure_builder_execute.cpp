// The Execute page of the routine editor: the parameter list, the call, and its results.
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <chrono>

#include "engine/sqleditor/my_script.h"
#include "ui/dataview/frame_data.h"
#include "ui/designers/form_procedure_builder.h"
#include "ui/sqleditor/query_wait.h"
#include "ui/sqleditor/result_view.h"

namespace lomarin::ui {

namespace {

enum Column { ColName, ColDataType, ColType, ColValue, ColNull, ColSize };

constexpr size_t kFirstRows = 500;

QTableWidgetItem* fixedItem(const QString& text) {
  auto* item = new QTableWidgetItem(text);
  item->setFlags(item->flags() & ~Qt::ItemIsEditable);
  return item;
}

}  // namespace

void TformProcedureBuilder::buildExecutePage(const TProcedureBuilderContext& context) {
  auto* page = new QWidget(pgcMain_);
  page->setObjectName("tsExecute");
  auto* split = new QSplitter(Qt::Vertical, page);
  auto* top = new QWidget(split);
  grdParams_ = new QTableWidget(0, 6, top);
  grdParams_->setObjectName("grdParams");
  grdParams_->setHorizontalHeaderLabels({"Name", "DataType", "Type", "Value", "Null", "Size"});
  grdParams_->horizontalHeader()->setSectionResizeMode(ColValue, QHeaderView::Stretch);
  grdParams_->verticalHeader()->hide();
  buExecute_ = new QPushButton("Run SQL", top);
  buExecute_->setObjectName("buExecute");
  connect(buExecute_, &QPushButton::clicked, this, &TformProcedureBuilder::buExecuteClick);
  auto* topLayout = new QVBoxLayout(top);
  topLayout->setContentsMargins(0, 0, 0, 0);
  topLayout->addWidget(grdParams_);
  topLayout->addWidget(buExecute_, 0, Qt::AlignLeft);

  pgcResults_ = new QTabWidget(split);
  pgcResults_->setObjectName("pgcResults");
  fraData_ = new TframeData(context.Session, context.Settings, pgcResults_);
  fraData_->setObjectName("fraData");
  if (context.ShowServerError) fraData_->ErrorDisplay = context.ShowServerError;
  pgcResults_->addTab(fraData_, "Result 1");
  split->setStretchFactor(0, 1);
  split->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(split);
  pgcMain_->addTab(page, "  &Execute");
}

void TformProcedureBuilder::fillParameters() {
  proc_.Database = database_;
  proc_.StoredProcName = name_;
  proc_.IsFunction = designers::RoutineKindOf(kind_) == designers::TRoutineKind::Function;
  try {
    proc_.ReadParams();
  } catch (const ServerError&) {
    proc_.Params.clear();  // the session's error handling has shown it
  }
  grdParams_->setRowCount(0);
  for (const designers::TProcParam& param : proc_.Params) {
    const int row = grdParams_->rowCount();
    grdParams_->insertRow(row);
    grdParams_->setItem(row, ColName, fixedItem(QString::fromStdString(param.Name)));
    grdParams_->setItem(row, ColDataType, fixedItem(QString::fromStdString(param.DataType)));
    const std::string_view kind = designers::ParamKindName(param.Kind);
    grdParams_->setItem(row, ColType, fixedItem(QString::fromLatin1(kind.data(), qsizetype(kind.size()))));
    grdParams_->setItem(row, ColValue, new QTableWidgetItem());
    auto* null = new QTableWidgetItem();
    null->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    null->setCheckState(Qt::Unchecked);
    grdParams_->setItem(row, ColNull, null);
    grdParams_->setItem(row, ColSize, fixedItem(QString::number(param.Size)));
  }
}

// The RESULT row stands for the function's value and is never sent.
void TformProcedureBuilder::readParameterValues() {
  for (int row = 0; row < grdParams_->rowCount(); ++row) {
    const QString name = grdParams_->item(row, ColName)->text();
    designers::TProcParam* param = proc_.ParamByName(name.toStdString());
    if (!param || param->Kind == designers::TParamKind::Result) continue;
    if (grdParams_->item(row, ColNull)->checkState() == Qt::Checked)
      param->Value.reset();
    else
      param->Value = grdParams_->item(row, ColValue)->text().toStdString();
  }
}

void TformProcedureBuilder::showParameterValues() {
  for (int row = 0; row < grdParams_->rowCount(); ++row) {
    const designers::TProcParam* param =
        proc_.ParamByName(grdParams_->item(row, ColName)->text().toStdString());
    if (!param || param->Kind == designers::TParamKind::In) continue;
    grdParams_->item(row, ColValue)
        ->setText(param->Value ? QString::fromStdString(*param->Value) : QString());
    grdParams_->item(row, ColNull)->setCheckState(param->Value ? Qt::Unchecked : Qt::Checked);
  }
}

void TformProcedureBuilder::clearResults() {
  while (pgcResults_->count() > 1) {
    QWidget* page = pgcResults_->widget(1);
    pgcResults_->removeTab(1);
    delete page;
  }
  fraData_->ClearResult();
}

bool TformProcedureBuilder::runOnSession(const QString& what, const std::function<void()>& work) {
  std::optional<ServerError> failure;
  stopRequested_ = false;
  setRunning(true);
  try {
    activity_->run(
        TSessionActivity::describe(what, QString::fromStdString(name_)), work, [this] { Stop(); }, wait_);
  } catch (const ServerError& error) {
    failure = error;
  }
  setRunning(false);
  if (!failure) return true;
  // The user asked for the interruption; its error tells nothing new.
  if (stopRequested_) return false;
  // The worker's error skipped the session's handler: it is shown here, on this thread.
  if (session_.Events.OnError)
    session_.Events.OnError(*failure);
  else if (report_)
    report_(QString::fromStdString(failure->message()));
  return false;
}

void TformProcedureBuilder::buExecuteClick() {
  if (running_ || name_.empty()) return;
  readParameterValues();
  proc_.PrepareSQL();
  clearResults();
  const auto t0 = std::chrono::steady_clock::now();
  TQueryRun run;
  if (!runOnSession("Execute", [&] { run = proc_.ExecProc(kFirstRows); })) return;
  const auto ms =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - t0);
  showParameterValues();
  if (!proc_.IsFunction) {
    if (run.First) fraData_->ShowQuery(std::move(run.First));
    for (TResultSet& result : run.Others) {
      QTableView* view = createResultView(std::make_shared<const TResultSet>(std::move(result)), pgcResults_);
      pgcResults_->addTab(view, QString("Result %1").arg(pgcResults_->count() + 1));
    }
  }
  panels_[4]->setText(
      "SQL Executed : " + QString::number(double(ms.count()) / 1000.0, 'g', QLocale::FloatingPointShortest) +
      " secs");
}

void TformProcedureBuilder::Stop() {
  if (!running_) return;
  stopRequested_ = true;
  if (compiling_)
    compiling_->BreakExec();
  else
    proc_.BreakExec();
}

}  // namespace lomarin::ui
