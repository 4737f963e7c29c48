#pragma once

#include <QMap>
#include <QRect>
#include <QString>
#include <optional>

namespace lomarin::ui {

// What the window-layout file keeps of the main window between runs.
struct WindowLayout {
  QRect geometry;
  bool maximized = false;
  int sideBarWidth = 0;
  QString mruList;
  QMap<QString, Qt::ToolBarArea> toolbarDocks;
};

// The layout file in the data folder.
QString windowLayoutFile();

// Written to a temporary file first and renamed over the old one. False with *error set on failure.
bool saveWindowLayout(const WindowLayout& layout, const QString& file, QString* error);
// Nothing when the file is missing; nothing with *error set when it is damaged.
std::optional<WindowLayout> loadWindowLayout(const QString& file, QString* error);

}  // namespace lomarin::ui
