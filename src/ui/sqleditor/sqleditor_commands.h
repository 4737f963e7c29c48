#pragma once

namespace lomarin::ui {

class Tformppal;

// The SQL editor in the main window: "SQL editor" opens an empty one, ".sql" files open in one,
// an editor brought to the front takes the current options and connection state, and "SQL history"
// copies a recorded statement into the active editor or onto the clipboard.
void installSqlEditorCommands(Tformppal& window);

}  // namespace lomarin::ui
