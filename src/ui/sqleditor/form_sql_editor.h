#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/run_stop.h"
#include "engine/sqleditor/editor_file_format.h"
#include "ui/sqleditor/error_reporter.h"
#include "ui/sqleditor/sql_completer.h"

class QAction;
class QLabel;
class QSplitter;
class QTabWidget;
class QToolBar;

namespace lomarin {
class SettingsStore;
class THsitory;
class TMyParams;
class TMyScript;
struct TQueryRun;
}  // namespace lomarin

namespace lomarin::ui {

class TframeData;
class TframeecSQL;
class TSessionActivity;
class TWaitPanel;

// What an editor document uses of the program around it.
struct TSqlEditorContext {
  TSqlEditorContext(TMyConnection& session, SettingsStore& settings) : Session(session), Settings(settings) {}

  TMyConnection& Session;
  SettingsStore& Settings;
  THsitory* History = nullptr;
  TMyParams* Params = nullptr;
  ErrorReporter ShowServerError;
  // Asks for a current database when none is set; false stops the command. None: always true.
  std::function<bool()> CurrentDb;
  // Objects of the current database for the completion lists.
  std::function<std::vector<TDbObjectItem>()> DatabaseObjects;
  // The connection runs through an SSH tunnel: query-mode runs then read every row at once.
  std::function<bool()> IsSSHTunnel;
  // What runs on the session off the UI thread, shared by the window's documents. None: the
  // editor keeps one of its own.
  TSessionActivity* Activity = nullptr;
  // The folder holding the shipped "Utils/" and "formatter/" files.
  QString ShippedFolder;
  // The editor charset, line-end format and encoding the connection chose; files are read and
  // written with them, and with the "Editor …" options for what they leave empty.
  std::function<TEditorFileChoices()> FileChoices = [] { return TEditorFileChoices{}; };
};

// The shipped files' folder: beside the program, else share/lomarin above it.
QString DefaultShippedFolder();

// The "SQL editor" document: the editing frame above the results of query-mode runs.
class TformSQLEditor : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString fileName READ fileName)
  // The main window stops a busy document before it closes, and waits for it.
  Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
 public:
  explicit TformSQLEditor(TSqlEditorContext context, QWidget* parent = nullptr);
  ~TformSQLEditor() override;

  TframeecSQL* frame() const { return frame_; }
  // The grid of the first result of a query-mode run.
  TframeData* fraData() const { return fraData_; }
  // Where a run that lasts shows its wait and its Stop.
  TWaitPanel* waitPanel() const { return wait_; }
  QTabWidget* results() const { return pgcResults_; }
  QAction* action(const QString& objectName) const;
  QString panelText(int index) const;
  // Panel 4: a text the main window gives the document.
  void setStatusText(const QString& text);

  const QString& fileName() const { return fileName_; }
  bool loadFile(const QString& fileName);
  bool saveToFile(const QString& fileName);

  // The execution commands: query mode on the selection or text, on a given text, explain,
  // script mode, the block at the caret, and stop.
  void RunEditorText();
  void RunStatementText(const QString& text);
  void ExplainEditorText();
  void RunEditorScript();
  void RunCurrentSQL();
  Q_INVOKABLE void Stop();
  bool isBusy() const { return running_; }

  void formatCode();
  void unformatCode();
  // Asks before emptying the memo.
  void clearEditor();
  // Asks whether to save a changed text; false when the user cancels closing.
  bool CheckSave();
  // Asked by the main window before it closes.
  Q_INVOKABLE bool mayClose() { return CheckSave(); }
  // Enables the execution commands while the session is connected.
  void updateConnected();
  // Re-reads the editor options (on activation).
  void applyOptions();

 signals:
  void busyChanged(bool busy);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void buildActions();
  void buildLayout();
  QAction* addAction(const char* name, const QString& caption, const QString& shortcut,
                     std::function<void()> run);
  bool askCurrentDb() const;
  void runQuery(const std::string& text, bool recordHistory);
  void addToHistory(const std::string& text);
  void showResults(TQueryRun run);
  void clearResults();
  void showError(const QString& message) const;
  bool saveWithDialog();
  void setRunning(bool running);

  TSqlEditorContext ctx_;
  std::unique_ptr<TSessionActivity> ownActivity_;
  std::unique_ptr<TMyScript> myScript_;
  std::string scriptErrors_;
  std::string formatterSource_;
  QString fileName_;
  // A query or script is on its way; a script stops itself, a query through queryStop_.
  bool running_ = false;
  TRunStop queryStop_;

  QToolBar* tbSQL_;
  QSplitter* splSQL_;
  TframeecSQL* frame_;
  TframeData* fraData_;
  QTabWidget* pgcResults_;
  TWaitPanel* wait_;
  std::vector<QLabel*> panels_;
};

}  // namespace lomarin::ui
