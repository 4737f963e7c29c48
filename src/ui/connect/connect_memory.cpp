#include "ui/connect/connect_memory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <vector>

#include "engine/app/data_folder.h"
#include "engine/app/layout_values.h"

namespace lomarin::ui {

namespace {

constexpr auto kSection = QLatin1StringView("Connect");

struct Element {
  QString name;
  QXmlStreamAttributes attributes;
  QString text;
  std::vector<Element> children;
};

bool readElement(QXmlStreamReader& xml, Element& element) {
  element.name = xml.name().toString();
  element.attributes = xml.attributes();
  while (xml.readNext() != QXmlStreamReader::EndElement) {
    if (xml.hasError() || xml.atEnd()) return false;
    if (xml.isCharacters() && !xml.isWhitespace()) element.text += xml.text();
    if (xml.isStartElement()) {
      element.children.emplace_back();
      if (!readElement(xml, element.children.back())) return false;
    }
  }
  return true;
}

// Nothing for a damaged file; an empty root for a missing one.
std::optional<Element> readDocument(const QString& file) {
  const QString root = QString::fromLatin1(kLayoutRoot.data(), kLayoutRoot.size());
  QFile in(file);
  if (!in.exists()) return Element{root, {}, {}, {}};
  if (!in.open(QIODevice::ReadOnly)) return std::nullopt;
  QXmlStreamReader xml(&in);
  while (!xml.atEnd() && !xml.isStartElement()) xml.readNext();
  Element document;
  if (!xml.isStartElement() || xml.name() != root || !readElement(xml, document)) return std::nullopt;
  return document;
}

void writeElement(QXmlStreamWriter& xml, const Element& element) {
  xml.writeStartElement(element.name);
  xml.writeAttributes(element.attributes);
  if (!element.text.isEmpty()) xml.writeCharacters(element.text);
  for (const auto& child : element.children) writeElement(xml, child);
  xml.writeEndElement();
}

std::vector<std::pair<QString, QString ConnectMemory::*>> fields() {
  return {{"spnPort", &ConnectMemory::port},          {"cboClientCharset", &ConnectMemory::clientCharset},
          {"cboFontCharset", &ConnectMemory::fontCharset}, {"cboDatabase", &ConnectMemory::database},
          {"cboServer", &ConnectMemory::host},        {"edtLogin", &ConnectMemory::login},
          {"edtPHPUrl", &ConnectMemory::phpUrl}};
}

}  // namespace

QString layoutFile() {
  return QDir(QString::fromStdString(dataFolder().string()))
      .filePath(QString::fromLatin1(kLayoutFileName.data(), kLayoutFileName.size()));
}

std::optional<ConnectMemory> readConnectMemory(const QString& file) {
  const auto document = readDocument(file);
  if (!document) return std::nullopt;
  for (const auto& section : document->children) {
    if (section.name != kSection) continue;
    ConnectMemory memory;
    for (const auto& value : section.children)
      for (const auto& [name, member] : fields())
        if (value.name == name) memory.*member = value.text;
    return memory;
  }
  return std::nullopt;
}

bool writeConnectMemory(const QString& file, const ConnectMemory& memory) {
  auto document = readDocument(file);
  if (!document) return false;
  Element section{kSection, {}, {}, {}};
  for (const auto& [name, member] : fields()) section.children.push_back({name, {}, memory.*member, {}});
  auto& children = document->children;
  std::erase_if(children, [](const Element& e) { return e.name == kSection; });
  children.push_back(std::move(section));

  QDir().mkpath(QFileInfo(file).absolutePath());
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly)) return false;
  QXmlStreamWriter xml(&out);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  writeElement(xml, *document);
  xml.writeEndDocument();
  return out.commit();
}

}  // namespace lomarin::ui
