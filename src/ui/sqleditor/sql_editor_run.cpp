// The execution commands of the SQL editor document.
#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QLabel>
#include <QTabWidget>
#include <QTableView>
#include <chrono>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/escape.h"
#include "engine/sqleditor/macros.h"
#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/query_params.h"
#include "engine/sqleditor/query_results.h"
#include "engine/sqleditor/run_current.h"
#include "engine/sqleditor/script_services.h"
#include "engine/sqleditor/sql_history.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/form_params_manager.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"
#include "ui/sqleditor/result_view.h"
#include "ui/sqleditor/script_progress.h"

namespace lomarin::ui {

namespace {

QString secondsText(std::chrono::steady_clock::duration elapsed) {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
  return "SQL Executed : " +
         QString::number(static_cast<double>(ms) / 1000.0, 'g', QLocale::FloatingPointShortest) + " secs";
}

std::vector<std::string> memoLines(const QsciScintilla& memo) {
  std::vector<std::string> lines;
  for (int i = 0; i < memo.lines(); ++i) {
    QString line = memo.text(i);
    while (line.endsWith('\n') || line.endsWith('\r')) line.chop(1);
    lines.push_back(line.toStdString());
  }
  return lines;
}

}  // namespace

bool TformSQLEditor::askCurrentDb() const { return !ctx_.CurrentDb || ctx_.CurrentDb(); }

void TformSQLEditor::RunEditorText() {
  if (!askCurrentDb()) return;
  runQuery(frame_->selectionOrText().toStdString(), true);
}

void TformSQLEditor::RunStatementText(const QString& text) { runQuery(text.toStdString(), true); }

void TformSQLEditor::ExplainEditorText() {
  if (!askCurrentDb()) return;
  runQuery(ExplainText(frame_->selectionOrText().toStdString()), false);
}

void TformSQLEditor::RunCurrentSQL() {
  if (!askCurrentDb()) return;
  QsciScintilla* memo = frame_->memo();
  int line = 0, index = 0;
  memo->getCursorPosition(&line, &index);
  const TRunCurrentPlan plan = PlanRunCurrent(memoLines(*memo), line);
  if (plan.Text.empty()) {
    clearResults();
    return;
  }
  runQuery(plan.Text, true);
  memo->setCursorPosition(std::min(plan.CaretLine, memo->lines() - 1), 0);
  frame_->markExecuted(plan.StartLine);
}

void TformSQLEditor::addToHistory(const std::string& text) {
  if (!ctx_.History) return;
  try {
    ctx_.History->addRecToHistory(text, ctx_.Session.CurrentDatabase());
  } catch (const std::exception& error) {
    showError(QString::fromStdString(error.what()));
  }
}

void TformSQLEditor::runQuery(const std::string& text, bool recordHistory) {
  if (running_) return;
  if (recordHistory) addToHistory(text);
  std::string sql = text;
  TMacros macros = MacrosOf(sql);
  if (!macros.empty()) {
    const TValueEscaper escape = [this](std::string_view value) { return EscapeString(ctx_.Session, value); };
    if (!ctx_.Params || !AskMacroValues(macros, *ctx_.Params, escape, ctx_.ShowServerError, this)) return;
    sql = ExpandMacros(sql, macros);
  }
  // Only once the values are in: a cancelled prompt leaves the last result on screen.
  clearResults();
  const auto t0 = std::chrono::steady_clock::now();
  const bool fetchAll = (ctx_.IsSSHTunnel && ctx_.IsSSHTunnel()) || ctx_.Settings.read(opt::FetchAllRecords);
  TQueryRun run;
  std::optional<ServerError> failure;
  queryStop_.reset();
  setRunning(true);
  try {
    ctx_.Activity->run(
        TSessionActivity::describe("Run SQL", QString::fromStdString(sql)),
        [&] {
          TRunStop::Statement statement(queryStop_, ctx_.Session.Settings, ctx_.Session.ThreadId());
          run = OpenQueryRun(ctx_.Session, sql, fetchAll, TDataModel::FirstRows);
        },
        [this] { Stop(); }, wait_);
  } catch (const ServerError& error) {
    failure = error;
  }
  setRunning(false);
  if (failure) {
    // The user asked for the interruption; its error tells nothing new.
    if (queryStop_.stopped()) return;
    // The worker's error skipped the session's handler: it is shown here, on this thread.
    if (ctx_.Session.Events.OnError)
      ctx_.Session.Events.OnError(*failure);
    else
      showError(QString::fromStdString(failure->message()));
    return;
  }
  const auto elapsed = std::chrono::steady_clock::now() - t0;
  showResults(std::move(run));
  panels_[2]->setText("Rows Count  : " + QString::number(fraData_->model()->rowCount()));
  panels_[3]->setText(secondsText(elapsed));
}

void TformSQLEditor::RunEditorScript() {
  if (!askCurrentDb() || running_) return;
  TMyScript& script = *myScript_;
  script.SQL = frame_->selectionOrText().toStdString();
  scriptErrors_.clear();
  script.OnError = CollectScriptErrors(scriptErrors_);
  frame_->setErrorLine(-1);
  addToHistory(script.SQL);
  const auto t0 = std::chrono::steady_clock::now();
  setRunning(true);
  try {
    RunScriptWithProgress(*ctx_.Activity, script, wait_,
                          TSessionActivity::describe("Run SQL Script", QString::fromStdString(script.SQL)));
  } catch (const ServerError& error) {
    scriptErrors_ += error.message();
  }
  setRunning(false);
  const auto elapsed = std::chrono::steady_clock::now() - t0;
  if (!scriptErrors_.empty()) showError(QString::fromStdString(scriptErrors_));
  panels_[3]->setText(secondsText(elapsed));
}

// Either run may be on its way; each stop is cleared before its own run starts.
void TformSQLEditor::Stop() {
  myScript_->BreakExec();
  queryStop_.stop();
}

void TformSQLEditor::setRunning(bool running) {
  running_ = running;
  action("actStop")->setEnabled(running);
  updateConnected();
  emit busyChanged(running);
}

void TformSQLEditor::clearResults() {
  while (pgcResults_->count() > 1) {
    QWidget* page = pgcResults_->widget(1);
    pgcResults_->removeTab(1);
    delete page;
  }
  fraData_->ClearResult();
}

void TformSQLEditor::showResults(TQueryRun run) {
  clearResults();
  if (run.First) fraData_->ShowQuery(std::move(run.First));
  for (TResultSet& result : run.Others) {
    QTableView* view = createResultView(std::make_shared<const TResultSet>(std::move(result)), pgcResults_);
    pgcResults_->addTab(view, QString("Result %1").arg(pgcResults_->count() + 1));
  }
}

}  // namespace lomarin::ui
