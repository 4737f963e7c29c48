#pragma once

#include <string>

#include "engine/connect/my_connection.h"

namespace lomarin::designers {

// Makes a database the session's current one while it lives, for statements whose text names no
// database, and then puts the earlier one back. An empty database changes nothing; a session that
// had none keeps the new one, since the server cannot leave a database. Throws ServerError when
// the database cannot be made current.
class TDatabaseScope {
 public:
  TDatabaseScope(TMyConnection& session, const std::string& database);
  ~TDatabaseScope();
  TDatabaseScope(const TDatabaseScope&) = delete;
  TDatabaseScope& operator=(const TDatabaseScope&) = delete;

 private:
  TMyConnection& session_;
  std::string saved_;
  bool changed_ = false;
};

}  // namespace lomarin::designers
