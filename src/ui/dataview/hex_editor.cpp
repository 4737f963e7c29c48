#include "ui/dataview/hex_editor.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "engine/dataview/blob_file.h"

namespace lomarin::ui {

namespace {

constexpr int kPerLine = dataview::kHexBytesPerLine;
// Columns in characters: offset, two blanks, hex pairs with a blank between, two blanks, text.
constexpr int kHexColumn = 10;
constexpr int kTextColumn = kHexColumn + kPerLine * 3 + 1;

}  // namespace

THexEditor::THexEditor(QWidget* parent) : QAbstractScrollArea(parent) {
  setObjectName("HexEditor");
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setFocusPolicy(Qt::StrongFocus);
  horizontalScrollBar()->setRange(0, 0);
}

void THexEditor::setBytes(const QByteArray& bytes) {
  bytes_ = bytes;
  cursor_ = 0;
  verticalScrollBar()->setValue(0);
  updateScrollBar();
  viewport()->update();
}

int THexEditor::lineHeight() const { return fontMetrics().height(); }
int THexEditor::charWidth() const { return fontMetrics().horizontalAdvance(QLatin1Char('0')); }
int THexEditor::visibleLines() const { return std::max(1, viewport()->height() / lineHeight()); }
qint64 THexEditor::lineCount() const { return (bytes_.size() + kPerLine - 1) / kPerLine; }

void THexEditor::updateScrollBar() {
  verticalScrollBar()->setRange(0, static_cast<int>(std::max<qint64>(0, lineCount() - visibleLines())));
  verticalScrollBar()->setPageStep(visibleLines());
}

void THexEditor::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  updateScrollBar();
}

void THexEditor::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), palette().base());
  const int h = lineHeight();
  const int w = charWidth();
  const qint64 first = verticalScrollBar()->value();
  const qint64 last = std::min(lineCount(), first + visibleLines() + 1);
  const qint64 cursorByte = cursor_ / 2;
  for (qint64 line = first; line < last; ++line) {
    const qint64 start = line * kPerLine;
    const auto length = static_cast<size_t>(std::min<qint64>(kPerLine, bytes_.size() - start));
    const dataview::THexLine text =
        dataview::HexLine(static_cast<uint64_t>(start), std::string_view(bytes_.constData() + start, length));
    const int y = static_cast<int>(line - first) * h;
    if (cursorByte >= start && cursorByte < start + kPerLine) {
      const int column = static_cast<int>(cursorByte - start);
      painter.fillRect(QRect((kHexColumn + column * 3 + static_cast<int>(cursor_ % 2)) * w, y, w, h),
                       palette().highlight());
      painter.fillRect(QRect((kTextColumn + column) * w, y, w, h), palette().alternateBase());
    }
    const int baseline = y + fontMetrics().ascent();
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(0, baseline, QString::fromLatin1(text.offset));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(kHexColumn * w, baseline, QString::fromLatin1(text.hex));
    painter.drawText(kTextColumn * w, baseline, QString::fromLatin1(text.text));
  }
}

void THexEditor::setCursorByte(qint64 byte) { moveCursor(byte * 2); }

void THexEditor::moveCursor(qint64 nibble) {
  cursor_ = std::clamp<qint64>(nibble, 0, std::max<qint64>(0, bytes_.size() * 2 - 1));
  ensureCursorVisible();
  viewport()->update();
}

void THexEditor::ensureCursorVisible() {
  const qint64 line = cursor_ / 2 / kPerLine;
  QScrollBar* bar = verticalScrollBar();
  if (line < bar->value()) bar->setValue(static_cast<int>(line));
  if (line >= bar->value() + visibleLines()) bar->setValue(static_cast<int>(line - visibleLines() + 1));
}

void THexEditor::keyPressEvent(QKeyEvent* event) {
  const qint64 lineNibbles = kPerLine * 2;
  switch (event->key()) {
    case Qt::Key_Left:
      return moveCursor(cursor_ - 1);
    case Qt::Key_Right:
      return moveCursor(cursor_ + 1);
    case Qt::Key_Up:
      return moveCursor(cursor_ - lineNibbles);
    case Qt::Key_Down:
      return moveCursor(cursor_ + lineNibbles);
    case Qt::Key_PageUp:
      return moveCursor(cursor_ - lineNibbles * visibleLines());
    case Qt::Key_PageDown:
      return moveCursor(cursor_ + lineNibbles * visibleLines());
    case Qt::Key_Home:
      return moveCursor(event->modifiers() & Qt::ControlModifier ? 0 : cursor_ - cursor_ % lineNibbles);
    case Qt::Key_End:
      return moveCursor(event->modifiers() & Qt::ControlModifier
                            ? bytes_.size() * 2
                            : cursor_ - cursor_ % lineNibbles + lineNibbles - 1);
    default:
      break;
  }
  bool ok = false;
  const int digit = event->text().toInt(&ok, 16);
  if (!ok || event->text().size() != 1 || bytes_.isEmpty()) return QAbstractScrollArea::keyPressEvent(event);
  const qint64 byte = cursor_ / 2;
  const auto old = static_cast<unsigned char>(bytes_[byte]);
  bytes_[byte] = static_cast<char>(cursor_ % 2 == 0 ? (digit << 4) | (old & 0x0F) : (old & 0xF0) | digit);
  moveCursor(cursor_ + 1);
}

void THexEditor::mousePressEvent(QMouseEvent* event) {
  const qint64 line = verticalScrollBar()->value() + event->position().toPoint().y() / lineHeight();
  const int column = event->position().toPoint().x() / charWidth();
  qint64 nibble = -1;
  if (column >= kHexColumn && column < kTextColumn - 1) {
    const int inHex = column - kHexColumn;
    if (inHex % 3 < 2) nibble = (line * kPerLine + inHex / 3) * 2 + inHex % 3;
  } else if (column >= kTextColumn && column < kTextColumn + kPerLine) {
    nibble = (line * kPerLine + column - kTextColumn) * 2;
  }
  if (nibble >= 0 && nibble / 2 < bytes_.size()) moveCursor(nibble);
  setFocus(Qt::MouseFocusReason);
}

}  // namespace lomarin::ui
