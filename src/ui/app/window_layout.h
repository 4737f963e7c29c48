#pragma once

#include <QMap>
#include <QRect>
#include <QString>
#include <optional>

class QMainWindow;

namespace lomarin::ui {

// Where a toolbar stands: its dock area, its row in that area counted from the window's edge,
// and its order within the row. A row or order of -1 is not known.
struct ToolbarPlace {
  Qt::ToolBarArea dock = Qt::TopToolBarArea;
  int row = -1;
  int position = -1;
};

// What the window-layout file keeps of the main window between runs.
struct WindowLayout {
  QRect geometry;
  bool maximized = false;
  int sideBarWidth = 0;
  QString mruList;
  QMap<QString, ToolbarPlace> toolbars;
};

// The layout file in the data folder.
QString windowLayoutFile();

// Written to a temporary file first and renamed over the old one; the file's other sections are
// kept. False with *error set on failure, and for a damaged file, which is left as it is.
bool saveWindowLayout(const WindowLayout& layout, const QString& file, QString* error);
// Nothing when the file is missing; nothing with *error set when it is damaged.
std::optional<WindowLayout> loadWindowLayout(const QString& file, QString* error);

// The places of the window's toolbars named in names (its direct children), as laid out now.
QMap<QString, ToolbarPlace> toolbarPlaces(const QMainWindow& window, const QStringList& names);
// Docks the named toolbars again row by row in their order; toolbars without a known row get a
// row after the others of their dock. Places without any row only move bars to another dock.
void restoreToolbarPlaces(QMainWindow& window, const QStringList& names,
                          const QMap<QString, ToolbarPlace>& places);

}  // namespace lomarin::ui
