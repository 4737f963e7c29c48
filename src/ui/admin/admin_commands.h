#pragma once

namespace lomarin::ui {

class Tformppal;

// "Optimizing tables", "Database status", "Table status" and "Session monitor" of the main
// window.
void installAdminCommands(Tformppal& window);

}  // namespace lomarin::ui
