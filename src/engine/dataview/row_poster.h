#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "engine/connect/my_connection.h"
#include "engine/dataview/row_writer.h"

namespace lomarin::dataview {

// A row write that the server took but that did not touch exactly one row.
class RowCountError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Columns and unique keys of a table, read with SHOW COLUMNS and SHOW KEYS.
TBaseTableInfo LoadBaseTableInfo(TMyConnection& session, const std::string& database,
                                 const std::string& table);

// The writer for a result on the session: read-only with a reason when the result has no single
// base table, or the table cannot be described, or has no key to identify rows by. With a cache,
// a table described before is not asked for again.
TRowWriter RowWriterFor(TMyConnection& session, const std::vector<TMyField>& fields,
                        std::optional<TBaseTableInfo>* cache = nullptr);

// Runs the writer's statements and checks that each touched exactly one row. Server refusals
// come as ServerError, bad values as std::invalid_argument, wrong row counts as RowCountError.
class TRowPoster {
 public:
  TRowPoster(TMyConnection& session, const TRowWriter& writer) : session_(session), writer_(writer) {}

  // One UPDATE per alias of the table whose columns changed.
  void Update(const TRecord& before, const TRecord& after);
  // Returns the id the server generated, 0 when none.
  uint64_t Insert(const TRecord& values, const std::vector<bool>& given);
  void Delete(const TRecord& before);

 private:
  TMyConnection& session_;
  const TRowWriter& writer_;
};

}  // namespace lomarin::dataview
