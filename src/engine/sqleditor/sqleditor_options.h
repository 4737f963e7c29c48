#pragma once

#include "engine/sqleditor/my_script.h"
#include "engine/sqleditor/query_params.h"
#include "engine/sqleditor/sql_history.h"

namespace lomarin {

class SettingsStore;

// The history as the main window keeps it: in the data folder, recording only while the
// "SQL Trace" option is on.
THsitory OpenHistory(const SettingsStore& settings);
// The parameter store in the data folder.
TMyParams OpenParams();
// An editor's script runner starts with "Script Delimiter" and "Script Execution Optime ".
void ApplyScriptOptions(TMyScript& script, const SettingsStore& settings);

}  // namespace lomarin
