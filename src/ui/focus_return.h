#pragma once

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace lomarin::ui {

// Gives the focus back, when a modal box closes, to the widget that had it when the box opened:
// the window system does not always do so, and keys such as F5 then go nowhere until a click.
class TFocusReturn {
 public:
  TFocusReturn() : widget_(QApplication::focusWidget()) {}
  ~TFocusReturn() {
    if (!widget_) return;
    widget_->activateWindow();
    widget_->setFocus(Qt::ActiveWindowFocusReason);
  }
  TFocusReturn(const TFocusReturn&) = delete;
  TFocusReturn& operator=(const TFocusReturn&) = delete;

 private:
  QPointer<QWidget> widget_;
};

}  // namespace lomarin::ui
