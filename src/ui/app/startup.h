#pragma once

#include <functional>
#include <vector>

namespace lomarin::ui {

class Tformppal;

// A document subsystem adds its commands and file types to the main window through one of these;
// the shell itself knows no document.
using FeatureInstaller = std::function<void(Tformppal& window)>;

// The program: hands a file argument to a running instance and ends, or becomes the running
// instance with its main window. Returns the process exit code.
int runLomarin(int argc, char** argv, const std::vector<FeatureInstaller>& features = {});

}  // namespace lomarin::ui
