#pragma once

#include <functional>
#include <string>

#include "engine/compare/cmp_types.h"
#include "engine/compare/db_structure.h"

namespace lomarin {

struct TSyncScriptSettings {
  TCmpObjSetType Objects;
  bool CaseSensitive = true;
  TMySQLServerOptions Server;
  bool ShowFullLog = false;
  std::function<void(const std::string& line)> Log;
};

struct TSyncScript {
  std::string Text;  // CR LF line ends
  int Statements = 0;
};

// The script that turns target into master, in the comparer's fixed sections.
TSyncScript WriteSyncScript(const TDBStructure& master, const TDBStructure& target,
                            const TSyncScriptSettings& settings);

}  // namespace lomarin
