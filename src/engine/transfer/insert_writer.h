#pragma once

#include <string>
#include <vector>

#include "engine/connect/my_query.h"
#include "engine/transfer/dump_options.h"
#include "engine/transfer/dump_sink.h"

namespace lomarin {

// Turns the rows of a streaming query into INSERT (or REPLACE) statements of one table.
class TInsertWriter {
 public:
  // columns: script spellings for the column list; written when CompleteInsert is on or a list is
  // required (generated columns left out), otherwise ignored. floatColumns marks the FLOAT columns
  // the query reads widened to DOUBLE; they are written as FLOAT again.
  TInsertWriter(TDumpSink& sink, TMyConnection& connection, const TMyDumpOptions& options,
                const std::string& table, const std::vector<std::string>& columns, bool listRequired,
                std::vector<bool> floatColumns);
  TInsertWriter(const TInsertWriter&) = delete;
  TInsertWriter& operator=(const TInsertWriter&) = delete;

  // The query's current row.
  void row(const TMyQuery& query);
  // Ends the open statement and transaction block.
  void finish();

  // The verb for the options: "INSERT INTO ", "REPLACE DELAYED INTO ", ...
  static std::string verb(const TMyDumpOptions& options);

 private:
  void closeStatement();

  // An extended insert is cut at about this size, well below the server's smallest packet limit.
  static constexpr size_t kStatementBytes = 1 << 20;

  TDumpSink& sink_;
  TMyConnection& connection_;
  const TMyDumpOptions& options_;
  std::string head_;
  std::string statement_;
  std::vector<bool> floatColumns_;
  int rowsInBatch_ = 0;
};

}  // namespace lomarin
