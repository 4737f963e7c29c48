#include "ui/app/window_layout.h"

#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QSaveFile>
#include <QToolBar>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <algorithm>
#include <climits>

#include "engine/app/action_table.h"
#include "engine/app/data_folder.h"
#include "engine/app/layout_values.h"

namespace lomarin::ui {
namespace {

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

const QMap<Qt::ToolBarArea, QString>& dockNames() {
  static const QMap<Qt::ToolBarArea, QString> names{{Qt::TopToolBarArea, "Top"},
                                                    {Qt::BottomToolBarArea, "Bottom"},
                                                    {Qt::LeftToolBarArea, "Left"},
                                                    {Qt::RightToolBarArea, "Right"},
                                                    {Qt::NoToolBarArea, "None"}};
  return names;
}

// The toolbar that has no default dock of its own in the file.
constexpr std::string_view kFloatingToolbar = "tbtSchema";

QString element(const QString& property) { return qs(layoutElementName(property.toStdString())); }

bool horizontal(Qt::ToolBarArea dock) { return dock == Qt::TopToolBarArea || dock == Qt::BottomToolBarArea; }

// Rows are counted from the window's edge: the bottom and right docks grow inwards.
int lineFromEdge(const QToolBar& bar, Qt::ToolBarArea dock) {
  switch (dock) {
    case Qt::BottomToolBarArea:
      return -bar.y();
    case Qt::LeftToolBarArea:
      return bar.x();
    case Qt::RightToolBarArea:
      return -bar.x();
    default:
      return bar.y();
  }
}

QToolBar* toolbar(const QMainWindow& window, const QString& name) {
  return window.findChild<QToolBar*>(name, Qt::FindDirectChildrenOnly);
}

// The file is shared with other windows (the connect dialog keeps its own section there): their
// sections are copied as they are. False for a damaged file, which is then left alone.
bool copyOtherSections(const QString& file, QXmlStreamWriter& out, QString* error) {
  QFile in(file);
  if (!in.exists()) return true;
  if (!in.open(QIODevice::ReadOnly)) {
    *error = in.errorString();
    return false;
  }
  QXmlStreamReader xml(&in);
  if (xml.readNextStartElement() && xml.name() == qs(kLayoutRoot)) {
    int depth = 0;
    bool copying = false;
    while (xml.readNext() != QXmlStreamReader::Invalid) {
      if (xml.isStartElement() && depth++ == 0) copying = xml.name() != qs(kLayoutSection);
      if (xml.isEndElement() && depth-- == 0) return true;
      if (copying && !xml.isWhitespace()) out.writeCurrentToken(xml);
    }
  }
  *error = QObject::tr("%1 is damaged; the window layout was not saved").arg(file);
  return false;
}

}  // namespace

QString windowLayoutFile() {
  return QDir(QString::fromStdString(dataFolder().string())).filePath(qs(kLayoutFileName));
}

bool saveWindowLayout(const WindowLayout& layout, const QString& file, QString* error) {
  QDir().mkpath(QFileInfo(file).absolutePath());
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly)) {
    *error = out.errorString();
    return false;
  }
  QXmlStreamWriter xml(&out);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  xml.writeStartElement(qs(kLayoutRoot));
  xml.writeStartElement(qs(kLayoutSection));
  const auto value = [&](const QString& property, const QString& text) {
    xml.writeTextElement(element(property), text);
  };
  value("Tformppal.Left", QString::number(layout.geometry.x()));
  value("Tformppal.Top", QString::number(layout.geometry.y()));
  value("Tformppal.Width", QString::number(layout.geometry.width()));
  value("Tformppal.Height", QString::number(layout.geometry.height()));
  value("Tformppal.Maximized", qs(layoutBoolText(layout.maximized)));
  value("paneSideBar.Width", QString::number(layout.sideBarWidth));
  value("tbmMRU.MRUList", layout.mruList);
  for (std::string_view name : toolbarNames()) {
    const QString bar = qs(name);
    const ToolbarPlace place = layout.toolbars.value(bar);
    value(bar + ".CurrentDock", dockNames().value(place.dock));
    if (name != kFloatingToolbar) value(bar + ".DefaultDock", dockNames().value(Qt::TopToolBarArea));
    value(bar + ".DockRow", QString::number(place.row));
    value(bar + ".DockPos", QString::number(place.position));
  }
  xml.writeEndElement();
  if (!copyOtherSections(file, xml, error)) {
    out.cancelWriting();
    return false;
  }
  xml.writeEndElement();
  xml.writeEndDocument();
  if (!out.commit()) {
    *error = out.errorString();
    return false;
  }
  return true;
}

