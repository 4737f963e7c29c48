#include "ui/designers/form_procedure_builder.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <chrono>
#include <optional>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/my_query.h"
#include "engine/designers/database_scope.h"
#include "engine/designers/routine_texts.h"
#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/sql_completion.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"
#include "ui/sqleditor/script_progress.h"

namespace lomarin::ui {

namespace {

constexpr int kExecutePage = 1;
constexpr int kNamePanel = 2;
constexpr int kExecutedPanel = 4;

QString qs(const std::string& text) { return QString::fromStdString(text); }

std::vector<TCompletionItem> shippedKeywords() {
  const std::filesystem::path utils = QDir(DefaultShippedFolder()).filePath("Utils").toStdString();
  return LoadKeywordItems(utils / "sqlautocomplete.txt", utils / "sqldisplay.txt");
}

}  // namespace

TformProcedureBuilder::TformProcedureBuilder(TProcedureBuilderContext context, const QString& source,
                                             const QString& name, const QString& kind,
                                             const QString& database, QWidget* parent)
    : QWidget(parent),
      session_(context.Session),
      report_(context.ShowServerError),
      activity_(context.Activity ? context.Activity : new TSessionActivity(context.Session, this)),
      name_(name.toStdString()),
      kind_(kind.toStdString()),
      database_(database.toStdString()),
      dropBeforeCompile_(context.Settings.read(opt::DropObject)),
      proc_(context.Session) {
  QWidget::setObjectName("TformProcedureBuilder");
  setAttribute(Qt::WA_DeleteOnClose);
  pgcMain_ = new QTabWidget(this);
  pgcMain_->setObjectName("pgcMain");
  buildSourcePage(context);
  buildExecutePage(context);
  wait_ = new TWaitPanel(this);
  buildStatusBar();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(pgcMain_);
  layout->addWidget(wait_);
  layout->addWidget(findChild<QStatusBar*>("stbStatus"));

  setWindowTitle(name_.empty() ? "Procedure Builder" : qs(name_));
  panels_[kNamePanel]->setText(qs(name_));
  if (!source.isEmpty())
    frame_->memo()->setText(source);
  else if (!name_.empty())
    loadSource();
  frame_->memo()->setModified(false);

  const designers::TRoutineKind routine = designers::RoutineKindOf(kind_);
  if (routine == designers::TRoutineKind::Trigger || routine == designers::TRoutineKind::Event)
    pgcMain_->setTabVisible(kExecutePage, false);
  if (routine == designers::TRoutineKind::Event) frame_->memo()->setWrapMode(QsciScintilla::WrapWord);
  if (routine != designers::TRoutineKind::Trigger && routine != designers::TRoutineKind::Event &&
      !name_.empty()) {
    pgcMain_->setCurrentIndex(kExecutePage);
    fillParameters();
  }
  updateStatus();
}

TformProcedureBuilder::~TformProcedureBuilder() = default;

void TformProcedureBuilder::buildSourcePage(const TProcedureBuilderContext& context) {
  auto* page = new QWidget(pgcMain_);
  page->setObjectName("tsSource");
  auto* bar = new QToolBar(page);
  bar->setObjectName("tbSource");
  auto add = [this, bar](const char* name, const QString& caption, const QString& shortcut, auto run) {
    QAction* action = bar->addAction(caption);
    action->setObjectName(name);
    if (!shortcut.isEmpty()) action->setShortcut(QKeySequence(shortcut));
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, run);
    return action;
  };
  add("actCompile", "Compile", "F9", &TformProcedureBuilder::actCompileExecute);
  add("actClear", "Clear", "", &TformProcedureBuilder::actClearExecute);
  add("actStop", "Stop", "", &TformProcedureBuilder::Stop)->setEnabled(false);

  auto* split = new QSplitter(Qt::Vertical, page);
  split->setObjectName("splSource");
  frame_ = new TframeecSQL(context.Settings, shippedKeywords(), {}, split);
  frame_->setObjectName("fraSQL");
  fraMessageView_ = new QTreeWidget(split);
  fraMessageView_->setObjectName("fraMessageView");
  fraMessageView_->setHeaderLabels({"Line", "Message"});
  fraMessageView_->setRootIsDecorated(false);
  fraMessageView_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  fraMessageView_->hide();
  // A double-click on an error shows its statement.
  connect(fraMessageView_, &QTreeWidget::itemDoubleClicked, this,
          [this](QTreeWidgetItem* item) { frame_->setErrorLine(item->text(0).toInt()); });
  split->setStretchFactor(0, 4);
  split->setStretchFactor(1, 1);
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar);
  layout->addWidget(split);
  pgcMain_->addTab(page, "  &Source");
}

void TformProcedureBuilder::buildStatusBar() {
  auto* bar = new QStatusBar(this);
  bar->setObjectName("stbStatus");
  bar->setSizeGripEnabled(false);
  for (int i = 0; i < 5; ++i) {
    panels_[i] = new QLabel(bar);
    panels_[i]->setMinimumWidth(i == kExecutedPanel ? 200 : 80);
    bar->addWidget(panels_[i], i == kExecutedPanel ? 1 : 0);
  }
  QsciScintilla* memo = frame_->memo();
  connect(memo, &QsciScintilla::cursorPositionChanged, this, &TformProcedureBuilder::updateStatus);
  connect(memo, &QsciScintilla::modificationChanged, this, &TformProcedureBuilder::updateStatus);
}

