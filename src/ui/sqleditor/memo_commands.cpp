#include "ui/sqleditor/memo_commands.h"

#include <Qsci/qscicommandset.h>
#include <Qsci/qscimacro.h>
#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QRegularExpression>
#include <QSaveFile>
#include <QToolButton>
#include <algorithm>

#include "engine/sqleditor/sql_html.h"

namespace lomarin::ui {

namespace {

constexpr int kFirstBookmarkMarker = 0;
const QString kCommentPrefix = "-- ";
// The commands that change the text, off in a read-only memo.
constexpr const char* kEditingCommands[] = {
    "actUndo",         "actRedo",           "actIndent",        "actUnindent",
    "actLowerCase",    "actUpperCase",      "actToggleCase",    "actReplace",
    "actCommentLines", "actUncommentLines", "actSortAscending", "actSortDescending",
    "actMacroRecord",  "actMacroStop",      "actMacroCancel",   "actMacroPlay"};

QPixmap bookmarkImage(int number) {
  QPixmap pixmap(14, 14);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setBrush(QColor(0, 90, 180));
  painter.setPen(Qt::NoPen);
  painter.drawEllipse(QRectF(0.5, 0.5, 13, 13));
  painter.setPen(Qt::white);
  QFont font = painter.font();
  font.setPixelSize(10);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(pixmap.rect(), Qt::AlignCenter, QString::number(number));
  return pixmap;
}

}  // namespace

TMemoCommands::TMemoCommands(QsciScintilla* memo, QWidget* findBar)
    : QObject(memo), memo_(memo), findBar_(findBar), macro_(std::make_unique<QsciMacro>(memo)) {
  addBookmarkCommands();
  connect(add("actUndo", "&Undo", "Ctrl+Z"), &QAction::triggered, memo_, &QsciScintilla::undo);
  connect(add("actRedo", "&Redo", "Ctrl+Shift+Z"), &QAction::triggered, memo_, &QsciScintilla::redo);
  connect(add("actIndent", "&Indent", "Ctrl+Shift+I"), &QAction::triggered, this, [this] {
    int first = 0, last = 0;
    selectedLines(first, last);
    for (int line = first; line <= last; ++line) memo_->indent(line);
  });
  // Its usual Ctrl+Shift+U belongs to "Unformat code"; Shift+Tab unindents as well.
  connect(add("actUnindent", "&Unindent"), &QAction::triggered, this, [this] {
    int first = 0, last = 0;
    selectedLines(first, last);
    for (int line = first; line <= last; ++line) memo_->unindent(line);
  });
  connect(add("actLowerCase", "Selection lower case", "Ctrl+L"), &QAction::triggered, this,
          [this] { changeCase(0); });
  connect(add("actUpperCase", "Selection upper case", "Ctrl+U"), &QAction::triggered, this,
          [this] { changeCase(1); });
  connect(add("actToggleCase", "Selection toggle case"), &QAction::triggered, this,
          [this] { changeCase(2); });
  connect(add("actFind", "&Find", "Ctrl+F"), &QAction::triggered, this, [this] { showFind(false); });
  connect(add("actReplace", "&Replace ", "Ctrl+R"), &QAction::triggered, this, [this] { showFind(true); });
  connect(add("actIncSearch", "Incremental search", "Ctrl+E"), &QAction::triggered, this,
          [this] { showFind(false); });
  connect(add("actCommentLines", "Comment Lines"), &QAction::triggered, this, [this] { commentLines(true); });
  connect(add("actUncommentLines", "Uncomment Lines"), &QAction::triggered, this,
          [this] { commentLines(false); });
  connect(add("actSortAscending", "Sort lines ascending"), &QAction::triggered, this,
          [this] { sortLines(true); });
  connect(add("actSortDescending", "Sort lines descending"), &QAction::triggered, this,
          [this] { sortLines(false); });
  connect(add("actCollapseAll", "Collapse all"), &QAction::triggered, memo_,
          [this] { memo_->foldAll(true); });
  connect(add("actExpandAll", "Expand all"), &QAction::triggered, memo_, [this] {
    // foldAll toggles; unfold every folded header explicitly.
    for (int line = 0; line < memo_->lines(); ++line)
      if (!memo_->SendScintilla(QsciScintillaBase::SCI_GETFOLDEXPANDED, line))
        memo_->SendScintilla(QsciScintillaBase::SCI_TOGGLEFOLD, line);
  });

  QAction* nonPrinted = add("actShowNonPrinted", "Show non printed");
  nonPrinted->setCheckable(true);
  connect(nonPrinted, &QAction::toggled, this, [this](bool on) {
    memo_->setWhitespaceVisibility(on ? QsciScintilla::WsVisible : QsciScintilla::WsInvisible);
    memo_->setEolVisibility(on);
  });
  QAction* wrap = add("actWordWrap", "Word wrap");
  wrap->setCheckable(true);
  connect(wrap, &QAction::toggled, this,
          [this](bool on) { memo_->setWrapMode(on ? QsciScintilla::WrapWord : QsciScintilla::WrapNone); });
  QAction* numbers = add("actLineNumbers", "Line numbers");
  numbers->setCheckable(true);
  numbers->setChecked(true);
  connect(numbers, &QAction::toggled, this, [this](bool on) {
    memo_->setMarginWidth(0, on ? memo_->fontMetrics().horizontalAdvance("000000") : 0);
  });

  connect(add("actMacroRecord", "Record macro"), &QAction::triggered, this,
          [this] { macro_->startRecording(); });
  connect(add("actMacroStop", "Stop macro"), &QAction::triggered, this, [this] {
    macro_->endRecording();
    recordedMacro_ = macro_->save();
  });
  connect(add("actMacroCancel", "Cancel macro"), &QAction::triggered, this, [this] {
    macro_->endRecording();
    macro_->load(recordedMacro_);
  });
  connect(add("actMacroPlay", "Play macro"), &QAction::triggered, this, [this] { macro_->play(); });
  connect(add("actExportHTML", "Export to &HTML"), &QAction::triggered, this, [this] {
    const QString file = QFileDialog::getSaveFileName(memo_, "Export to HTML", {},
                                                      "HTML files (*.htm *.html);;All files (*.*)");
    if (!file.isEmpty()) exportHtml(file.contains('.') ? file : file + ".HTML");
  });
  buildFindBar();
  buildMenu();
}

TMemoCommands::~TMemoCommands() = default;

QAction* TMemoCommands::add(const QString& name, const QString& caption, const QString& shortcut) {
  auto* action = new QAction(caption, memo_);
  action->setObjectName(name);
  if (!shortcut.isEmpty()) {
    action->setShortcut(QKeySequence(shortcut));
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    releaseMemoKey(memo_, QKeySequence(shortcut));
  }
  memo_->addAction(action);
  return action;
}

void TMemoCommands::releaseMemoKey(QsciScintilla* memo, const QKeySequence& shortcut) {
  const int scintillaKey = shortcut[0].toCombined();
  if (QsciCommand* bound = memo->standardCommands()->boundTo(scintillaKey)) {
    if (bound->key() == scintillaKey) bound->setKey(0);
    if (bound->alternateKey() == scintillaKey) bound->setAlternateKey(0);
  }
}

QAction* TMemoCommands::action(const QString& objectName) const {
  return memo_->findChild<QAction*>(objectName);
}

void TMemoCommands::addBookmarkCommands() {
  for (int n = 0; n < kBookmarks; ++n) {
    const QPixmap image = bookmarkImage(n);
    memo_->markerDefine(image, kFirstBookmarkMarker + n);
    QAction* set = add(QString("actSetBookmark%1").arg(n), QString("Set Bookmark &%1").arg(n));
    QAction* clear = add(QString("actClearBookmark%1").arg(n), QString("Clear Bookmark &%1").arg(n));
    for (QAction* command : {set, clear}) {
      command->setIcon(image);
      command->setToolTip(QString("Bookmark %1").arg(n));
      command->setStatusTip(command->toolTip());
    }
    connect(set, &QAction::triggered, this, [this, n] { setBookmark(n); });
    connect(clear, &QAction::triggered, this, [this, n] { clearBookmark(n); });
  }
}

void TMemoCommands::setReadOnly(bool readOnly) {
  memo_->setReadOnly(readOnly);
  for (const char* name : kEditingCommands) {
    QAction* command = action(name);
    command->setEnabled(!readOnly);
    command->setVisible(!readOnly);
  }
}

void TMemoCommands::buildMenu() {
  popup_ = new QMenu(memo_);
  QMenu* toggle = popup_->addMenu("Toggle bookmark");
  QMenu* go = popup_->addMenu("Goto bookmark");
  for (int n = 0; n < kBookmarks; ++n) {
    QAction* toggleItem =
        toggle->addAction(QString("Bookmark %1").arg(n), this, [this, n] { toggleBookmark(n); });
    toggleItem->setCheckable(true);
    go->addAction(bookmarkImage(n), QString("Bookmark %1").arg(n), this, [this, n] { gotoBookmark(n); });
  }
  // The lists show which bookmarks are set: ticked to toggle, enabled to go to.
  connect(popup_, &QMenu::aboutToShow, this, [this, toggle, go] {
    for (int n = 0; n < kBookmarks; ++n) {
      toggle->actions().at(n)->setChecked(bookmarkLine(n) >= 0);
      go->actions().at(n)->setEnabled(bookmarkLine(n) >= 0);
    }
  });
  popup_->addSeparator();
  for (const char* name : std::initializer_list<const char*>{
           "actUndo",           "actRedo",        nullptr,           "actFind",           "actReplace",
           "actIncSearch",      nullptr,          "actIndent",       "actUnindent",       "actLowerCase",
           "actUpperCase",      "actToggleCase",  "actCommentLines", "actUncommentLines", "actSortAscending",
           "actSortDescending", nullptr,          "actCollapseAll",  "actExpandAll",      "actShowNonPrinted",
           "actWordWrap",       "actLineNumbers", nullptr,           "actMacroRecord",    "actMacroStop",
           "actMacroCancel",    "actMacroPlay",   nullptr,           "actExportHTML"}) {
    if (name)
      popup_->addAction(action(name));
    else
      popup_->addSeparator();
  }
  memo_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(memo_, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { popup_->popup(memo_->mapToGlobal(at)); });
}

void TMemoCommands::setBookmark(int number) {
  int line = 0, index = 0;
  memo_->getCursorPosition(&line, &index);
  clearBookmark(number);
  memo_->markerAdd(line, kFirstBookmarkMarker + number);
}

void TMemoCommands::clearBookmark(int number) { memo_->markerDeleteAll(kFirstBookmarkMarker + number); }

void TMemoCommands::toggleBookmark(int number) {
  int line = 0, index = 0;
  memo_->getCursorPosition(&line, &index);
  if (bookmarkLine(number) == line)
    clearBookmark(number);
  else
    setBookmark(number);
}

void TMemoCommands::gotoBookmark(int number) {
  const int line = bookmarkLine(number);
  if (line >= 0) memo_->setCursorPosition(line, 0);
}

int TMemoCommands::bookmarkLine(int number) const {
  return memo_->markerFindNext(0, 1u << (kFirstBookmarkMarker + number));
}

void TMemoCommands::changeCase(int mode) {
  if (!memo_->hasSelectedText()) return;
  QString text = memo_->selectedText();
  if (mode == 0)
    text = text.toLower();
  else if (mode == 1)
    text = text.toUpper();
  else
    for (QChar& c : text) c = c.isUpper() ? c.toLower() : c.toUpper();
  int lineFrom = 0, indexFrom = 0, lineTo = 0, indexTo = 0;
  memo_->getSelection(&lineFrom, &indexFrom, &lineTo, &indexTo);
  memo_->replaceSelectedText(text);
  memo_->setSelection(lineFrom, indexFrom, lineTo, indexTo);
}

void TMemoCommands::selectedLines(int& first, int& last) const {
  int indexFrom = 0, indexTo = 0;
  memo_->getSelection(&first, &indexFrom, &last, &indexTo);
  if (first < 0) {
    memo_->getCursorPosition(&first, &indexFrom);
    last = first;
  } else if (indexTo == 0 && last > first) {
    --last;
  }
}

void TMemoCommands::commentLines(bool comment) {
  int first = 0, last = 0;
  selectedLines(first, last);
  memo_->beginUndoAction();
  for (int line = first; line <= last; ++line) {
    const QString text = memo_->text(line);
    if (comment) {
      memo_->insertAt(kCommentPrefix, line, 0);
    } else {
      const qsizetype at = text.indexOf(QRegularExpression("\\S"));
      if (at < 0 || !text.mid(at).startsWith("--")) continue;
      const int length = text.mid(at).startsWith(kCommentPrefix) ? 3 : 2;
      memo_->setSelection(line, static_cast<int>(at), line, static_cast<int>(at) + length);
      memo_->removeSelectedText();
    }
  }
  memo_->endUndoAction();
}

void TMemoCommands::sortLines(bool ascending) {
  int first = 0, last = 0;
  selectedLines(first, last);
  if (first == last) {
    first = 0;
    last = memo_->lines() - 1;
  }
  QStringList lines;
  for (int line = first; line <= last; ++line) {
    QString text = memo_->text(line);
    while (text.endsWith('\n') || text.endsWith('\r')) text.chop(1);
    lines << text;
  }
  std::sort(lines.begin(), lines.end());
  if (!ascending) std::reverse(lines.begin(), lines.end());
  QString lastLine = memo_->text(last);
  while (lastLine.endsWith('\n') || lastLine.endsWith('\r')) lastLine.chop(1);
  memo_->setSelection(first, 0, last, static_cast<int>(lastLine.size()));
  memo_->replaceSelectedText(lines.join('\n'));
}

void TMemoCommands::exportHtml(const QString& fileName) {
  const QByteArray text = memo_->text().toUtf8();
  const std::string html = SqlToHtml(std::string_view(text.constData(), static_cast<size_t>(text.size())),
                                     QFileInfo(fileName).fileName().toStdString());
  QSaveFile file(fileName);
  if (file.open(QIODevice::WriteOnly)) {
    file.write(html.data(), static_cast<qint64>(html.size()));
    file.commit();
  }
}

void TMemoCommands::buildFindBar() {
  findBar_->setObjectName("pnlFind");
  edtFind_ = new QLineEdit(findBar_);
  edtFind_->setObjectName("edtFind");
  edtFind_->setPlaceholderText("Find");
  edtReplace_ = new QLineEdit(findBar_);
  edtReplace_->setObjectName("edtReplace");
  edtReplace_->setPlaceholderText("Replace with");
  auto button = [this](const char* name, const QString& caption) {
    auto* b = new QToolButton(findBar_);
    b->setObjectName(name);
    b->setText(caption);
    return b;
  };
  QToolButton* next = button("btnFindNext", "Find next");
  QToolButton* replace = button("btnReplace", "Replace");
  QToolButton* replaceEvery = button("btnReplaceAll", "Replace all");
  QToolButton* close = button("btnCloseFind", "Close");
  replaceRow_ = new QWidget(findBar_);
  auto* replaceLayout = new QHBoxLayout(replaceRow_);
  replaceLayout->setContentsMargins(0, 0, 0, 0);
  replaceLayout->addWidget(edtReplace_);
  replaceLayout->addWidget(replace);
  replaceLayout->addWidget(replaceEvery);
  auto* layout = new QHBoxLayout(findBar_);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->addWidget(edtFind_);
  layout->addWidget(next);
  layout->addWidget(replaceRow_);
  layout->addWidget(close);
  findBar_->hide();

  // Incremental: each change searches again from where the search began.
  connect(edtFind_, &QLineEdit::textEdited, this, [this](const QString& text) {
    int line = 0, index = 0, lineTo = 0, indexTo = 0;
    memo_->getSelection(&line, &index, &lineTo, &indexTo);
    if (line < 0) memo_->getCursorPosition(&line, &index);
    if (!text.isEmpty()) memo_->findFirst(text, false, false, false, true, true, line, index);
  });
  connect(edtFind_, &QLineEdit::returnPressed, this, &TMemoCommands::findNext);
  connect(next, &QToolButton::clicked, this, &TMemoCommands::findNext);
  connect(replace, &QToolButton::clicked, this, [this] {
    if (memo_->hasSelectedText() && memo_->selectedText().compare(edtFind_->text(), Qt::CaseInsensitive) == 0)
      memo_->replace(edtReplace_->text());
    findNext();
  });
  connect(replaceEvery, &QToolButton::clicked, this, &TMemoCommands::replaceAll);
  connect(close, &QToolButton::clicked, findBar_, &QWidget::hide);
}

void TMemoCommands::showFind(bool withReplace) {
  replaceRow_->setVisible(withReplace);
  findBar_->show();
  if (memo_->hasSelectedText() && !memo_->selectedText().contains('\n'))
    edtFind_->setText(memo_->selectedText());
  edtFind_->setFocus();
  edtFind_->selectAll();
}

bool TMemoCommands::findNext() {
  if (edtFind_->text().isEmpty()) return false;
  int line = 0, index = 0;
  memo_->getCursorPosition(&line, &index);
  return memo_->findFirst(edtFind_->text(), false, false, false, true, true, line, index);
}

int TMemoCommands::replaceAll() {
  if (edtFind_->text().isEmpty()) return 0;
  int count = 0;
  memo_->beginUndoAction();
  if (memo_->findFirst(edtFind_->text(), false, false, false, false, true, 0, 0)) {
    do {
      memo_->replace(edtReplace_->text());
      ++count;
    } while (memo_->findNext());
  }
  memo_->endUndoAction();
  return count;
}

}  // namespace lomarin::ui
