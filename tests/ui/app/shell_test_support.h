#pragma once

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

#include "engine/app/settings_store.h"
#include "render_path.h"

namespace lomarin::test {

// A settings file of its own in a scratch folder, so a test starts as a fresh user.
struct FreshSettings {
  QTemporaryDir dir;
  std::unique_ptr<SettingsStore> store =
      std::make_unique<SettingsStore>(QDir(dir.path()).filePath("settings.sqlite").toStdString());
};

// Runs check on the next modal dialog of type T once it is on screen, then closes it.
template <typename T>
void onNextModal(std::function<void(T*)> check) {
  QTimer::singleShot(0, [check] {
    T* dialog = nullptr;
    QTRY_VERIFY((dialog = qobject_cast<T*>(QApplication::activeModalWidget())) != nullptr);
    check(dialog);
    if (dialog->isVisible()) dialog->reject();
  });
}

// Renders a window to a PNG (see renderPath) and returns its path.
inline QString render(QWidget& widget, const QString& name) {
  const QString path = renderPath(name + ".png");
  widget.grab().save(path);
  return path;
}

}  // namespace lomarin::test
