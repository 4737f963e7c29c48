#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "engine/designers/routine_source.h"
#include "engine/designers/stored_proc.h"
#include "ui/sqleditor/error_reporter.h"

class QAction;
class QLabel;
class QPushButton;
class QTabWidget;
class QTableWidget;
class QTreeWidget;

namespace lomarin {
class SettingsStore;
class TMyConnection;
class TMyScript;
}  // namespace lomarin

namespace lomarin::ui {

class TframeData;
class TframeecSQL;
class TSessionActivity;
class TWaitPanel;

// What a routine document uses of the program around it.
struct TProcedureBuilderContext {
  TProcedureBuilderContext(TMyConnection& session, SettingsStore& settings)
      : Session(session), Settings(settings) {}

  TMyConnection& Session;
  SettingsStore& Settings;
  ErrorReporter ShowServerError;
  // What runs on the session off the UI thread. None: the document keeps one of its own.
  TSessionActivity* Activity = nullptr;
};

// "Procedure Builder": a stored procedure, function, trigger or event as text, loaded from the
// server, compiled as a script with its errors listed under the editor, and, for procedures and
// functions, executed with the values typed in the parameter list.
class TformProcedureBuilder : public QWidget {
  Q_OBJECT
  // The main window stops a busy document before it closes, and waits for it.
  Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
 public:
  // With a source text the editor starts from it; with only a name the object is loaded from the
  // server; with neither the editor is empty. kind: a tree folder text or a kind word.
  TformProcedureBuilder(TProcedureBuilderContext context, const QString& source, const QString& name,
                        const QString& kind, const QString& database, QWidget* parent = nullptr);
  ~TformProcedureBuilder() override;

  TframeecSQL* frame() const { return frame_; }
  QTabWidget* pages() const { return pgcMain_; }
  QTreeWidget* messageView() const { return fraMessageView_; }
  QTableWidget* parameters() const { return grdParams_; }
  TframeData* fraData() const { return fraData_; }
  QTabWidget* results() const { return pgcResults_; }
  QAction* action(const QString& objectName) const;
  QString panelText(int index) const;
  const std::string& routineName() const { return name_; }
  const std::string& kind() const { return kind_; }

  void actCompileExecute();
  void buExecuteClick();
  void actClearExecute();
  Q_INVOKABLE void Stop();
  bool isBusy() const { return running_; }
  Q_INVOKABLE bool mayClose() { return true; }

 signals:
  void busyChanged(bool busy);

 private:
  void buildSourcePage(const TProcedureBuilderContext& context);
  void buildExecutePage(const TProcedureBuilderContext& context);
  void buildStatusBar();
  void loadSource();
  void setRoutineName(const std::string& name);
  void fillParameters();
  void readParameterValues();
  void showParameterValues();
  void clearResults();
  void setRunning(bool running);
  void updateStatus();
  // Runs work on the session's worker with the wait panel; false when it failed (shown) or was stopped.
  bool runOnSession(const QString& what, const std::function<void()>& work);

  TMyConnection& session_;
  ErrorReporter report_;
  TSessionActivity* activity_;
  std::string name_;
  std::string kind_;
  std::string database_;
  bool dropBeforeCompile_;
  designers::TMyStoredProc proc_;
  QTabWidget* pgcMain_;
  TframeecSQL* frame_;
  QTreeWidget* fraMessageView_;
  QTableWidget* grdParams_;
  QPushButton* buExecute_;
  TframeData* fraData_;
  QTabWidget* pgcResults_;
  TWaitPanel* wait_;
  QLabel* panels_[5];
  bool running_ = false;
  // The script of the compile under way.
  TMyScript* compiling_ = nullptr;
  bool stopRequested_ = false;
};

}  // namespace lomarin::ui
