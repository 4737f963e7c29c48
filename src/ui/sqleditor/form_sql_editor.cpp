#include "ui/sqleditor/form_sql_editor.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/my_query.h"
#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/sql_formatter.h"
#include "engine/sqleditor/sqleditor_options.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/editor_file_codec.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/memo_commands.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

constexpr int kPanels = 5;

std::vector<TCompletionItem> loadKeywords(const QString& folder) {
  const std::filesystem::path utils = QDir(folder).filePath("Utils").toStdString();
  return LoadKeywordItems(utils / "sqlautocomplete.txt", utils / "sqldisplay.txt");
}

TCompletionSources completionSources(const TSqlEditorContext& ctx) {
  TCompletionSources sources;
  sources.DatabaseObjects = ctx.DatabaseObjects;
  TMyConnection* session = &ctx.Session;
  sources.DescribeTable = [session](const std::string& table) {
    std::vector<std::pair<std::string, std::string>> columns;
    if (!session->Connected()) return columns;
    TMyQuery query(*session);
    query.SQL = DescStatement(table);
    try {
      query.Open();
      const int field = query.FieldIndex("field");
      const int type = query.FieldIndex("type");
      while (field >= 0 && type >= 0 && query.Next())
        columns.emplace_back(query.Value(static_cast<size_t>(field)), query.Value(static_cast<size_t>(type)));
    } catch (const ServerError&) {
      // No columns to offer; completing is no reason to interrupt the user.
    }
    return columns;
  };
  return sources;
}

}  // namespace

QString DefaultShippedFolder() {
  const QDir beside(QCoreApplication::applicationDirPath());
  if (beside.exists("Utils")) return beside.path();
  return QDir::cleanPath(beside.filePath("../share/lomarin"));
}

TformSQLEditor::TformSQLEditor(TSqlEditorContext context, QWidget* parent)
    : QWidget(parent), ctx_(std::move(context)), myScript_(std::make_unique<TMyScript>(ctx_.Session)) {
  setObjectName("TformSQLEditor");
  setWindowTitle("SQL editor");
  setAttribute(Qt::WA_DeleteOnClose);
  if (ctx_.ShippedFolder.isEmpty()) ctx_.ShippedFolder = DefaultShippedFolder();
  if (!ctx_.Activity) {
    ownActivity_ = std::make_unique<TSessionActivity>(ctx_.Session);
    ctx_.Activity = ownActivity_.get();
  }
  ApplyScriptOptions(*myScript_, ctx_.Settings);
  frame_ = new TframeecSQL(ctx_.Settings, loadKeywords(ctx_.ShippedFolder), completionSources(ctx_), this);
  buildActions();
  buildLayout();
  connect(frame_, &TframeecSQL::runStatement, this, &TformSQLEditor::RunStatementText);
  connect(frame_->memo(), &QsciScintilla::cursorPositionChanged, this, [this](int line, int index) {
    panels_[0]->setText(QString("%1: %2").arg(line + 1).arg(index + 1));
  });
  updateConnected();
}

TformSQLEditor::~TformSQLEditor() = default;

QAction* TformSQLEditor::addAction(const char* name, const QString& caption, const QString& shortcut,
                                   std::function<void()> run) {
  auto* action = new QAction(caption, this);
  action->setObjectName(name);
  if (!shortcut.isEmpty()) {
    action->setShortcut(QKeySequence(shortcut));
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    TMemoCommands::releaseMemoKey(frame_->memo(), QKeySequence(shortcut));
  }
  if (run) connect(action, &QAction::triggered, this, std::move(run));
  QWidget::addAction(action);
  return action;
}

