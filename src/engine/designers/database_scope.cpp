#include "engine/designers/database_scope.h"

#include "engine/app/shell_statements.h"
#include "engine/connect/my_query.h"

namespace lomarin::designers {

TDatabaseScope::TDatabaseScope(TMyConnection& session, const std::string& database)
    : session_(session), saved_(session.CurrentDatabase()) {
  if (database.empty() || database == saved_) return;
  TMyQuery use(session_);
  use.SQL = useDatabaseStatement(database);
  use.Execute();
  changed_ = !saved_.empty();
}

TDatabaseScope::~TDatabaseScope() {
  if (changed_ && session_.Connected()) ExecSQLText(session_, useDatabaseStatement(saved_));
}

}  // namespace lomarin::designers
