#include "ui/sqleditor/completion_popup.h"

#include <Qsci/qscilexer.h>
#include <Qsci/qsciscintilla.h>

#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>

namespace lomarin::ui {

namespace {

constexpr int kTextRole = Qt::UserRole;
constexpr int kMaxRowsShown = 12;
constexpr int kMinWidth = 160;
constexpr int kMaxWidth = 520;

int caretPosition(QsciScintilla& memo) {
  return static_cast<int>(memo.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
}

bool isListKey(int key) {
  return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

bool isChoiceKey(const QKeyEvent& key) {
  const bool plain = (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  return plain && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Tab ||
                   key.key() == Qt::Key_Escape);
}

}  // namespace

int WordStartBeforeCaret(QsciScintilla& memo) {
  return static_cast<int>(
      memo.SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, caretPosition(memo), true));
}

TCompletionPopup::TCompletionPopup(QsciScintilla* memo, const QString& objectName)
    : QListWidget(memo), memo_(memo) {
  setObjectName(objectName);
  hide();
  setFocusPolicy(Qt::NoFocus);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setUniformItemSizes(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setIconSize(QSize(14, 14));
  // The memo's own font: the lexer sets it per style.
  setFont(memo_->lexer() ? memo_->lexer()->font(0) : memo_->font());
  memo_->installEventFilter(this);
  // The caret's position is final only once the memo has handled the key that changed the text.
  auto* later = new QTimer(this);
  later->setSingleShot(true);
  later->setInterval(0);
  connect(later, &QTimer::timeout, this, &TCompletionPopup::narrow);
  connect(memo_, &QsciScintilla::textChanged, later, qOverload<>(&QTimer::start));
  connect(memo_, &QsciScintilla::cursorPositionChanged, later, qOverload<>(&QTimer::start));
  connect(memo_, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
    if (updated & (QsciScintillaBase::SC_UPDATE_V_SCROLL | QsciScintillaBase::SC_UPDATE_H_SCROLL)) hide();
  });
  connect(this, &QListWidget::itemDoubleClicked, this, &TCompletionPopup::choose);
  // Once shown the list lives in the memo's window, which may outlive the memo.
  connect(memo_, &QObject::destroyed, this, [this] { delete this; });
}

bool TCompletionPopup::popup(const std::vector<TPopupRow>& rows) {
  clear();
  for (const TPopupRow& row : rows) {
    auto* item = new QListWidgetItem(row.Icon, row.Display, this);
    item->setData(kTextRole, row.Text);
  }
  wordStart_ = WordStartBeforeCaret(*memo_);
  memo_->lineIndexFromPosition(wordStart_, &line_, &wordIndex_);
  typed_ = QString();
  if (parentWidget() != memo_->window()) setParent(memo_->window());
  const QFontMetrics metrics(font());
  int width = 0;
  for (const TPopupRow& row : rows) width = std::max(width, metrics.horizontalAdvance(row.Display));
  width += iconSize().width() + verticalScrollBar()->sizeHint().width() + 4 * frameWidth() + 16;
  setFixedWidth(std::clamp(width, kMinWidth, kMaxWidth));
  show();
  raise();
  narrow();
  return !isHidden();
}

QStringList TCompletionPopup::shownTexts() const {
  QStringList texts;
  for (int i = 0; i < count(); ++i)
    if (!isRowHidden(i)) texts << item(i)->data(kTextRole).toString();
  return texts;
}

QListWidgetItem* TCompletionPopup::itemOfText(const QString& text) const {
  for (int i = 0; i < count(); ++i)
    if (item(i)->data(kTextRole).toString() == text) return item(i);
  return nullptr;
}

void TCompletionPopup::choose() {
  narrow();
  if (isHidden()) return;
  QStringList texts;
  for (int i = 0; i < count(); ++i)
    if (!isRowHidden(i) && item(i)->isSelected()) texts << item(i)->data(kTextRole).toString();
  if (texts.isEmpty() && currentItem() && !isRowHidden(currentRow()))
    texts << currentItem()->data(kTextRole).toString();
  hide();
  memo_->SendScintilla(QsciScintillaBase::SCI_SETSEL, wordStart_, caretPosition(*memo_));
  memo_->replaceSelectedText(texts.join(", "));
}

void TCompletionPopup::narrow() {
  if (isHidden()) return;
  const int caret = caretPosition(*memo_);
  int line = 0;
  int caretIndex = 0;
  memo_->lineIndexFromPosition(caret, &line, &caretIndex);
  // The caret left the word the list was opened for.
  if (caret < wordStart_ || line != line_ || WordStartBeforeCaret(*memo_) != wordStart_) {
    hide();
    return;
  }
  const QString typed = memo_->text(line).mid(wordIndex_, caretIndex - wordIndex_);
  if (!typed_.isNull() && typed == typed_) return;
  typed_ = typed;
  int first = -1;
  for (int i = 0; i < count(); ++i) {
    const bool fits = item(i)->data(kTextRole).toString().startsWith(typed, Qt::CaseInsensitive);
    setRowHidden(i, !fits);
    if (fits && first < 0) first = i;
  }
  if (first < 0) {
    hide();
    return;
  }
  clearSelection();
  setCurrentRow(first, QItemSelectionModel::ClearAndSelect);
  scrollToItem(item(first), QAbstractItemView::PositionAtTop);
  fitToRows();
  placeAtWordStart();
}

void TCompletionPopup::fitToRows() {
  const int shown = static_cast<int>(shownTexts().size());
  setFixedHeight(std::min(shown, kMaxRowsShown) * sizeHintForRow(0) + 2 * frameWidth());
}

void TCompletionPopup::placeAtWordStart() {
  QWidget* area = parentWidget();
  const auto x =
      static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0, wordStart_));
  const auto y =
      static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0, wordStart_));
  const QPoint top = memo_->viewport()->mapTo(area, QPoint(x, y));
  const int below = top.y() + memo_->textHeight(line_);
  // Above the line when there is no room below it.
  const int at = below + height() <= area->height() || top.y() < height() ? below : top.y() - height();
  move(std::clamp(top.x(), 0, std::max(0, area->width() - width())), at);
}

bool TCompletionPopup::eventFilter(QObject* watched, QEvent* event) {
  if (watched != memo_ || isHidden()) return false;
  switch (event->type()) {
    case QEvent::ShortcutOverride: {
      auto* key = static_cast<QKeyEvent*>(event);
      if (isChoiceKey(*key) || isListKey(key->key())) {
        event->accept();
        return true;
      }
      return false;
    }
    case QEvent::KeyPress: {
      auto* key = static_cast<QKeyEvent*>(event);
      if (isListKey(key->key())) {
        keyPressEvent(key);
        return true;
      }
      if (!isChoiceKey(*key)) return false;
      if (key->key() == Qt::Key_Escape)
        hide();
      else
        choose();
      return true;
    }
    case QEvent::FocusOut:
    case QEvent::Hide:
      hide();
      return false;
    default:
      return false;
  }
}

}  // namespace lomarin::ui
