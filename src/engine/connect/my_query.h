#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_field.h"

namespace lomarin {

// A statement and its result sets on a session. Rows are read from the server as they are asked
// for; with FetchAll the whole first result is read by Open. A bidirectional query keeps the rows
// it has read (RecordCount, MoveTo); a UniDirectional one keeps only the current row, so a result
// of any size streams through in constant memory.
//
// While a query still has unread rows the connection is busy with it. Sending another statement
// on the session first reads the remaining rows of a bidirectional query into its buffer and
// ends a UniDirectional one (its Next() then throws); further result sets of the request are
// dropped.
class TMyQuery {
 public:
  explicit TMyQuery(TMyConnection& connection);
  ~TMyQuery();
  TMyQuery(const TMyQuery&) = delete;
  TMyQuery& operator=(const TMyQuery&) = delete;

  std::string SQL;
  // What the monitor shows instead of SQL when not empty: the statement with a password masked.
  std::string TracedSQL;
  bool UniDirectional = false;
  bool FetchAll = true;
  // The server's text for FLOAT has six significant digits. With this set, a SELECT whose result
  // has a FLOAT column runs as a prepared statement and such a cell holds the shortest text that
  // reloads as the stored value; a statement the server cannot prepare runs as text.
  bool ExactFloats = false;

  // Sends SQL and reads the first result's columns. A statement without a result set gives no
  // fields and no rows.
  void Open();
  // Sends SQL as a command: every result is read and dropped.
  void Execute();
  void Close();
  bool Active() const;

  const std::vector<TMyField>& Fields() const;
  // -1 when there is no column of that name (compared case-insensitively).
  int FieldIndex(std::string_view name) const;

  // Moves to the next row (the first one after Open); false past the last.
  bool Next();
  // Bidirectional only: moves to row recNo (0-based), reading rows as needed; false past the end.
  bool MoveTo(size_t recNo);
  size_t RecNo() const;
  // Rows read so far; all of them once Eof() is true.
  size_t RecordCount() const;
  // Every row of the current result has been read from the server.
  bool Eof() const;
  void FetchRest();

  bool IsNull(size_t column) const;
  std::string_view Value(size_t column) const;

  // Moves to the next result of a multi-statement request; false when there is none.
  bool NextResult();
  // Further results of the request are unread.
  bool MoreResults() const;
  // Takes over the further results of source's request and moves to the next one, so source keeps
  // the rows it has read; false when there is none. Source's current result must be read to its
  // end and both must be on the same session.
  bool TakeNextResult(TMyQuery& source);

  uint64_t RowsAffected() const;
  uint64_t LastInsertId() const;
  unsigned WarningCount() const;

 private:
  friend struct TMyConnection::Impl;
  void releaseConnection();

  struct Impl;
  std::unique_ptr<Impl> d;
};

}  // namespace lomarin
