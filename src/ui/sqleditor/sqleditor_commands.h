#pragma once

namespace lomarin::ui {

class Tformppal;

// The SQL editor in the main window: "SQL editor" opens an empty one, ".sql" files open in one,
// and an editor brought to the front takes the current options and connection state.
void installSqlEditorCommands(Tformppal& window);

}  // namespace lomarin::ui
