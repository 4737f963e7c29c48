#include "ui/sqleditor/sqleditor_commands.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <memory>

#include "engine/sqleditor/sqleditor_options.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/form_sql_editor.h"

namespace lomarin::ui {

namespace {

// The history and the parameter values every editor of the window shares.
struct SharedStores {
  THsitory History;
  TMyParams Params;
};

TformSQLEditor* newEditor(Tformppal& window, SharedStores& stores) {
  TSqlEditorContext context(window.MySqlSession, window.settings());
  context.History = &stores.History;
  context.Params = &stores.Params;
  context.ShowServerError = [&window](const QString& message) { window.ShowServerError(message); };
  context.CurrentDb = [&window] { return window.currentdb(); };
  return new TformSQLEditor(context);
}

}  // namespace

void installSqlEditorCommands(Tformppal& window) {
  auto stores = std::make_shared<SharedStores>(SharedStores{OpenHistory(window.settings()), OpenParams()});
  window.actions().setHandler("actSqlEditor",
                              [&window, stores] { window.addDocument(newEditor(window, *stores)); });
  window.setFileOpener(".sql", [&window, stores](const QString& fileName) -> QWidget* {
    TformSQLEditor* editor = newEditor(window, *stores);
    if (!editor->loadFile(fileName)) {
      delete editor;
      window.ShowServerError(QString("Cannot read %1").arg(fileName));
      return nullptr;
    }
    window.addDocument(editor);
    return editor;
  });
  QObject::connect(&window, &Tformppal::connectionChanged, &window, [&window] {
    const auto documents = window.mdiArea()->subWindowList();
    for (auto it = documents.rbegin(); it != documents.rend(); ++it)
      if (auto* editor = qobject_cast<TformSQLEditor*>((*it)->widget())) editor->updateConnected();
  });
  QObject::connect(window.mdiArea(), &QMdiArea::subWindowActivated, &window, [](QMdiSubWindow* subWindow) {
    if (auto* editor = subWindow ? qobject_cast<TformSQLEditor*>(subWindow->widget()) : nullptr)
      editor->applyOptions();
  });
}

}  // namespace lomarin::ui
