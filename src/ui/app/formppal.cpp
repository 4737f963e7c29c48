#include "ui/app/formppal.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QToolBar>
#include <QTreeWidget>

#include "engine/app/action_table.h"
#include "engine/app/settings_store.h"
#include "engine/app/shell_statements.h"
#include "engine/app/shell_text.h"
#include "engine/connect/accounts.h"
#include "engine/connect/server_version.h"
#include "engine/connect/ssh_key_store.h"
#include "ui/app/action_icons.h"
#include "ui/app/editor_ex.h"
#include "ui/app/exception_dialog.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/main_actions.h"
#include "ui/app/monitor_relay.h"
#include "ui/app/options_dialog.h"
#include "ui/app/select_database.h"
#include "ui/app/transaction_commands.h"
#include "ui/app/window_layout.h"
#include "ui/connect/form_connect.h"
#include "ui/connect/form_key_manager.h"
#include "ui/connect/lost_connection_prompt.h"

namespace lomarin::ui {
namespace {

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The wait cursor for the length of one step, however the step ends.
class WaitCursor {
 public:
  WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

constexpr int kSideBarWidth = 260;

QStringList toolbarNameList() {
  QStringList names;
  for (std::string_view name : toolbarNames()) names << qs(name);
  return names;
}

}  // namespace

Tformppal::Tformppal(SettingsStore& settings, SecretVault* keychain, QWidget* parent)
    : QMainWindow(parent),
      settings_(settings),
      keychain_(keychain),
      lostConnection_([this] { return askReestablishLostConnection(this); }) {
  setObjectName("Tformppal");
  mdiArea_ = new QMdiArea(this);
  mdiArea_->setObjectName("mdiArea");
  mdiArea_->setViewMode(QMdiArea::TabbedView);
  mdiArea_->setTabsClosable(true);
  setCentralWidget(mdiArea_);
  new ActionIconGiver(this);
  actions_ = new MainActions(*this);
  createPanes();
  wireSession();
  registerHandlers();
  new TransactionCommands(*this);
  FormCreate();
  resize(1100, 720);
}

Tformppal::~Tformppal() {
  // Documents and the tree may still hold queries on the session, and the relay listens to the
  // monitor: all of them go before the session and the monitor do. Documents are not asked again:
  // closing the window asked them.
  qDeleteAll(mdiArea_->subWindowList());
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  MySqlSession.Events = {};
  if (MySqlSession.Connected()) MySqlSession.Disconnect();
  delete paneSideBar_;
  delete monitorRelay_;
}

void Tformppal::createPanes() {
  paneSideBar_ = new QDockWidget(tr("Object navigator"), this);
  paneSideBar_->setObjectName("paneSideBar");
  explorer_ = new TframeExplorer(MySqlSession, paneSideBar_);
  paneSideBar_->setWidget(explorer_);
  connect(explorer_, &TframeExplorer::databaseActivated, this, &Tformppal::useDatabase);
  explorer_->tree()->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(explorer_->tree(), &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    actions_->menu("Nav")->popup(explorer_->tree()->viewport()->mapToGlobal(at));
  });
  addDockWidget(Qt::LeftDockWidgetArea, paneSideBar_);
  resizeDocks({paneSideBar_}, {kSideBarWidth}, Qt::Horizontal);

  paneOut_ = new QDockWidget(tr("Message output"), this);
  paneOut_->setObjectName("paneOut");
  memOutput_ = new QPlainTextEdit(paneOut_);
  memOutput_->setObjectName("memOutput");
  memOutput_->setReadOnly(true);
  memOutput_->setMaximumBlockCount(5000);
  memOutput_->setFont(QFont("Monospace"));
  paneOut_->setWidget(memOutput_);
  addDockWidget(Qt::BottomDockWidgetArea, paneOut_);

  monitorRelay_ = new MonitorRelay(MySqlMonitor, this);
  connect(monitorRelay_, &MonitorRelay::lineTraced, memOutput_, [this](const QString& line) {
    memOutput_->appendPlainText(line);
    memOutput_->verticalScrollBar()->setValue(memOutput_->verticalScrollBar()->maximum());
  });

