#pragma once

namespace lomarin::ui {

class Tformppal;

// The table, column, database, index and constraint commands of the main window and the tree.
void installDesignersCommands(Tformppal& window);

}  // namespace lomarin::ui
