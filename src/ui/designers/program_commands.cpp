#include "ui/designers/program_commands.h"

#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/designers/form_new_view.h"
#include "ui/designers/form_trg_mgr.h"

namespace lomarin::ui {

namespace {

using explorer::NodeKind;

QString databaseOf(Tformppal& window) {
  const QString tree = window.explorer()->selection().database;
  return tree.isEmpty() ? QString::fromStdString(window.MySqlSession.CurrentDatabase()) : tree;
}

ErrorReporter reporter(Tformppal& window) {
  return [&window](const QString& message) { window.ShowServerError(message); };
}

void openTrigger(Tformppal& window, const QString& database, const QString& name = {}) {
  TformTrgMgr dialog(window.MySqlSession, window.settings(), reporter(window), database, name, &window);
  dialog.exec();
  if (dialog.editMode()) window.explorer()->refreshDatabase(dialog.database());
}

}  // namespace

void installProgramCommands(Tformppal& window) {
  MainActions& actions = window.actions();
  actions.setHandler("actNewTrigger", [&window] {
    if (window.currentdb()) openTrigger(window, databaseOf(window));
  });
  actions.setHandler("actNewView", [&window] {
    if (!window.currentdb()) return;
    TformNewView dialog(window.MySqlSession, window.settings(), &window);
    if (dialog.exec() == QDialog::Accepted)
      window.explorer()->refreshDatabase(QString::fromStdString(window.MySqlSession.CurrentDatabase()));
  });
  QObject::connect(window.explorer(), &TframeExplorer::objectActivated, &window,
                   [&window](NodeKind kind, const QString& database, const QString& name) {
                     if (kind == NodeKind::Trigger) openTrigger(window, database, name);
                   });
}

}  // namespace lomarin::ui
