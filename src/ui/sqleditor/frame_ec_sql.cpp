#include "ui/sqleditor/frame_ec_sql.h"

#include <Qsci/qscilexersql.h>
#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QFontDatabase>
#include <QHeaderView>
#include <QSplitter>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/sqleditor/run_current.h"
#include "engine/sqleditor/sql_analyzer.h"
#include "ui/sqleditor/memo_commands.h"

namespace lomarin::ui {

namespace {

constexpr int kErrorMarker = 20;
constexpr int kExecutedMarker = 21;
constexpr int kMarkIndicator = 8;
constexpr int kStartRole = Qt::UserRole;
constexpr int kEndRole = Qt::UserRole + 1;
constexpr int kTreeDelayMs = 400;
// Beyond this the tree would cost more than it helps; it stays as it was.
constexpr int kTreeTextLimit = 4 * 1024 * 1024;

void addNodes(QTreeWidgetItem* parent, const std::vector<TSqlTreeNode>& nodes) {
  for (const TSqlTreeNode& node : nodes) {
    auto* item = new QTreeWidgetItem(parent, {QString::fromStdString(node.Caption)});
    item->setData(0, kStartRole, node.Start);
    item->setData(0, kEndRole, node.End);
    addNodes(item, node.Children);
  }
}

}  // namespace

TframeecSQL::TframeecSQL(SettingsStore& settings, std::vector<TCompletionItem> keywords,
                         TCompletionSources sources, QWidget* parent)
    : QWidget(parent), settings_(settings) {
  setObjectName("TframeecSQL");
  split_ = new QSplitter(Qt::Horizontal, this);
  split_->setObjectName("splTree");

  auto* editorPane = new QWidget(split_);
  memo_ = new QsciScintilla(editorPane);
  memo_->setObjectName("SynMemo");
  memo_->setUtf8(true);
  auto* lexer = new QsciLexerSQL(memo_);
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  lexer->setDefaultFont(fixed);
  lexer->setFont(fixed);
  memo_->setLexer(lexer);
  memo_->setMarginType(0, QsciScintilla::NumberMargin);
  memo_->setMarginWidth(0, memo_->fontMetrics().horizontalAdvance("000000"));
  memo_->setMarginType(1, QsciScintilla::SymbolMargin);
  memo_->setMarginWidth(1, 18);
  memo_->setMarginSensitivity(1, true);
  memo_->setFolding(QsciScintilla::BoxedTreeFoldStyle, 2);
  memo_->setCaretLineVisible(true);
  memo_->setCaretLineBackgroundColor(QColor(255, 255, 220));
  memo_->setBraceMatching(QsciScintilla::SloppyBraceMatch);
  memo_->setAutoIndent(true);
  memo_->SendScintilla(QsciScintillaBase::SCI_SETSCROLLWIDTH, 1);
  memo_->SendScintilla(QsciScintillaBase::SCI_SETSCROLLWIDTHTRACKING, true);
  memo_->markerDefine(QsciScintilla::Background, kErrorMarker);
  memo_->setMarkerBackgroundColor(QColor(255, 200, 200), kErrorMarker);
  memo_->markerDefine(QsciScintilla::RightArrow, kExecutedMarker);
  memo_->setMarkerBackgroundColor(QColor(0, 150, 0), kExecutedMarker);
  memo_->SendScintilla(QsciScintillaBase::SCI_INDICSETSTYLE, kMarkIndicator,
                       QsciScintillaBase::INDIC_ROUNDBOX);
  memo_->SendScintilla(QsciScintillaBase::SCI_INDICSETFORE, kMarkIndicator, QColor(0, 120, 255));
  auto* findBar = new QWidget(editorPane);
  commands_ = std::make_unique<TMemoCommands>(memo_, findBar);
  auto* editorLayout = new QVBoxLayout(editorPane);
  editorLayout->setContentsMargins(0, 0, 0, 0);
  editorLayout->setSpacing(0);
  editorLayout->addWidget(memo_);
  editorLayout->addWidget(findBar);

  buildTree();
  split_->addWidget(editorPane);
  split_->addWidget(pnlTree_);
  split_->setStretchFactor(0, 4);
  split_->setStretchFactor(1, 1);
  split_->setSizes({600, 200});
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(split_);

  completer_ = new TSqlCompleter(memo_, std::move(keywords), std::move(sources));
  auto* complete = new QAction("Complete", memo_);
  complete->setObjectName("actComplete");
  complete->setShortcut(QKeySequence("Ctrl+Space"));
  complete->setShortcutContext(Qt::WidgetShortcut);
  memo_->addAction(complete);
  connect(complete, &QAction::triggered, completer_, &TSqlCompleter::showKeywords);

  markingEnabled_ = settings_.read(opt::AllowMarkObject);
  treeTimer_ = new QTimer(this);
  treeTimer_->setSingleShot(true);
  treeTimer_->setInterval(kTreeDelayMs);
  connect(treeTimer_, &QTimer::timeout, this, &TframeecSQL::refreshTree);
  connect(memo_, &QsciScintilla::textChanged, this, &TframeecSQL::onTextChanged);
  connect(memo_, &QsciScintillaBase::SCN_CHARADDED, this, &TframeecSQL::onCharAdded);
  connect(memo_, &QsciScintillaBase::SCN_DOUBLECLICK, this,
          [this](int position, int line, int) { onDoubleClick(position, line); });
  setTreeVisible(settings_.read(opt::SqlTreeEnable));
}

TframeecSQL::~TframeecSQL() = default;

TframeecSQL* TframeecSQL::createReadOnly(SettingsStore& settings, QWidget* parent) {
  auto* frame = new TframeecSQL(settings, {}, {}, parent);
  frame->commands_->setReadOnly(true);
  frame->action("actComplete")->setEnabled(false);
  // Hidden directly: "SQL Tree Enable" is the editor's choice, not this view's.
  frame->pnlTree_->hide();
  return frame;
}

TframeecSQL* TframeecSQL::createEmbedded(SettingsStore& settings, QWidget* parent) {
  auto* frame = new TframeecSQL(settings, {}, {}, parent);
  frame->pnlTree_->hide();
  return frame;
}

bool TframeecSQL::isReadOnly() const { return memo_->isReadOnly(); }

void TframeecSQL::buildTree() {
  pnlTree_ = new QWidget(split_);
  pnlTree_->setObjectName("pnlTree");
  tbTree_ = new QToolBar(pnlTree_);
  tbTree_->setObjectName("tbTree");
  tbTree_->setIconSize(QSize(16, 16));
  auto add = [this](const char* name, const QString& caption, const QString& hint) {
    QAction* action = tbTree_->addAction(caption);
    action->setObjectName(name);
    action->setToolTip(hint);
    return action;
  };
  connect(add("TBItem8", "Execute SQL", "Execute current SQL"), &QAction::triggered, this,
          &TframeecSQL::executeTreeNode);
  tbiAutorefresh_ = add("tbiAutorefresh", "Auto refresh", "Auto refresh");
  tbiAutorefresh_->setCheckable(true);
  tbiAutorefresh_->setChecked(settings_.read(opt::AutoSynchronize));
  connect(tbiAutorefresh_, &QAction::toggled, this, [this](bool on) {
    settings_.write(opt::AutoSynchronize, on);
    if (on) refreshTree();
  });
  connect(add("TBItem7", "Full expand", "Full expand"), &QAction::triggered, this,
          [this] { tvSyntax_->expandAll(); });
  connect(add("TBItem3", "Full collapse", "Full collapse"), &QAction::triggered, this,
          [this] { tvSyntax_->collapseAll(); });
  connect(add("actCloseTree", "Close", "Close the statement tree"), &QAction::triggered, this,
          [this] { setTreeVisible(false); });

  tvSyntax_ = new QTreeWidget(pnlTree_);
  tvSyntax_->setObjectName("tvSyntax");
  tvSyntax_->setHeaderHidden(true);
  connect(tvSyntax_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
    const int start = item->data(0, kStartRole).toInt();
    if (start < 0) return;
    memo_->SendScintilla(QsciScintillaBase::SCI_SETSEL, start, item->data(0, kEndRole).toInt());
    memo_->setFocus();
  });
  auto* layout = new QVBoxLayout(pnlTree_);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(tbTree_);
  layout->addWidget(tvSyntax_);
}

