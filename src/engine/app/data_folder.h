#pragma once

#include <filesystem>

namespace lomarin {

// Where the program keeps the files it writes (history, parameters, window layout, logs):
// $LOMARIN_DATA_DIR, else $XDG_DATA_HOME/lomarin, else ~/.local/share/lomarin. Not created here.
std::filesystem::path dataFolder();

}  // namespace lomarin
