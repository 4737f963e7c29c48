// Opens a table in the data grid with the limit off and scrolls the view down to its last row,
// the way a user dragging the scroll bar to the end would make the grid fetch it.
//   dataview_scroll_bench DATABASE.TABLE   (connection from LOMARIN_TEST_HOST/PORT/USER/PASSWORD)
#include <QApplication>
#include <QElapsedTimer>
#include <QTableView>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"

namespace {

std::string env(const char* name) {
  const char* value = std::getenv(name);
  if (!value) {
    std::fprintf(stderr, "%s is not set\n", name);
    std::exit(2);
  }
  return value;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DATABASE.TABLE\n", argv[0]);
    return 2;
  }
  lomarin::TMyConnection session;
  session.Settings.Server = env("LOMARIN_TEST_HOST");
  session.Settings.Port = std::stoi(env("LOMARIN_TEST_PORT"));
  session.Settings.Username = env("LOMARIN_TEST_USER");
  session.Settings.Password = env("LOMARIN_TEST_PASSWORD");
  session.Settings.Protocol = lomarin::TMyProtocol::TCP;
  session.Connect();

  QTemporaryDir folder;
  lomarin::SettingsStore settings(folder.filePath("settings.sqlite").toStdString());
  settings.write(lomarin::opt::UseLimit, false);
  lomarin::ui::TframeData frame(session, settings);
  frame.resize(1000, 700);
  frame.show();

  QElapsedTimer timer;
  timer.start();
  if (!frame.OpenSQL(std::string("select * from ") + argv[1])) return 1;
  QTableView* grid = frame.grid();
  lomarin::ui::TDataModel* model = frame.model();
  while (model->canFetchMore({})) {
    grid->scrollToBottom();
    QApplication::processEvents();
  }
  grid->scrollToBottom();
  grid->setCurrentIndex(model->index(model->rowCount() - 1, 0));
  QApplication::processEvents();
  std::printf("%d rows, last record %s, %.2f s\n", model->rowCount(), frame.recordText().toUtf8().constData(),
              static_cast<double>(timer.elapsed()) / 1000.0);
  return 0;
}
