#pragma once

namespace lomarin::ui {

class Tformppal;

// "Database data synchronization" of the main window.
void installDataSyncCommands(Tformppal& window);

}  // namespace lomarin::ui
