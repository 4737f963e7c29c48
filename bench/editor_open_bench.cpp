// Opens a script file in the SQL editor document and reports the time until it is shown and the
// memory it took: editor_open_bench FILE
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <fstream>
#include <string>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "ui/sqleditor/form_sql_editor.h"

namespace {

// Resident and peak resident memory of this process, in kB.
long statusKb(const char* field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.rfind(field, 0) == 0) return std::stol(line.substr(std::string(field).size()));
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: editor_open_bench FILE\n");
    return 2;
  }
  QTemporaryDir config;
  lomarin::SettingsStore settings((config.path() + "/settings.db").toStdString());
  lomarin::TMyConnection session;
  lomarin::ui::TformSQLEditor editor(lomarin::ui::TSqlEditorContext(session, settings));
  editor.setAttribute(Qt::WA_DeleteOnClose, false);
  editor.resize(1000, 700);
  editor.show();
  app.processEvents();
  const long before = statusKb("VmRSS:");
  const double sizeMb = static_cast<double>(QFile(argv[1]).size()) / (1 << 20);

  QElapsedTimer timer;
  timer.start();
  if (!editor.loadFile(QString::fromLocal8Bit(argv[1]))) {
    std::fprintf(stderr, "cannot read %s\n", argv[1]);
    return 1;
  }
  const double loaded = static_cast<double>(timer.nsecsElapsed()) / 1e9;
  // Shown: the first screen painted.
  editor.grab();
  app.processEvents();
  const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
  const long peak = statusKb("VmHWM:");
  const long after = statusKb("VmRSS:");
  std::printf("file             : %.1f MB\n", sizeMb);
  std::printf("open and show    : %.2f s (%.2f s of it reading into the memo)\n", seconds, loaded);
  std::printf(
      "memory added     : %.1f MB resident after, %.1f MB at the peak (%.2f and %.2f times the file)\n",
      static_cast<double>(after - before) / 1024, static_cast<double>(peak - before) / 1024,
      static_cast<double>(after - before) / 1024 / sizeMb,
      static_cast<double>(peak - before) / 1024 / sizeMb);
  return 0;
}
