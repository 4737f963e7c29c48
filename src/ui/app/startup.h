#pragma once

namespace lomarin::ui {

// The program: hands a file argument to a running instance and ends, or becomes the running
// instance with its main window. Returns the process exit code.
int runLomarin(int argc, char** argv);

}  // namespace lomarin::ui