void TformSQLEditor::buildActions() {
  addAction("actRun", "Run SQL", "F9", [this] { RunEditorText(); });
  addAction("actRunScript", "Run SQL Script", "F7", [this] { RunEditorScript(); })->setToolTip("Run Script");
  addAction("actRunCurrentSQL", "Run current SQL", "Shift+Return", [this] { RunCurrentSQL(); });
  addAction("actExplain", "Explain SQL", {}, [this] { ExplainEditorText(); })->setToolTip("Explain query");
  addAction("actStop", "Stop", {}, [this] { Stop(); })->setEnabled(false);
  addAction("actClear", "Clear Editor", {}, [this] { clearEditor(); });
  addAction("actClearScript", "Clear", {}, [this] { frame_->memo()->clear(); });
  addAction("actSave", "Save", "Ctrl+S", [this] { saveWithDialog(); });
  addAction("actFormat", "Format code", {}, [this] { formatCode(); });
  addAction("actUnformat", "Unformat code", "Ctrl+Shift+U", [this] { unformatCode(); });
  addAction("actSQLList", "SQL list", "Ctrl+J", [this] { frame_->completer()->showSnippets(); });
  QAction* tree = addAction("actSyntaxTree", "Statement tree", {}, {});
  tree->setCheckable(true);
  tree->setChecked(frame_->treeVisible());
  connect(tree, &QAction::toggled, frame_, &TframeecSQL::setTreeVisible);
  connect(frame_->action("actCloseTree"), &QAction::triggered, tree, [tree] { tree->setChecked(false); });
}

void TformSQLEditor::buildLayout() {
  tbSQL_ = new QToolBar(this);
  tbSQL_->setObjectName("tbSQL");
  tbSQL_->setToolButtonStyle(Qt::ToolButtonTextOnly);
  for (const char* name : std::initializer_list<const char*>{
           "actRun", "actRunScript", "actRunCurrentSQL", "actExplain", "actStop", nullptr, "actClear",
           "actSave", nullptr, "actFormat", "actUnformat", "actSQLList", "actSyntaxTree"}) {
    if (name)
      tbSQL_->addAction(action(name));
    else
      tbSQL_->addSeparator();
  }
  splSQL_ = new QSplitter(Qt::Vertical, this);
  splSQL_->setObjectName("splSQL");
  // The first result shows in the data frame; later results of the same request get tabs of
  // their own beside it.
  pgcResults_ = new QTabWidget(splSQL_);
  pgcResults_->setObjectName("pgcResults");
  pgcResults_->setTabBarAutoHide(true);
  fraData_ = new TframeData(ctx_.Session, ctx_.Settings, pgcResults_);
  fraData_->setObjectName("fraData");
  fraData_->setStatusBarVisible(false);
  fraData_->ErrorDisplay = [this](const QString& message) { showError(message); };
  connect(fraData_, &TframeData::recordTextChanged, this,
          [this](const QString& text) { panels_[1]->setText(text); });
  pgcResults_->addTab(fraData_, "Result 1");
  splSQL_->addWidget(frame_);
  splSQL_->addWidget(pgcResults_);
  splSQL_->setStretchFactor(0, 3);
  splSQL_->setStretchFactor(1, 2);
  splSQL_->setSizes({360, 240});
  auto* status = new QStatusBar(this);
  status->setObjectName("stbaSQL");
  status->setSizeGripEnabled(false);
  const int widths[kPanels] = {80, 140, 160, 200, 0};
  for (int i = 0; i < kPanels; ++i) {
    auto* panel = new QLabel(status);
    panel->setObjectName(QString("stbaSQLPanel%1").arg(i));
    if (widths[i] > 0) panel->setMinimumWidth(widths[i]);
    status->addWidget(panel, widths[i] > 0 ? 0 : 1);
    panels_.push_back(panel);
  }
  panels_[1]->setText(fraData_->recordText());
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(tbSQL_);
  layout->addWidget(splSQL_, 1);
  wait_ = new TWaitPanel(this);
  layout->addWidget(wait_);
  layout->addWidget(status);
}

QAction* TformSQLEditor::action(const QString& objectName) const {
  for (QAction* own : QWidget::actions())
    if (own->objectName() == objectName) return own;
  return frame_->action(objectName);
}

