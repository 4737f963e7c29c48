#pragma once

#include <QDir>
#include <QString>

namespace lomarin::test {

// Where a test saves a render for a person to look at: $LOMARIN_RENDER_DIR, else renders/ in
// the build folder.
inline QString renderPath(const QString& fileName) {
  const QString folder = qEnvironmentVariable("LOMARIN_RENDER_DIR", LOMARIN_BUILD_RENDER_DIR);
  QDir().mkpath(folder);
  return QDir(folder).filePath(fileName);
}

}  // namespace lomarin::test
