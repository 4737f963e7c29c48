#pragma once

namespace lomarin::ui {

class Tformppal;

// The database export and transfer commands of the main window.
void installTransferCommands(Tformppal& window);

}  // namespace lomarin::ui
