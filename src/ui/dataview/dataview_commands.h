#pragma once

namespace lomarin::ui {

class Tformppal;

// A double-click on a table or view in the object explorer opens its data window.
void installDataviewCommands(Tformppal& window);

}  // namespace lomarin::ui
