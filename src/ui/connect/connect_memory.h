#pragma once

#include <QString>
#include <optional>

namespace lomarin::ui {

// What the connect dialog remembers of its last use, kept in the "Connect" element under the
// root of the window-layout file. The main window owns the other elements of that file; reading
// and writing here leave them as they are.
struct ConnectMemory {
  QString port;
  QString clientCharset;
  QString fontCharset;
  QString database;
  QString host;
  QString login;
  QString phpUrl;

  bool operator==(const ConnectMemory&) const = default;
};

// The layout file in the data folder.
QString layoutFile();

// Nothing when the file or its "Connect" element is missing or the file is damaged.
std::optional<ConnectMemory> readConnectMemory(const QString& file);
// Replaces the "Connect" element, writing a new file beside the old one and renaming it over.
// False, with the file untouched, when it cannot be written or is damaged.
bool writeConnectMemory(const QString& file, const ConnectMemory& memory);

}  // namespace lomarin::ui
