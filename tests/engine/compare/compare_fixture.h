#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/compare/db_comparer.h"
#include "test_server.h"

namespace lomarin::test {

// A copy of the demo database (structure, code and rows) under another name.
void CopyDemo(const std::string& copy);
// A fresh database built by the given statements.
void MakeDatabase(const std::string& database, const std::vector<std::string>& statements);

// Compares two live databases of the test server, each on a connection of its own.
struct LiveCompare {
  LiveCompare(const std::string& source, const std::string& target);
  // Runs the comparison and returns the script.
  const std::string& run();
  // Applies the script on the target; the errors it logged.
  std::vector<std::string> apply();

  std::unique_ptr<TMyConnection> sourceSession, targetSession;
  TMySQLScriptExtract sourceExtract, targetExtract;
  TDBStructure sourceStructure, targetStructure;
  TDBComparer comparer;
  std::vector<std::string> log;
};

// SHOW CREATE of every table, view, routine, trigger and event, DEFINER and AUTO_INCREMENT
// counters taken out, the blanks before a trigger's body as one, one entry per object.
std::vector<std::string> ShowCreateAll(const std::string& database);

// The statements of a script, section comments and blank lines left out.
std::vector<std::string> Statements(const std::string& script);

}  // namespace lomarin::test
