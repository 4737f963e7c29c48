#pragma once

#include <QHash>
#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>

#include "engine/app/mru_list.h"
#include "engine/connect/lost_connection.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"
#include "engine/connect/ssh_tunnel.h"
#include "engine/sqleditor/editor_file_format.h"

class QDockWidget;
class QMdiArea;
class QMenu;
class QPlainTextEdit;

namespace lomarin {
class SecretVault;
class SettingsStore;
}

namespace lomarin::ui {

class MainActions;
class MonitorRelay;
class TframeExplorer;
struct WindowLayout;

// The main window: owns the one server session, the object explorer, the message output pane,
// the commands and every open document.
class Tformppal : public QMainWindow {
  Q_OBJECT
 public:
  // Account passwords go to the keychain when there is one and it answers.
  explicit Tformppal(SettingsStore& settings, SecretVault* keychain = nullptr, QWidget* parent = nullptr);
  ~Tformppal() override;

  TMySQLMonitor MySqlMonitor;
  // Outlives the session, whose connections may run through it.
  TSshTunnel SshTunnel;
  TMyConnection MySqlSession;

  // The current connection runs through the SSH tunnel.
  bool IsSSHTunnel() const { return SshTunnel.IsOpen(); }

  SettingsStore& settings() { return settings_; }
  SecretVault* keychain() const { return keychain_; }
  MainActions& actions() { return *actions_; }
  QMdiArea* mdiArea() const { return mdiArea_; }
  QDockWidget* paneOut() const { return paneOut_; }
  TframeExplorer* explorer() const { return explorer_; }
  const MruList& recentFiles() const { return mru_; }
  bool outputWithStatement() const { return outputWithStatement_; }
  int outputHeight() const { return outputHeight_; }

  // The editor charset, line-end format and encoding the connect dialog chose at the last connect;
  // empty before the first. Editors read and write files with them in place of the options.
  const TEditorFileChoices& editorFileChoices() const { return editorFileChoices_; }

  // Shows the actions a server of this version (its handshake text) supports, hides the others.
  void applyServerVersion(const std::string& versionText);

  // Opens a file as a document, as from the command line.
  void CheckParam(const QString& fileName);
  // Documents register how files of an extension (".sql") open; the others open as text. A
  // document that shows a file names it in its "fileName" property.
  using FileOpener = std::function<QWidget*(const QString& fileName)>;
  void setFileOpener(const QString& extension, FileOpener opener);

  // True when a current database is set or there is no connection; otherwise asks for one and
  // returns false, so the asking action is not carried on in the same click.
  bool currentdb();

  // Shows an error with the session's connection summary.
  void ShowServerError(const QString& text);
  // For errors nobody caught: see unhandledErrorText.
  void showUnhandledError(const std::exception& error);

  // Adds a document window and shows it.
  // Closing the main window asks every document before any goes, through the document's
  // meta-object: a "busy" property (with its notify signal) while work is on the server, which
  // the window stops with the document's invokable Stop() and waits for; then an invokable
  // "bool mayClose()" that asks about unsaved work. One false keeps everything open; otherwise
  // the documents go without a second question.
  void addDocument(QWidget* document);

  // The system asks the program to end (SIGTERM): work on the server is stopped and no question
  // is asked from here on; the caller leaves the event loops.
  void endWithoutQuestions();

  WindowLayout layout() const;
  void applyLayout(const WindowLayout& layout);

 signals:
  // After every connect and disconnect, so documents can follow the connection state.
  void connectionChanged();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private slots:
  void documentBusyChanged();

 private:
  QList<QWidget*> documents() const;
  bool stopBusyDocuments();
  void stopDocument(QWidget* document);
  bool documentsMayClose();
  void FormCreate();
  void createPanes();
  void wireSession();
  void registerHandlers();
  void rebuildRecentMenu();
  QWidget* findOpenDocument(const QString& fileName) const;
  QWidget* openTextEditor(const QString& fileName);

  void connectToggle();
  void askForDatabase();
  void useDatabase(const QString& database);
  void onAfterConnect();
  void onBeforeDisconnect();
  void onSessionError(const ServerError& error);

  SettingsStore& settings_;
  SecretVault* keychain_;
  TLostConnectionHandler lostConnection_;
  MainActions* actions_;
  MonitorRelay* monitorRelay_;
  QMdiArea* mdiArea_;
  QDockWidget* paneOut_;
  QPlainTextEdit* memOutput_;
  QDockWidget* paneSideBar_;
  TframeExplorer* explorer_;
  QMenu* tbmMRU_;
  MruList mru_;
  QHash<QString, FileOpener> openers_;
  bool outputWithStatement_ = false;
  int outputHeight_ = 80;
  TEditorFileChoices editorFileChoices_;
  // A close is asking its questions; a close waits for busy documents to stop.
  bool closing_ = false;
  bool closeWhenIdle_ = false;
  bool ending_ = false;
};

}  // namespace lomarin::ui
