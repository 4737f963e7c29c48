#include "engine/app/shell_statements.h"

namespace lomarin {
namespace {

constexpr FlushCommand kFlush[] = {
    {"actFlushHost", "FLUSH HOSTS "},   {"actFlushLogs", "FLUSH LOGS "},
    {"actFlushPrivs", "FLUSH PRIVILEGES "}, {"actFlushTables", "FLUSH TABLES "},
    {"actFlushTablesRedo", "FLUSH TABLES WITH READ LOCK "}, {"actFlushStatus", "FLUSH STATUS "},
};

}  // namespace

std::span<const FlushCommand> flushCommands() { return kFlush; }

std::string useDatabaseStatement(std::string_view database) {
  std::string statement = "USE `";
  for (char c : database) {
    if (c == '`') statement += '`';
    statement += c;
  }
  statement += '`';
  return statement;
}

}  // namespace lomarin
