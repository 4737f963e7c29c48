#pragma once

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>

#include "render_path.h"

namespace lomarin::test {

// Runs `answer` on the modal window named `objectName` once it is on screen; queue it before the
// click that opens the window.
inline void whenModal(const QString& objectName, std::function<void(QWidget*)> answer) {
  QTimer::singleShot(0, [objectName, answer = std::move(answer)] {
    QWidget* modal = nullptr;
    QTRY_VERIFY((modal = QApplication::activeModalWidget()) && modal->objectName() == objectName);
    answer(modal);
  });
}

// Saves a rendering of the widget for a person to look at.
inline void renderPng(QWidget* widget, const QString& name) {
  widget->grab().save(renderPath(name + ".png"));
}

}  // namespace lomarin::test