QAction* TframeecSQL::action(const QString& objectName) const {
  if (auto* own = findChild<QAction*>(objectName)) return own;
  return commands_->action(objectName);
}

QString TframeecSQL::selectionOrText() const {
  const QString selection = memo_->selectedText();
  return selection.isEmpty() ? memo_->text() : selection;
}

void TframeecSQL::setErrorLine(int line) {
  errorLine_ = line;
  memo_->markerDeleteAll(kErrorMarker);
  if (line < 1) return;
  memo_->markerAdd(line - 1, kErrorMarker);
  QString text = memo_->text(line - 1);
  while (text.endsWith('\n') || text.endsWith('\r')) text.chop(1);
  memo_->setSelection(line - 1, 0, line - 1, static_cast<int>(text.size()));
  memo_->setFocus();
}

void TframeecSQL::markExecuted(int line) {
  memo_->markerDeleteAll(kExecutedMarker);
  if (line >= 0) memo_->markerAdd(line, kExecutedMarker);
}

bool TframeecSQL::treeVisible() const { return !pnlTree_->isHidden(); }

void TframeecSQL::setTreeVisible(bool visible) {
  pnlTree_->setVisible(visible);
  if (!visible) {
    settings_.write(opt::SqlTreeEnable, false);
    return;
  }
  settings_.write(opt::SqlTreeEnable, true);
  refreshTree();
}

