#include "engine/transfer/dump_session.h"

#include "engine/connect/my_query.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

void run(TMyConnection& connection, const std::string& sql) {
  TMyQuery query(connection);
  query.SQL = sql;
  query.Execute();
}

}  // namespace

TDumpSession::TDumpSession(TMyConnection& connection, const std::string& database)
    : connection_(connection), database_(database) {
  {
    TMyQuery query(connection_);
    query.SQL = "SELECT @@session.time_zone, @@session.sql_mode, @@session.character_set_results, DATABASE()";
    query.Open();
    query.Next();
    savedTimeZone_ = query.Value(0);
    savedSqlMode_ = query.Value(1);
    savedResults_ = query.IsNull(2) ? "NULL" : std::string(query.Value(2));
    savedDatabase_ = query.IsNull(3) ? "" : std::string(query.Value(3));
  }
  run(connection_, "SET time_zone = '+00:00', sql_mode = ''");
  changed_ = true;
  try {
    if (!database_.empty() && database_ != savedDatabase_)
      run(connection_, "USE " + ScriptName(database_, true));
  } catch (...) {
    restore();
    throw;
  }
}

TDumpSession::~TDumpSession() { restore(); }

void TDumpSession::restore() {
  if (!changed_ || !connection_.Connected()) return;
  changed_ = false;
  ExecSQLText(connection_, "SET time_zone = " + QuotedString(connection_, savedTimeZone_) +
                               ", sql_mode = " + QuotedString(connection_, savedSqlMode_) +
                               ", character_set_results = " + savedResults_);
  // A session that had no database keeps the dumped one: the server cannot leave a database.
  if (!database_.empty() && !savedDatabase_.empty() && database_ != savedDatabase_)
    ExecSQLText(connection_, "USE " + ScriptName(savedDatabase_, true));
}

void TDumpSession::rawTexts(bool on) {
  run(connection_, "SET character_set_results = " + (on ? std::string("binary") : savedResults_));
}

}  // namespace lomarin
