#pragma once

#include <functional>
#include <string>

#include "engine/compare/cmp_types.h"
#include "engine/compare/db_structure.h"
#include "engine/connect/my_connection.h"

namespace lomarin {

// Reads the objects a script defines into a structure. A live database is first written out as a
// script by the dump engine, so both kinds of side are read the same way. Statements that say
// nothing about the structure are skipped, those it does not model are logged; neither is fatal.
class TMySQLScriptExtract {
 public:
  std::string Name = "MySQLScriptExtract";
  TExtractFromType ExtractFrom = TExtractFromType::efScript;
  // The script to read; after a live extraction, the dump that was read.
  std::string Script;
  // A live side: the database on this connection.
  TMyConnection* Connection = nullptr;
  std::string Database;
  // Kinds the dump of a live side brings along; events always come.
  TCmpObjSetType Objects;
  bool CaseSensitiveIdentifiers = true;

  std::function<void(const std::string& line)> OnLogNextLine;
  std::function<void(const std::string& message)> OnErrorMessage;
  std::function<void(int percent)> OnProgressUpdate;
  // Read between statements; true ends the run with a CompareError.
  std::function<bool()> StopRequested;

  void Extract(TDBStructure& into);

 private:
  void dumpDatabase();
  void appendSequences();
  void log(const std::string& line) const;
};

}  // namespace lomarin
