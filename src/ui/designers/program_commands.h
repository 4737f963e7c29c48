#pragma once

namespace lomarin::ui {

class Tformppal;

// The trigger, view, function, event and routine commands of the main window, and what a
// double-click on such an object in the tree opens.
void installProgramCommands(Tformppal& window);

}  // namespace lomarin::ui
