#include "ui/sqleditor/sqleditor_commands.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <memory>

#include "engine/sqleditor/db_object_names.h"
#include "engine/sqleditor/sqleditor_options.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/form_sql_editor.h"

namespace lomarin::ui {

namespace {

// The history, the parameter values and the name lists every editor of the window shares.
struct SharedStores {
  THsitory History;
  TMyParams Params;
  TDbNameLists Names;
};

std::vector<TDbObjectItem> databaseObjects(TMyConnection& session, TDbNameLists& names) {
  std::vector<TDbObjectItem> items;
  try {
    for (const TDbObjectName& object : names.objects(session))
      items.push_back({QString::fromStdString(object.Name), object.Kind});
  } catch (const ServerError&) {
    // The session's error handler has shown it; the lists are tried again next time.
  }
  return items;
}

TformSQLEditor* newEditor(Tformppal& window, const std::shared_ptr<SharedStores>& stores) {
  TSqlEditorContext context(window.MySqlSession, window.settings());
  context.History = &stores->History;
  context.Params = &stores->Params;
  context.DatabaseObjects = [&window, stores] { return databaseObjects(window.MySqlSession, stores->Names); };
  context.ShowServerError = [&window](const QString& message) { window.ShowServerError(message); };
  context.CurrentDb = [&window] { return window.currentdb(); };
  context.FileChoices = [&window] { return window.editorFileChoices(); };
  context.IsSSHTunnel = [&window] { return window.IsSSHTunnel(); };
  return new TformSQLEditor(context);
}

}  // namespace

void installSqlEditorCommands(Tformppal& window) {
  auto stores =
      std::make_shared<SharedStores>(SharedStores{OpenHistory(window.settings()), OpenParams(), {}});
  window.actions().setHandler("actSqlEditor",
                              [&window, stores] { window.addDocument(newEditor(window, stores)); });
  window.setFileOpener(".sql", [&window, stores](const QString& fileName) -> QWidget* {
    TformSQLEditor* editor = newEditor(window, stores);
    if (!editor->loadFile(fileName)) {
      delete editor;
      window.ShowServerError(QString("Cannot read %1").arg(fileName));
      return nullptr;
    }
    window.addDocument(editor);
    return editor;
  });
  QObject::connect(&window, &Tformppal::connectionChanged, &window, [&window, stores] {
    stores->Names.release();
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
