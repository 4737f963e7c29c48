#include "engine/sqleditor/sqleditor_options.h"

#include "engine/app/data_folder.h"
#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"

namespace lomarin {

THsitory OpenHistory(const SettingsStore& settings) { return THsitory(dataFolder(), settings.read(opt::SqlTrace)); }

TMyParams OpenParams() { return TMyParams(dataFolder()); }

void ApplyScriptOptions(TMyScript& script, const SettingsStore& settings) {
  script.Delimiter = settings.read(opt::ScriptDelimiter);
  script.UseOptimization = settings.read(opt::ScriptExecutionOptime);
}

}  // namespace lomarin
