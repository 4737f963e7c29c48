#include "ui/app/window_layout.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "engine/app/action_table.h"
#include "engine/app/data_folder.h"
#include "engine/app/layout_values.h"

namespace lomarin::ui {
namespace {

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

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
    value(bar + ".CurrentDock", dockNames().value(layout.toolbarDocks.value(bar, Qt::TopToolBarArea)));
    if (name != kFloatingToolbar) value(bar + ".DefaultDock", dockNames().value(Qt::TopToolBarArea));
  }
  xml.writeEndElement();
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
    if (!dock.isEmpty()) layout.toolbarDocks.insert(bar, dockNames().key(dock, Qt::TopToolBarArea));
  }
  return layout;
}

}  // namespace lomarin::ui
