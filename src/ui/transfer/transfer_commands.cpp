#include "ui/transfer/transfer_commands.h"

#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/transfer/form_export_db.h"
#include "ui/transfer/form_transfer_database.h"

namespace lomarin::ui {

void installTransferCommands(Tformppal& window) {
  const auto openExport = [&window] {
    TfrmExportDb dialog(window.MySqlSession, window.settings(), &window,
                        [&window](const QString& message) { window.ShowServerError(message); });
    QObject::connect(&dialog, &TfrmExportDb::openFileRequested, &window,
                     [&window](const QString& file) { window.CheckParam(file); });
    dialog.exec();
  };
  for (const char* action : {"actExpDb", "actExpTables", "actExportDB"})
    window.actions().setHandler(action, openExport);
  window.actions().setHandler("actTransfer", [&window] {
    if (!window.currentdb()) return;
    TfrmTransferdatabase dialog(window.MySqlSession, window.settings(), &window, window.keychain());
    dialog.exec();
  });
}

}  // namespace lomarin::ui
