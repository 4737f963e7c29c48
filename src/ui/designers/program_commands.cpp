#include "ui/designers/program_commands.h"

#include "engine/designers/routine_texts.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/designers/form_event_manager.h"
#include "ui/designers/form_new_view.h"
#include "ui/designers/form_procedure_builder.h"
#include "ui/designers/form_trg_mgr.h"
#include "ui/designers/form_udf.h"
#include "ui/sqleditor/query_wait.h"

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

void openEvent(Tformppal& window, const QString& database, const QString& name = {}) {
  TfrmEventManager dialog(window.MySqlSession, window.settings(), reporter(window), database, name, &window);
  dialog.exec();
  if (dialog.alterMode()) window.explorer()->refreshDatabase(dialog.database());
}

void openUdf(Tformppal& window, const QString& name = {}) {
  TformUDF dialog(window.MySqlSession, window.settings(), reporter(window), name, &window);
  if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase(databaseOf(window));
}

// A routine document on the window's session; source, name and kind as the constructor takes them.
void openRoutine(Tformppal& window, std::string_view source, const QString& name = {},
                 const QString& kind = {}, const QString& database = {}) {
  TProcedureBuilderContext context(window.MySqlSession, window.settings());
  context.ShowServerError = [&window](const QString& message) { window.ShowServerError(message); };
  context.Activity = window.findChild<TSessionActivity*>("SessionActivity");
  const QString db =
      database.isEmpty() ? QString::fromStdString(window.MySqlSession.CurrentDatabase()) : database;
  window.addDocument(new TformProcedureBuilder(
      context, QString::fromUtf8(source.data(), qsizetype(source.size())), name, kind, db));
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
  actions.setHandler("actNewEvent", [&window] {
    if (window.currentdb()) openEvent(window, databaseOf(window));
  });
  actions.setHandler("actNewUdf", [&window] { openUdf(window); });
  actions.setHandler("actNewProc", [&window] {
    if (window.currentdb()) openRoutine(window, designers::kNewProcedureTemplate);
  });
  actions.setHandler("actNewFunction", [&window] {
    if (window.currentdb()) openRoutine(window, designers::kNewFunctionTemplate);
  });
  actions.setHandler("actProcBuilder", [&window] {
    if (window.currentdb()) openRoutine(window, {});
  });
  QObject::connect(window.explorer(), &TframeExplorer::objectActivated, &window,
                   [&window](NodeKind kind, const QString& database, const QString& name) {
                     switch (kind) {
                       case NodeKind::Trigger:
                         openTrigger(window, database, name);
                         break;
                       case NodeKind::Event:
                         openEvent(window, database, name);
                         break;
                       case NodeKind::Udf:
                         openUdf(window, name);
                         break;
                       case NodeKind::Procedure:
                         openRoutine(window, {}, name, "Procedures", database);
                         break;
                       case NodeKind::Function:
                         openRoutine(window, {}, name, "Functions", database);
                         break;
                       default:
                         break;
                     }
                   });
}

}  // namespace lomarin::ui