void TframeecSQL::onTextChanged() {
  memo_->markerDeleteAll(kExecutedMarker);
  if (treeVisible() && tbiAutorefresh_->isChecked()) treeTimer_->start();
}

void TframeecSQL::refreshTree() {
  if (!treeVisible() || memo_->length() > kTreeTextLimit) return;
  fillTree();
}

void TframeecSQL::fillTree() {
  const QByteArray text = memo_->text().toUtf8();
  const std::vector<TSqlTreeNode> nodes = BuildStatementTree(std::string_view(text.constData(), text.size()));
  tvSyntax_->clear();
  addNodes(tvSyntax_->invisibleRootItem(), nodes);
  tvSyntax_->expandAll();
}

void TframeecSQL::executeTreeNode() {
  QTreeWidgetItem* item = tvSyntax_->currentItem();
  if (!item) return;
  const QByteArray text = memo_->text().toUtf8();
  const std::optional<std::string> statement =
      TreeNodeStatement(item->text(0).toStdString(), item->data(0, kStartRole).toInt(),
                        item->data(0, kEndRole).toInt(), std::string_view(text.constData(), text.size()));
  if (statement) emit runStatement(QString::fromStdString(*statement));
}

void TframeecSQL::onCharAdded(int character) {
  if (character == '.') completer_->showColumns();
}

void TframeecSQL::onDoubleClick(int position, int line) {
  Q_UNUSED(line);
  if (!markingEnabled_) return;
  const auto start =
      static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, position, true));
  const auto end =
      static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_WORDENDPOSITION, position, true));
  QString word;
  if (end > start) {
    int lineFrom = 0, indexFrom = 0, lineTo = 0, indexTo = 0;
    memo_->lineIndexFromPosition(start, &lineFrom, &indexFrom);
    memo_->lineIndexFromPosition(end, &lineTo, &indexTo);
    word = memo_->text(lineFrom).mid(indexFrom, indexTo - indexFrom);
  }
  markWord(word);
}

void TframeecSQL::markWord(const QString& word) {
  memo_->SendScintilla(QsciScintillaBase::SCI_SETINDICATORCURRENT, kMarkIndicator);
  memo_->SendScintilla(QsciScintillaBase::SCI_INDICATORCLEARRANGE, 0, memo_->length());
  if (word.isEmpty()) return;
  const QByteArray text = memo_->text().toUtf8();
  const QByteArray needle = word.toUtf8();
  auto isWordByte = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || (c & 0x80);
  };
  for (qsizetype at = text.indexOf(needle); at >= 0; at = text.indexOf(needle, at + needle.size())) {
    const bool whole = (at == 0 || !isWordByte(text[at - 1])) &&
                       (at + needle.size() >= text.size() || !isWordByte(text[at + needle.size()]));
    if (whole) memo_->SendScintilla(QsciScintillaBase::SCI_INDICATORFILLRANGE, at, needle.size());
  }
}

}  // namespace lomarin::ui