  tbmMRU_ = new QMenu(this);
  tbmMRU_->setObjectName("tbmMRU");
  actions_->action("actReopen")->setMenu(tbmMRU_);
}

void Tformppal::wireSession() {
  MySqlSession.setMonitor(&MySqlMonitor);
  auto& events = MySqlSession.Events;
  events.BeforeConnect = [this] {
    // Silent reconnects happen inside the session without connect events; a connect the user
    // asked for starts afresh.
    lostConnection_.reconnected();
    MySqlMonitor.setActive(true);
  };
  events.AfterConnect = [this] { onAfterConnect(); };
  events.BeforeDisconnect = [this] { onBeforeDisconnect(); };
  events.AfterDisconnect = [this] {
    SshTunnel.Close();
    MySqlSession.Settings.TunnelPort = 0;
    emit connectionChanged();
  };
  events.OnError = [this](const ServerError& error) { onSessionError(error); };
  events.OnConnectionLost = [this] { return lostConnection_.onConnectionLost(); };
}

void Tformppal::registerHandlers() {
  MainActions& a = *actions_;
  a.setHandler("actExit", [this] { close(); });
  a.setHandler("actOpen", [this] {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open"));
    if (!file.isEmpty()) CheckParam(file);
  });
  a.setHandler("actReopen", [this] { tbmMRU_->popup(QCursor::pos()); });
  a.setHandler("actConect", [this] { connectToggle(); });
  a.setHandler("actRefresh", [this] { explorer_->refresh(); });
  a.setHandler("actDisconect", [this] {
    if (MySqlSession.Connected()) connectToggle();
  });
  a.setHandler("actObjectNavigator", [this] { paneSideBar_->setVisible(!paneSideBar_->isVisible()); });
  a.setHandler("actOutPut", [this] { paneOut_->setVisible(!paneOut_->isVisible()); });
  a.setHandler("actClear", [this] { memOutput_->clear(); });
  a.setHandler("actchangedatabase", [this] { askForDatabase(); });
  for (const FlushCommand& flush : flushCommands()) {
    a.setHandler(flush.action, [this, statement = flush.statement] {
      WaitCursor wait;
      // A failure reaches the user through the session's error event.
      ExecSQLText(MySqlSession, statement);
    });
  }
  a.setHandler("actKeyManager", [this] {
    TformKeyManager dialog(TSshKeyStore(SshKeyStoreFolder(settings_)), this);
    dialog.exec();
  });
  a.setHandler("actOptions", [this] {
    TforOptions dialog(settings_, this, keychain_);
    dialog.exec();
  });
}

void Tformppal::FormCreate() {
  setWindowTitle(qs(startCaption()));
  const int skinType = qs(settings_.read(opt::SkinType)).toInt();
  // The skin is the look of the toolbar buttons: the caption beside the icon, the icon alone with
  // the caption as its tooltip (the default), or the caption under the icon.
  const Qt::ToolButtonStyle styles[] = {Qt::ToolButtonTextBesideIcon, Qt::ToolButtonIconOnly,
                                        Qt::ToolButtonTextUnderIcon};
  const auto style = skinType >= 0 && skinType < 3 ? styles[skinType] : Qt::ToolButtonIconOnly;
  for (std::string_view name : toolbarNames()) actions_->toolbar(name)->setToolButtonStyle(style);
  outputWithStatement_ = settings_.read(opt::OutputWithStatment);
  outputHeight_ = outputPaneHeight(settings_.read(opt::OutputSize));
  resizeDocks({paneOut_}, {outputHeight_}, Qt::Vertical);
  TAccountStore accounts(settings_, keychain_);
  accounts.migrateSshPasswords();
  // Passwords a keychain refused earlier, or stored before it was there, go to it now.
  accounts.moveSecrets();
  actions_->setConnected(false);
}

void Tformppal::addDocument(QWidget* document) {
  QMdiSubWindow* window = mdiArea_->addSubWindow(document);
  window->setAttribute(Qt::WA_DeleteOnClose);
  // Documents are tabs: each fills the area.
  window->showMaximized();
  mdiArea_->setActiveSubWindow(window);
}

void Tformppal::setFileOpener(const QString& extension, FileOpener opener) {
  openers_.insert(extension.toLower(), std::move(opener));
}

void Tformppal::CheckParam(const QString& fileName) {
  const QFileInfo info(fileName);
  if (!info.exists()) {
    ShowServerError(qs(kUnableToFind) + fileName);
    return;
  }
  // A bare name is ignored on purpose: only a full path names a file to open.
  if (!info.isAbsolute()) return;
  WaitCursor wait;
  if (QWidget* open = findOpenDocument(fileName)) {
    auto* window = qobject_cast<QMdiSubWindow*>(open->parentWidget());
    window->showNormal();
    mdiArea_->setActiveSubWindow(window);
    return;
  }
  const QString extension = "." + info.suffix().toLower();
  const FileOpener opener = openers_.value(extension);
  if (!(opener ? opener(fileName) : openTextEditor(fileName))) return;
  mru_.add(fileName.toStdString());
  rebuildRecentMenu();
}

QWidget* Tformppal::findOpenDocument(const QString& fileName) const {
  // Two names of one file (a link, "..") are one document; names that differ in case are two files.
  const QString wanted = QFileInfo(fileName).canonicalFilePath();
  if (wanted.isEmpty()) return nullptr;
  for (QMdiSubWindow* window : mdiArea_->subWindowList()) {
    const QString open = window->widget()->property("fileName").toString();
    if (!open.isEmpty() && QFileInfo(open).canonicalFilePath() == wanted) return window->widget();
  }
  return nullptr;
}

QWidget* Tformppal::openTextEditor(const QString& fileName) {
  auto* editor = new TformEditorEX(settings_, this);
  if (!editor->loadFile(fileName)) {
    delete editor;
    ShowServerError(tr("Cannot read %1").arg(fileName));
    return nullptr;
  }
  addDocument(editor);
  return editor;
}

void Tformppal::rebuildRecentMenu() {
  tbmMRU_->clear();
  int index = 0;
  for (const std::string& file : mru_.items()) {
    QAction* entry = tbmMRU_->addAction(QString::fromStdString(file));
    entry->setObjectName(QString("MRU%1").arg(++index));
    connect(entry, &QAction::triggered, this, [this, name = entry->text()] { CheckParam(name); });
  }
}

bool Tformppal::currentdb() {
  if (!MySqlSession.Connected() || !MySqlSession.CurrentDatabase().empty()) return true;
  askForDatabase();
  return false;
}

void Tformppal::askForDatabase() {
  TformSelectDatabase dialog(MySqlSession, this);
  if (dialog.exec() == QDialog::Accepted && !dialog.selectedDatabase().isEmpty())
    useDatabase(dialog.selectedDatabase());
}

void Tformppal::useDatabase(const QString& database) {
  // A failure reaches the user through the session's error event.
  if (ExecSQLText(MySqlSession, useDatabaseStatement(database.toStdString())))
    explorer_->markCurrentDatabase(database);
}

void Tformppal::ShowServerError(const QString& text) {
  ui::ShowServerError(this, text, QString::fromStdString(MySqlSession.GetMySQLinfo()));
}

void Tformppal::showUnhandledError(const std::exception& error) {
  // The session's error event has shown its own errors already.
  if (const auto* server = dynamic_cast<const ServerError*>(&error)) {
    const auto& last = MySqlSession.LastError();
    if (last && last->number() == server->number() && last->message() == server->message()) return;
  }
  ShowServerError(QString::fromStdString(unhandledErrorText(error.what())));
}

void Tformppal::onSessionError(const ServerError& error) {
  std::string text = sessionErrorText(error.number(), error.message());
  // The client library only saw the loopback port close; the tunnel knows why.
  if (const std::string reason = SshTunnel.LastError(); SshTunnel.IsOpen() && !reason.empty())
    text += "\n" + reason;
  ShowServerError(QString::fromStdString(text));
}

void Tformppal::connectToggle() {
  if (MySqlSession.Connected()) {
    MySqlSession.Disconnect();
    setWindowTitle(qs(kProductTitle));
    return;
  }
  TformConnect dialog(settings_, MySqlSession, SshTunnel, this, keychain_);
  connect(&dialog, &TformConnect::aboutToConnect, explorer_, &TframeExplorer::setDatabaseFilter);
  if (dialog.exec() != QDialog::Accepted) return;
  const TAccount& account = dialog.connectedAccount();
  editorFileChoices_ = {account.FontCharset, account.FontFormat, account.FontEncoding};
}

void Tformppal::onAfterConnect() {
  WaitCursor wait;
  if (!MySqlSession.Connected()) {
    actions_->setConnected(false);
    emit connectionChanged();
    return;
  }
  actions_->setConnected(true);
  const TMySessionSettings& s = MySqlSession.Settings;
  setWindowTitle(qs(connectedCaption(s.Username, s.Database, s.Server)));
  explorer_->buildRoot();
  explorer_->markCurrentDatabase(qs(s.Database));
  QCoreApplication::processEvents();
  if (settings_.read(opt::SavePassWord)) settings_.write(opt::DefaultPassword, s.Password);
  if (settings_.read(opt::DefaultHostOption)) settings_.write(opt::DefaultDatabaseHost, s.Server);
  paneSideBar_->show();
  applyServerVersion(MySqlSession.ServerVersion());
  emit connectionChanged();
}

void Tformppal::applyServerVersion(const std::string& versionText) {
  actions_->applyServerVersion(ServerMajorVersion(versionText), ServerVersionNumber(versionText));
}

void Tformppal::onBeforeDisconnect() {
  WaitCursor wait;
  actions_->setConnected(false);
  MySqlMonitor.setActive(false);
  explorer_->clearObjects();
  QCoreApplication::processEvents();
  paneSideBar_->show();
}

WindowLayout Tformppal::layout() const {
  WindowLayout layout;
  layout.geometry = normalGeometry();
  layout.maximized = isMaximized();
  layout.sideBarWidth = paneSideBar_->width();
  layout.mruList = QString::fromStdString(mru_.toText());
  layout.toolbars = toolbarPlaces(*this, toolbarNameList());
  return layout;
}

void Tformppal::applyLayout(const WindowLayout& layout) {
  if (layout.geometry.isValid()) setGeometry(layout.geometry);
  if (layout.maximized) setWindowState(windowState() | Qt::WindowMaximized);
  if (layout.sideBarWidth > 0) resizeDocks({paneSideBar_}, {layout.sideBarWidth}, Qt::Horizontal);
  mru_ = MruList::fromText(layout.mruList.toStdString());
  rebuildRecentMenu();
  restoreToolbarPlaces(*this, toolbarNameList(), layout.toolbars);
}

void Tformppal::endWithoutQuestions() {
  ending_ = true;
  for (QWidget* document : documents())
    if (document->property("busy").toBool()) stopDocument(document);
}

void Tformppal::closeEvent(QCloseEvent* event) {
  // Documents go with the window; a run still on the stack ends first.
  if (ending_) return event->accept();
  event->ignore();
  // A question of this close is on screen and the request came again.
  if (closing_) return;
  const QScopedValueRollback asking(closing_, true);
  if (stopBusyDocuments() || !documentsMayClose()) return;
  // Each has been asked: none may ask again once the window is gone.
  qDeleteAll(mdiArea_->subWindowList());
  if (MySqlSession.Connected()) {
    MySqlSession.Disconnect();
    MySqlMonitor.setActive(false);
  }
  event->accept();
}

QList<QWidget*> Tformppal::documents() const {
  QList<QWidget*> documents;
  for (QMdiSubWindow* window : mdiArea_->subWindowList())
    if (window->widget()) documents << window->widget();
  return documents;
}

// True when some document had work on the server: it is stopped, and the close is made again
// once every document is idle.
bool Tformppal::stopBusyDocuments() {
  bool busy = false;
  for (QWidget* document : documents()) {
    const QMetaObject* type = document->metaObject();
    const QMetaProperty property = type->property(type->indexOfProperty("busy"));
    if (!property.isValid() || !property.read(document).toBool()) continue;
    busy = true;
    closeWhenIdle_ = true;
    const QMetaMethod idle = metaObject()->method(metaObject()->indexOfSlot("documentBusyChanged()"));
    // Queued: the document finishes its run before the window closes it.
    connect(document, property.notifySignal(), this, idle,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
    stopDocument(document);
  }
  return busy;
}

void Tformppal::stopDocument(QWidget* document) {
  if (document->metaObject()->indexOfMethod("Stop()") >= 0)
    QMetaObject::invokeMethod(document, "Stop", Qt::DirectConnection);
}

void Tformppal::documentBusyChanged() {
  if (!closeWhenIdle_) return;
  for (QWidget* document : documents())
    if (document->property("busy").toBool()) return;
  closeWhenIdle_ = false;
  close();
}

// Each document in front while it asks, so the user sees which one it is.
bool Tformppal::documentsMayClose() {
  for (QMdiSubWindow* window : mdiArea_->subWindowList()) {
    QWidget* document = window->widget();
    if (!document || document->metaObject()->indexOfMethod("mayClose()") < 0) continue;
    mdiArea_->setActiveSubWindow(window);
    bool mayClose = true;
    QMetaObject::invokeMethod(document, "mayClose", Qt::DirectConnection, Q_RETURN_ARG(bool, mayClose));
    if (!mayClose) return false;
  }
  return true;
}

}  // namespace lomarin::ui
