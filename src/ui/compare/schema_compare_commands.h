#pragma once

namespace lomarin::ui {

class Tformppal;

// "Database structure synchronization" of the main window opens the structure synchronisation
// wizard.
void installSchemaCompareCommands(Tformppal& window);

}  // namespace lomarin::ui
