#pragma once

#include <string>

#include "engine/connect/my_connection.h"

namespace lomarin {

// The session settings a dump reads under, put back when it ends whatever happens: UTC (the zone
// the script restores values in), an empty sql_mode (so no ANSI_QUOTES in the create texts and
// backslash escapes in the values) and, when given, the dumped database as the current one, so
// the server leaves that database's name out of the texts it writes.
class TDumpSession {
 public:
  TDumpSession(TMyConnection& connection, const std::string& database);
  ~TDumpSession();
  TDumpSession(const TDumpSession&) = delete;
  TDumpSession& operator=(const TDumpSession&) = delete;

  // While on, texts come back in the bytes the server holds them in: the code of a routine,
  // trigger or event in the character set it was created with.
  void rawTexts(bool on);

 private:
  void restore();

  TMyConnection& connection_;
  std::string database_;
  std::string savedDatabase_;
  std::string savedTimeZone_;
  std::string savedSqlMode_;
  std::string savedResults_;  // "NULL" when unset
  bool changed_ = false;
};

}  // namespace lomarin
