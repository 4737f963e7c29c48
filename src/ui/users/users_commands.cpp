#include "ui/users/users_commands.h"

#include "engine/users/user_account.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/users/form_set_password.h"
#include "ui/users/form_user_manager.h"

namespace lomarin::ui {

namespace {

ErrorReporter reporter(Tformppal& window) {
  return [&window](const QString& message) { window.ShowServerError(message); };
}

void openUserManager(Tformppal& window, const QString& userName) {
  TformUserManager dialog(window.MySqlSession, window.settings(), reporter(window), userName, &window);
  if (dialog.exec() == QDialog::Accepted) window.explorer()->refreshDatabase({});
}

// The tree lists user names only: the password is set for the user's first account.
void setSelectedUserPassword(Tformppal& window) {
  const TframeExplorer::Selection selection = window.explorer()->selection();
  if (selection.kind != explorer::NodeKind::User) {
    window.ShowServerError(QObject::tr("Select a user in the object tree."));
    return;
  }
  std::string host;
  try {
    host = users::FirstHostOf(window.MySqlSession, selection.name.toStdString());
  } catch (const ServerError&) {
    return;  // shown by the session's error handling
  }
  TformSetPassword dialog(window.MySqlSession, reporter(window), selection.name, QString::fromStdString(host),
                          &window);
  dialog.exec();
}

}  // namespace

void installUsersCommands(Tformppal& window) {
  MainActions& actions = window.actions();
  actions.setHandler("actaddUser", [&window] { openUserManager(window, {}); });
  actions.setHandler("actChangeCurrentPass", [&window] {
    TformSetPassword dialog(window.MySqlSession, reporter(window), {}, {}, &window);
    dialog.exec();
  });
  actions.setHandler("actSetPasswd", [&window] { setSelectedUserPassword(window); });
  QObject::connect(window.explorer(), &TframeExplorer::objectActivated, &window,
                   [&window](explorer::NodeKind kind, const QString&, const QString& name) {
                     if (kind == explorer::NodeKind::User) openUserManager(window, name);
                   });
}

}  // namespace lomarin::ui
