#include "ui/designers/designers_commands.h"

#include "engine/dataview/browse_sql.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/designers/form_alter_table.h"
#include "ui/designers/form_table.h"

namespace lomarin::ui {

namespace {

// The database a command works in: the tree's, else the session's current one.
QString databaseOf(Tformppal& window) {
  const QString tree = window.explorer()->selection().database;
  return tree.isEmpty() ? QString::fromStdString(window.MySqlSession.CurrentDatabase()) : tree;
}

// How the column statements name a table: bare in the current database, else qualified.
QString tableName(Tformppal& window, const QString& database, const QString& table) {
  return QString::fromStdString(dataview::TableWindowName(database.toStdString(), table.toStdString(),
                                                          window.MySqlSession.CurrentDatabase()));
}

void alterColumn(Tformppal& window, const QString& database, const QString& table, const QString& column) {
  TfrmAlterTable dialog(window.MySqlSession, tableName(window, database, table), column, &window);
  if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase(database);
}

}  // namespace

void installDesignersCommands(Tformppal& window) {
  MainActions& actions = window.actions();
  actions.setHandler("actNewTable", [&window] {
    if (!window.currentdb()) return;
    TfrmTable dialog(window.MySqlSession, window.settings(), databaseOf(window), &window);
    if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase(dialog.database());
  });
  actions.setHandler("actNewCclumn", [&window] {
    const TframeExplorer::Selection selection = window.explorer()->selection();
    if (selection.table.isEmpty()) {
      window.ShowServerError(QObject::tr("Select a table in the object tree."));
      return;
    }
    alterColumn(window, selection.database, selection.table, {});
  });
  QObject::connect(window.explorer(), &TframeExplorer::columnActivated, &window,
                   [&window](const QString& database, const QString& table, const QString& column) {
                     alterColumn(window, database, table, column);
                   });
}

}  // namespace lomarin::ui
