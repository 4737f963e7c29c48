#include "ui/sqleditor/sqleditor_commands.h"

#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QToolBar>
#include <memory>

#include "engine/sqleditor/db_object_names.h"
#include "engine/sqleditor/sqleditor_options.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/form_sql_history.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

// The history, the parameter values and the name lists every editor of the window shares, and
// what runs on the window's session.
struct SharedStores {
  THsitory History;
  TMyParams Params;
  TDbNameLists Names;
  TSessionActivity* Activity = nullptr;
};

// The main window's Stop: ends what runs on the session, whichever document started it.
void addSessionStop(Tformppal& window, TSessionActivity& activity) {
  auto* stop = new QAction("Stop", &window);
  stop->setObjectName("actStopSession");
  stop->setToolTip("Stop what runs on the session");
  stop->setEnabled(false);
  // First on its bar, so a narrow window does not hide it behind the bar's extension.
  QToolBar* bar = window.actions().toolbar("tbtDbBar");
  bar->insertAction(bar->actions().value(0), stop);
  window.actions().menu("Database")->addAction(stop);
  QObject::connect(stop, &QAction::triggered, &activity, &TSessionActivity::stop);
  QObject::connect(&activity, &TSessionActivity::started, stop, [stop](const QString& what) {
    stop->setEnabled(true);
    stop->setToolTip("Stop " + what);
  });
  QObject::connect(&activity, &TSessionActivity::ended, stop, [stop] {
    stop->setEnabled(false);
    stop->setToolTip("Stop what runs on the session");
  });
}

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
  context.Activity = stores->Activity;
  return new TformSQLEditor(context);
}

TformSQLEditor* activeEditor(const Tformppal& window) {
  QMdiSubWindow* active = window.mdiArea()->activeSubWindow();
  return active ? qobject_cast<TformSQLEditor*>(active->widget()) : nullptr;
}

// The chosen statement goes into the active editor at its caret (a new editor when none is
// active) or onto the clipboard.
void showSqlHistory(Tformppal& window, const std::shared_ptr<SharedStores>& stores) {
  TformSQLHistory dialog(
      stores->History, window.settings(),
      [&window](const QString& message) { window.ShowServerError(message); }, &window);
  const int result = dialog.exec();
  const QString sql = dialog.SelectedSQL();
  if (sql.isEmpty()) return;
  if (result == TformSQLHistory::ResultYes) {
    QGuiApplication::clipboard()->setText(sql);
  } else if (result == TformSQLHistory::ResultOK) {
    TformSQLEditor* editor = activeEditor(window);
    if (!editor) {
      editor = newEditor(window, stores);
      window.addDocument(editor);
    }
    editor->frame()->memo()->replaceSelectedText(sql);
    editor->frame()->memo()->setFocus();
  }
}

}  // namespace

void installSqlEditorCommands(Tformppal& window) {
  auto stores =
      std::make_shared<SharedStores>(SharedStores{OpenHistory(window.settings()), OpenParams(), {}});
  stores->Activity = new TSessionActivity(window.MySqlSession, &window);
  stores->Activity->setObjectName("SessionActivity");
  addSessionStop(window, *stores->Activity);
  window.actions().setHandler("actSqlEditor",
                              [&window, stores] { window.addDocument(newEditor(window, stores)); });
  window.actions().setHandler("actSQLHsitory", [&window, stores] { showSqlHistory(window, stores); });
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
