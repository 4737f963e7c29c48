#pragma once
// Private to the connect subsystem: sees <mysql.h>.

#include <mysql.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/connect/my_field.h"
#include "engine/connect/server_error.h"

namespace lomarin {

// A statement run as a prepared statement and read row by row like a text-protocol result: every
// cell holds the text the server would have sent, except FLOAT. The server's text for FLOAT has
// six significant digits; here it is the shortest text that reloads as the stored value.
class TBinaryResult {
 public:
  // The statement prepared on mysql when the server can prepare it and its result has a FLOAT
  // column; null otherwise. Nothing has run yet.
  static std::unique_ptr<TBinaryResult> Prepare(MYSQL* mysql, std::string_view sql);
  ~TBinaryResult();
  TBinaryResult(const TBinaryResult&) = delete;
  TBinaryResult& operator=(const TBinaryResult&) = delete;

  // Runs the statement; its rows are then read with Fetch. Throws ServerError.
  void Execute();
  const std::vector<TMyField>& Fields() const { return fields_; }
  // Reads the next row into Row and Lengths; false past the last. Throws ServerError.
  bool Fetch();
  // The row as mysql_fetch_row gives one: a null pointer for NULL.
  char** Row() { return row_.data(); }
  unsigned long* Lengths() { return rowLengths_.data(); }

 private:
  explicit TBinaryResult(MYSQL_STMT* stmt) : stmt_(stmt) {}
  ServerError error() const;
  void bindColumns();
  // Reads column i again into a buffer that holds all of it.
  void refetch(size_t i);

  MYSQL_STMT* stmt_;
  std::vector<TMyField> fields_;
  std::vector<MYSQL_BIND> binds_;
  std::vector<std::vector<char>> buffers_;
  std::vector<float> floats_;
  std::vector<std::string> floatTexts_;
  std::vector<unsigned long> lengths_;
  std::vector<my_bool> nulls_;
  std::vector<char*> row_;
  std::vector<unsigned long> rowLengths_;
};

}  // namespace lomarin