void TformProcedureBuilder::updateStatus() {
  int line = 0, index = 0;
  frame_->memo()->getCursorPosition(&line, &index);
  panels_[0]->setText(QString::asprintf("  %d: %d", line + 1, index + 1));
  panels_[1]->setText(frame_->memo()->isModified() ? "Modified" : QString());
  panels_[3]->setText(frame_->memo()->overwriteMode() ? "Overwrite" : "Insert");
}

QString TformProcedureBuilder::panelText(int index) const { return panels_[index]->text(); }

QAction* TformProcedureBuilder::action(const QString& objectName) const {
  return findChild<QAction*>(objectName);
}

void TformProcedureBuilder::setRoutineName(const std::string& name) {
  name_ = name;
  setWindowTitle(qs(name));
  panels_[kNamePanel]->setText(qs(name));
}

void TformProcedureBuilder::loadSource() {
  using designers::TRoutineKind;
  const TRoutineKind kind = designers::RoutineKindOf(kind_);
  try {
    if (kind == TRoutineKind::Trigger) {
      frame_->memo()->setText(qs(designers::DumpTriggerSource(session_, database_, name_)));
      return;
    }
    const std::string sql = designers::RoutineLoadSql(kind, database_, name_);
    if (sql.empty()) return;
    TMyQuery query(session_);
    query.SQL = sql;
    query.Open();
    if (query.Next())
      frame_->memo()->setText(
          qs(designers::RoutineScript(query.Value(designers::RoutineSourceColumn(kind)))));
  } catch (const ServerError&) {
    // The session's error handling has shown it.
  } catch (const std::exception& error) {
    if (report_) report_(QString::fromStdString(error.what()));
  }
}

void TformProcedureBuilder::actCompileExecute() {
  if (running_) return;
  // Neither the drop nor a loaded CREATE text names the database: the document's is made current.
  std::optional<designers::TDatabaseScope> scope;
  try {
    scope.emplace(session_, database_);
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  if (dropBeforeCompile_ && !name_.empty())
    if (const std::string drop = designers::BuildRoutineDropSql(kind_, name_); !drop.empty())
      ExecSQLText(session_, drop);

  fraMessageView_->clear();
  frame_->setErrorLine(-1);
  TMyScript script(session_);
  script.SQL = frame_->memo()->text().toStdString();
  script.OnError = [this, &script](const ServerError& error, const std::string&, TErrorAction& action) {
    auto* item = new QTreeWidgetItem(fraMessageView_);
    item->setText(0, QString::number(script.StatementLine()));
    item->setText(1, qs(error.message()));
    action = TErrorAction::eaContinue;
  };
  const auto t0 = std::chrono::steady_clock::now();
  compiling_ = &script;
  setRunning(true);
  try {
    RunScriptWithProgress(*activity_, script, wait_,
                          "Compile " + (name_.empty() ? QString("routine") : qs(name_)));
  } catch (const ServerError& error) {
    auto* item = new QTreeWidgetItem(fraMessageView_);
    item->setText(1, qs(error.message()));
  }
  setRunning(false);
  compiling_ = nullptr;
  const auto ms =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - t0);

  const std::string text = script.SQL;
  if (name_.empty()) {
    if (const std::string found = designers::RoutineNameInText(text); !found.empty()) setRoutineName(found);
  }
  if (kind_.empty()) kind_ = designers::RoutineKindInText(text);
  const bool errors = fraMessageView_->topLevelItemCount() > 0;
  fraMessageView_->setVisible(errors);
  // A list shown for the first time gets its share of the page, not the splitter's empty slot.
  if (auto* split = findChild<QSplitter*>("splSource"); errors && split->sizes().value(1) == 0)
    split->setSizes({4, 1});
  panels_[kExecutedPanel]->setText(
      "SQL Executed : " + QString::number(double(ms.count()) / 1000.0, 'g', QLocale::FloatingPointShortest) +
      " secs");
  const designers::TRoutineKind kind = designers::RoutineKindOf(kind_);
  if (!name_.empty() &&
      (kind == designers::TRoutineKind::Procedure || kind == designers::TRoutineKind::Function))
    fillParameters();
}

void TformProcedureBuilder::actClearExecute() {
  if (QMessageBox::question(this, tr("Confirm"),
                            QString::fromLatin1(designers::kClearEditorQuestion.data(),
                                                qsizetype(designers::kClearEditorQuestion.size())),
                            QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes)
    frame_->memo()->clear();
}

void TformProcedureBuilder::setRunning(bool running) {
  running_ = running;
  action("actStop")->setEnabled(running);
  action("actCompile")->setEnabled(!running);
  buExecute_->setEnabled(!running);
  emit busyChanged(running);
}

}  // namespace lomarin::ui
