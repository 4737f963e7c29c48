#pragma once

#include <QAbstractScrollArea>
#include <QByteArray>

namespace lomarin::ui {

// Shows bytes as offset, hexadecimal and text columns and overwrites them digit by digit. Only
// the lines in view are painted, so a value of any size scrolls without building text for it.
class THexEditor : public QAbstractScrollArea {
  Q_OBJECT
 public:
  explicit THexEditor(QWidget* parent = nullptr);

  void setBytes(const QByteArray& bytes);
  const QByteArray& bytes() const { return bytes_; }
  // Puts the cursor on the byte's high digit, scrolling it into view.
  void setCursorByte(qint64 byte);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  int lineHeight() const;
  int charWidth() const;
  int visibleLines() const;
  qint64 lineCount() const;
  void updateScrollBar();
  void moveCursor(qint64 nibble);
  void ensureCursorVisible();

  QByteArray bytes_;
  qint64 cursor_ = 0;  // in half bytes
};

}  // namespace lomarin::ui
