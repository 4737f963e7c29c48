#include "ui/admin/admin_commands.h"

#include "ui/admin/form_database_sizes.h"
#include "ui/admin/form_optimizing_tables.h"
#include "ui/admin/form_table_status.h"
#include "ui/admin/frm_sessions.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"

namespace lomarin::ui {

namespace {

ErrorReporter reporter(Tformppal& window) {
  return [&window](const QString& message) { window.ShowServerError(message); };
}

}  // namespace

void installAdminCommands(Tformppal& window) {
  MainActions& actions = window.actions();
  actions.setHandler("actOptimizingTable", [&window] {
    TfrmOptimizingTables dialog(window.MySqlSession, reporter(window), &window);
    dialog.exec();
  });
  actions.setHandler("actDbStataus", [&window] {
    auto* form = new TformDataBaseSizes(window.MySqlSession, reporter(window));
    window.addDocument(form);
    form->Refresh();
  });
  actions.setHandler("actTableStatus", [&window] {
    if (!window.currentdb()) return;
    auto* form = new TformTableStatus(window.MySqlSession, reporter(window),
                                      QString::fromStdString(window.MySqlSession.CurrentDatabase()));
    window.addDocument(form);
    form->Refresh();
  });
  actions.setHandler("actSession", [&window] {
    auto* form = new TfrmSessions(window.MySqlSession, window.settings(), reporter(window));
    window.addDocument(form);
    form->Open();
  });
}

}  // namespace lomarin::ui
