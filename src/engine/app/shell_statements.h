#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lomarin {

struct FlushCommand {
  std::string_view action;
  std::string_view statement;
};

// The Dba menu's flush commands, each statement with its trailing blank.
std::span<const FlushCommand> flushCommands();

inline constexpr std::string_view kShowDatabases = "SHOW DATABASES";
inline constexpr const char* kCommitStatement = "COMMIT";
inline constexpr const char* kRollbackStatement = "ROLLBACK";
// Makes a database the session's current one; a back-quote in the name is doubled.
std::string useDatabaseStatement(std::string_view database);

}  // namespace lomarin
