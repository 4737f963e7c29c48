#include "ui/app/startup.h"

#include <QCommandLineParser>
#include <QDir>
#include <cstdio>

#include "engine/app/settings_store.h"
#include "engine/app/shell_text.h"
#include "engine/connect/accounts.h"
#include "engine/connect/accounts_session.h"
#include "keychain/keychain_vault.h"
#include "ui/app/exception_dialog.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/instance_link.h"
#include "ui/app/lomarin_application.h"
#include "ui/app/quit_on_signal.h"
#include "ui/app/window_layout.h"

namespace lomarin::ui {
namespace {

void connectAccount(Tformppal& window, SettingsStore& settings, const QString& name) {
  const std::optional<TAccount> account = TAccountStore(settings, window.keychain()).load(name.toStdString());
  if (!account) {
    window.ShowServerError(QObject::tr("There is no account named \"%1\"").arg(name));
    return;
  }
  const std::string filter = applyAccountToSession(*account, window.MySqlSession.Settings);
  window.MySqlSession.Settings.AutoCommit = settings.read(opt::AutoCommit);
  window.explorer()->setDatabaseFilter(QString::fromStdString(filter));
  try {
    window.MySqlSession.Connect();
  } catch (const ServerError&) {
    // The session's error event has shown it.
  }
}

// A name typed in a terminal is relative to the folder it was typed in, which the running instance
// does not share.
QString fileArgument(const QCommandLineParser& parser) {
  const QString file = parser.positionalArguments().value(0);
  return file.isEmpty() ? file : QDir::cleanPath(QDir::current().absoluteFilePath(file));
}

}  // namespace

int runLomarin(int argc, char** argv, const std::vector<FeatureInstaller>& features) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QString::fromUtf8(kProductTitle.data(), kProductTitle.size()));
  const QCommandLineOption helpOption = parser.addHelpOption();
  const QCommandLineOption connectOption("connect", QObject::tr("Connect with the stored account ACCOUNT."),
                                         "ACCOUNT");
  parser.addOption(connectOption);
  parser.addPositionalArgument("file", QObject::tr("A file to open."), "[file]");
  const QString socketFolder = instance::socketFolder();
  {
    // The hand-off needs no window system: a process that only passes a file on creates nothing else.
    // Qt's own options (-platform ...) are only known once the GUI application has taken them.
    QCoreApplication handOff(argc, argv);
    if (parser.parse(handOff.arguments()) && parser.isSet(helpOption)) parser.showHelp();
    const QString file = fileArgument(parser);
    if (!file.isEmpty()) {
      // One time-out for the whole hand-off: a second launch never waits longer on another process.
      const QDeadlineTimer deadline(instance::kFindTimeoutMs);
      if (auto running = findRunningInstance(socketFolder, int(deadline.remainingTime()))) {
        switch (running->openFile(file, deadline)) {
          case RunningInstance::HandOff::Opened:
            return 0;
          case RunningInstance::HandOff::NotConfirmed:
            std::fprintf(
                stderr,
                "lomarin: the running Lomarin (process %lld) was handed %s but has not opened it within "
                "%d s: it is waiting for an answer in its window and opens the file once that is given.\n",
                running->pid(), qPrintable(file), instance::kFindTimeoutMs / 1000);
            return 2;
          case RunningInstance::HandOff::Gone:
            // It ended during the hand-off: this process becomes the running instance.
            break;
        }
      }
    }
  }

  LomarinApplication app(argc, argv);
  parser.process(app);
  const QString file = fileArgument(parser);
  std::unique_ptr<SettingsStore> settings;
  try {
    settings = std::make_unique<SettingsStore>(SettingsStore::defaultFile());
  } catch (const SettingsError& error) {
    ShowServerError(nullptr, QString::fromUtf8(error.what()), QString());
    return 1;
  }

  KeychainVault keychain;
  Tformppal window(*settings, &keychain);
  for (const auto& install : features) install(window);
  app.setErrorHandler([&window](const std::exception& error) { window.showUnhandledError(error); });

  QString problem;
  const QString layoutFile = windowLayoutFile();
  const auto layout = loadWindowLayout(layoutFile, &problem);
  if (layout)
    window.applyLayout(*layout);
  else if (!problem.isEmpty())
    window.ShowServerError(problem);

  // Whatever is on screen, a question included: the program ends, saving what needs no answer.
  // Installed before the listener: from then on others see this process running and may signal it.
  bool ending = false;
  QuitOnSignal quitOnSignal([&window, &ending] {
    ending = true;
    window.endWithoutQuestions();
    QCoreApplication::exit(0);
  });
  InstanceServer server;
  QObject::connect(&server, &InstanceServer::openFileRequested, &window, [&window](const QString& name) {
    if (window.isMinimized()) window.showNormal();
    window.show();
    window.raise();
    window.activateWindow();
    window.CheckParam(name);
  });
  if (!server.listen(socketFolder, &problem))
    std::fprintf(stderr, "lomarin: no single-instance hand-off: %s\n", qPrintable(problem));

  // The first start fills the screen; later ones restore the geometry the window was left with.
  if (!layout || !layout->geometry.isValid()) window.setWindowState(Qt::WindowMaximized);
  window.show();
  if (parser.isSet(connectOption)) connectAccount(window, *settings, parser.value(connectOption));
  if (!file.isEmpty()) window.CheckParam(file);

  // A signal during start-up ended the event loops before this one began.
  const int status = ending ? 0 : app.exec();
  app.setErrorHandler({});
  if (!saveWindowLayout(window.layout(), layoutFile, &problem))
    std::fprintf(stderr, "lomarin: the window layout was not saved: %s\n", qPrintable(problem));
  return status;
}

}  // namespace lomarin::ui
