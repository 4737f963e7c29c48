#include "ui/compare/datasync_commands.h"

#include "engine/app/data_folder.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/compare/form_synchronization.h"

namespace lomarin::ui {

void installDataSyncCommands(Tformppal& window) {
  window.actions().setHandler("actdbdatasyn", [&window] {
    TformSynchronization wizard(window.MySqlSession.Settings, QString::fromStdString(dataFolder().string()),
                                &window,
                                [&window](const QString& message) { window.ShowServerError(message); });
    wizard.exec();
  });
}

}  // namespace lomarin::ui
