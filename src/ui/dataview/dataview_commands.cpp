#include "ui/dataview/dataview_commands.h"

#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/dataview/form_data.h"

namespace lomarin::ui {

void installDataviewCommands(Tformppal& window) {
  QObject::connect(window.explorer(), &TframeExplorer::objectActivated, &window,
                   [&window](explorer::NodeKind kind, const QString& database, const QString& name) {
                     const bool view = kind == explorer::NodeKind::View;
                     if ((kind != explorer::NodeKind::Table && !view) || !window.currentdb()) return;
                     openTableWindow(window.mdiArea(), window.MySqlSession, window.settings(),
                                     database.toStdString(), name.toStdString(), view);
                   });
}

}  // namespace lomarin::ui