std::optional<WindowLayout> loadWindowLayout(const QString& file, QString* error) {
  QFile in(file);
  if (!in.exists()) return std::nullopt;
  if (!in.open(QIODevice::ReadOnly)) {
    *error = in.errorString();
    return std::nullopt;
  }
  QMap<QString, QString> values;
  QXmlStreamReader xml(&in);
  if (!xml.readNextStartElement() || xml.name() != qs(kLayoutRoot)) {
    *error = QObject::tr("%1 is not a window layout file").arg(file);
    return std::nullopt;
  }
  while (xml.readNextStartElement()) {
    if (xml.name() != qs(kLayoutSection)) {
      xml.skipCurrentElement();
      continue;
    }
    while (xml.readNextStartElement()) {
      const QString name = xml.name().toString();
      values.insert(name, xml.readElementText());
    }
  }
  if (xml.hasError()) {
    *error = QObject::tr("%1: %2 (line %3)").arg(file, xml.errorString()).arg(xml.lineNumber());
    return std::nullopt;
  }
  WindowLayout layout;
  const auto number = [&](const QString& property) { return values.value(element(property)).toInt(); };
  layout.geometry = QRect(number("Tformppal.Left"), number("Tformppal.Top"), number("Tformppal.Width"),
                          number("Tformppal.Height"));
  layout.maximized =
      parseLayoutBool(values.value(element("Tformppal.Maximized")).toStdString()).value_or(false);
  layout.sideBarWidth = number("paneSideBar.Width");
  layout.mruList = values.value(element("tbmMRU.MRUList"));
  for (std::string_view name : toolbarNames()) {
    const QString bar = qs(name);
    const QString dock = values.value(element(bar + ".CurrentDock"));
    if (dock.isEmpty()) continue;
    const auto known = [&](const QString& property) {
      bool ok = false;
      const int n = values.value(element(bar + property)).toInt(&ok);
      return ok && n >= 0 ? n : -1;
    };
    layout.toolbars.insert(bar,
                           {dockNames().key(dock, Qt::TopToolBarArea), known(".DockRow"), known(".DockPos")});
  }
  return layout;
}

QMap<QString, ToolbarPlace> toolbarPlaces(const QMainWindow& window, const QStringList& names) {
  QMap<QString, ToolbarPlace> places;
  QMap<Qt::ToolBarArea, QList<int>> lines;
  for (const QString& name : names) {
    const QToolBar* bar = toolbar(window, name);
    if (!bar) continue;
    ToolbarPlace& place = places[name];
    place.dock = window.toolBarArea(bar);
    // A hidden or floating bar's geometry says nothing about its row.
    if (bar->isHidden() || bar->isFloating()) continue;
    place.position = horizontal(place.dock) ? bar->x() : bar->y();
    place.row = lineFromEdge(*bar, place.dock);
    QList<int>& known = lines[place.dock];
    if (!known.contains(place.row)) known.append(place.row);
  }
  for (auto& list : lines) std::sort(list.begin(), list.end());
  QMap<std::pair<int, int>, QList<int>> positions;
  for (ToolbarPlace& place : places)
    if (place.row != -1) place.row = static_cast<int>(lines[place.dock].indexOf(place.row));
  for (ToolbarPlace& place : places)
    if (place.row != -1) positions[{place.dock, place.row}].append(place.position);
  for (auto& list : positions) std::sort(list.begin(), list.end());
  for (ToolbarPlace& place : places)
    if (place.row != -1)
      place.position = static_cast<int>(positions[{place.dock, place.row}].indexOf(place.position));
  return places;
}

void restoreToolbarPlaces(QMainWindow& window, const QStringList& names,
                          const QMap<QString, ToolbarPlace>& places) {
  struct Entry {
    QToolBar* bar;
    ToolbarPlace place;
    qsizetype index;
    bool hidden;
  };
  std::vector<Entry> entries;
  bool rowsKnown = false;
  for (qsizetype i = 0; i < names.size(); ++i) {
    QToolBar* bar = toolbar(window, names[i]);
    if (!bar) continue;
    const auto saved = places.find(names[i]);
    ToolbarPlace place = saved != places.end() ? *saved : ToolbarPlace{window.toolBarArea(bar), -1, -1};
    if (place.dock == Qt::NoToolBarArea) place.dock = window.toolBarArea(bar);
    rowsKnown = rowsKnown || place.row != -1;
    entries.push_back({bar, place, i, bar->isHidden()});
  }
  if (!rowsKnown) {
    // A file without rows: only a change of dock moves a bar, so the built-in rows stay.
    for (const Entry& e : entries)
      if (window.toolBarArea(e.bar) != e.place.dock) window.addToolBar(e.place.dock, e.bar);
    return;
  }
  const auto key = [](const Entry& e) {
    return std::tuple(static_cast<int>(e.place.dock), e.place.row == -1 ? INT_MAX : e.place.row,
                      e.place.position == -1 ? INT_MAX : e.place.position, e.index);
  };
  std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) { return key(a) < key(b); });
  for (const Entry& e : entries) window.removeToolBar(e.bar);
  for (size_t i = 0; i < entries.size(); ++i) {
    const Entry& e = entries[i];
    const bool newRow =
        i > 0 && entries[i - 1].place.dock == e.place.dock && entries[i - 1].place.row != e.place.row;
    if (newRow) window.addToolBarBreak(e.place.dock);
    window.addToolBar(e.place.dock, e.bar);
    e.bar->setVisible(!e.hidden);
  }
}

}  // namespace lomarin::ui