QString TformSQLEditor::panelText(int index) const { return panels_[static_cast<size_t>(index)]->text(); }

void TformSQLEditor::setStatusText(const QString& text) { panels_[4]->setText(text); }

void TformSQLEditor::updateConnected() {
  const bool connected = ctx_.Session.Connected();
  for (const char* name : {"actRun", "actRunScript", "actRunCurrentSQL", "actExplain"})
    action(name)->setEnabled(connected && !running_);
  action("TBItem8")->setEnabled(connected && !running_);
}

void TformSQLEditor::applyOptions() {
  frame_->setObjectMarking(ctx_.Settings.read(opt::AllowMarkObject));
  ApplyScriptOptions(*myScript_, ctx_.Settings);
  updateConnected();
}

void TformSQLEditor::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) applyOptions();
  QWidget::changeEvent(event);
}

bool TformSQLEditor::loadFile(const QString& fileName) {
  const TEditorFileChoices choices = EffectiveFileChoices(ctx_.FileChoices(), ctx_.Settings);
  if (!TEditorFileCodec::of(frame_->memo()).load(fileName, choices)) return false;
  fileName_ = QFileInfo(fileName).absoluteFilePath();
  setWindowTitle("SQL editor - " + QFileInfo(fileName).fileName());
  return true;
}

bool TformSQLEditor::saveToFile(const QString& fileName) {
  const TEditorFileChoices choices = EffectiveFileChoices(ctx_.FileChoices(), ctx_.Settings);
  switch (TEditorFileCodec::of(frame_->memo()).save(fileName, choices)) {
    case TEditorFileCodec::Saved::Yes:
      return true;
    case TEditorFileCodec::Saved::Cancelled:
      return false;
    case TEditorFileCodec::Saved::Failed:
      break;
  }
  showError(QString("Cannot write %1").arg(fileName));
  return false;
}

bool TformSQLEditor::saveWithDialog() {
  QFileDialog dialog(this, "Save");
  dialog.setObjectName("saveSaveLOG");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix("sql");
  dialog.setNameFilters({"sql (*.sql)", "text (*.txt)"});
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
  return saveToFile(dialog.selectedFiles().first());
}

bool TformSQLEditor::CheckSave() {
  if (!frame_->memo()->isModified() || frame_->memo()->text().isEmpty()) return true;
  const auto answer = QMessageBox::question(this, "SQL editor", "Save changes to the SQL editor text?",
                                            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
  if (answer == QMessageBox::Cancel) return false;
  if (answer == QMessageBox::No) return true;
  return !fileName_.isEmpty() ? saveToFile(fileName_) : saveWithDialog();
}

void TformSQLEditor::closeEvent(QCloseEvent* event) {
  // A request still on the server keeps the session; the window waits for it.
  if (running_ || !CheckSave()) {
    event->ignore();
    return;
  }
  clearResults();
  event->accept();
}

void TformSQLEditor::clearEditor() {
  if (QMessageBox::question(this, "Confirm", "Are you sure you want to clear the editor ?",
                            QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes)
    frame_->memo()->clear();
}

void TformSQLEditor::formatCode() {
  const QString source = frame_->selectionOrText();
  formatterSource_ = source.toStdString();
  TFormatterSettings settings;
  QFile conf(QDir(ctx_.ShippedFolder).filePath("formatter/conf-formatter.xml"));
  if (conf.open(QIODevice::ReadOnly)) settings = ParseFormatterSettings(conf.readAll().toStdString());
  const TFormatResult result = FormatSql(formatterSource_, settings);
  frame_->memo()->setText(QString::fromStdString(result.Text));
  frame_->setErrorLine(result.ErrorLine);
}

void TformSQLEditor::unformatCode() { frame_->memo()->setText(QString::fromStdString(formatterSource_)); }

void TformSQLEditor::showError(const QString& message) const {
  if (ctx_.ShowServerError) ctx_.ShowServerError(message);
}

}  // namespace lomarin::ui
