#pragma once

namespace lomarin::ui {

class Tformppal;

// The new-user and change-password commands of the main window and the tree; a double-click on
// a user opens it in the user manager.
void installUsersCommands(Tformppal& window);

}  // namespace lomarin::ui
