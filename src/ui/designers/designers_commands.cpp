#include "ui/designers/designers_commands.h"

#include <optional>

#include "engine/dataview/browse_sql.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/designers/form_alter_table.h"
#include "ui/designers/form_clone_object.h"
#include "ui/designers/form_constraint_manager.h"
#include "ui/designers/form_databases.h"
#include "ui/designers/form_index_manager.h"
#include "ui/designers/form_rename_table.h"
#include "ui/designers/form_table.h"
#include "ui/designers/program_commands.h"

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

ErrorReporter reporter(Tformppal& window) {
  return [&window](const QString& message) { window.ShowServerError(message); };
}

// The table the tree's current node is or belongs to; reports and gives nothing when there is none.
std::optional<TframeExplorer::Selection> selectedTable(Tformppal& window) {
  TframeExplorer::Selection selection = window.explorer()->selection();
  if (!selection.table.isEmpty()) return selection;
  window.ShowServerError(QObject::tr("Select a table in the object tree."));
  return std::nullopt;
}

void cloneTable(Tformppal& window) {
  const auto selection = selectedTable(window);
  if (!selection) return;
  TfrmCloneObject dialog(window.MySqlSession, selection->database, selection->table, reporter(window),
                         &window);
  if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase(dialog.targetDatabase());
}

// The managers stay open for several changes; the tree follows once they close.
template <typename Manager>
void openKeyManager(Tformppal& window, bool dropPage = false) {
  const TframeExplorer::Selection selection = window.explorer()->selection();
  Manager dialog(window.MySqlSession, reporter(window), databaseOf(window), selection.table, &window);
  if (dropPage) dialog.showDropPage();
  dialog.exec();
  window.explorer()->refreshDatabase(QString::fromStdString(dialog.database()));
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
    if (const auto selection = selectedTable(window))
      alterColumn(window, selection->database, selection->table, {});
  });
  actions.setHandler("actRename", [&window] {
    const auto selection = selectedTable(window);
    if (!selection) return;
    TfrmRenameTable dialog(window.MySqlSession, selection->database, selection->table, &window);
    if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase(selection->database);
  });
  actions.setHandler("actCloneObject", [&window] { cloneTable(window); });
  actions.setHandler("actCloneObj", [&window] { cloneTable(window); });
  actions.setHandler("actIndex", [&window] { openKeyManager<TformIndexManager>(window); });
  actions.setHandler("actDropIndex", [&window] { openKeyManager<TformIndexManager>(window, true); });
  actions.setHandler("actConstraint", [&window] { openKeyManager<TformConstraintManager>(window); });
  actions.setHandler("actAddDatabase", [&window] {
    TformNewDataBase dialog(window.MySqlSession, reporter(window), &window);
    if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase({});
  });
  actions.setHandler("actDropDatabase", [&window] {
    TformDropDatabase dialog(window.MySqlSession, window.settings(), reporter(window), &window);
    if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase({});
  });
  QObject::connect(window.explorer(), &TframeExplorer::columnActivated, &window,
                   [&window](const QString& database, const QString& table, const QString& column) {
                     alterColumn(window, database, table, column);
                   });
  installProgramCommands(window);
}

}  // namespace lomarin::ui
