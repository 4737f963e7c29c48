#include "ui/app/lomarin_application.h"

#include <QIcon>
#include <cstdio>

#include "engine/app/shell_text.h"

namespace lomarin::ui {

LomarinApplication::LomarinApplication(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QString::fromUtf8(kProductTitle.data(), kProductTitle.size()));
  // The installed launcher entry and icon: the desktop groups the windows under them.
  setDesktopFileName("com.kestrova.Lomarin");
  setWindowIcon(QIcon::fromTheme("lomarin"));
}

bool LomarinApplication::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (const std::exception& error) {
    if (errorHandler_)
      errorHandler_(error);
    else
      std::fprintf(stderr, "lomarin: %s\n", unhandledErrorText(error.what()).c_str());
  }
  return false;
}

}  // namespace lomarin::ui
