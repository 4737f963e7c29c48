#include "engine/transfer/insert_writer.h"

#include "engine/connect/float_text.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

std::string TInsertWriter::verb(const TMyDumpOptions& options) {
  const bool delayed = options.UseDelayedIns;
  switch (options.InsertType) {
    case TMyInsertType::itInsertIgnore:
      return delayed ? "INSERT DELAYED IGNORE INTO " : "INSERT IGNORE INTO ";
    case TMyInsertType::itReplaceInto:
      return delayed ? "REPLACE DELAYED INTO " : "REPLACE INTO ";
    case TMyInsertType::itInsert:
      break;
  }
  return delayed ? "INSERT DELAYED INTO " : "INSERT INTO ";
}

TInsertWriter::TInsertWriter(TDumpSink& sink, TMyConnection& connection, const TMyDumpOptions& options,
                             const std::string& table, const std::vector<std::string>& columns,
                             bool listRequired, std::vector<bool> floatColumns)
    : sink_(sink),
      connection_(connection),
      options_(options),
      head_(verb(options) + table),
      floatColumns_(std::move(floatColumns)) {
  if (options.CompleteInsert || listRequired) {
    head_ += '(';
    for (size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) head_ += ", ";
      head_ += columns[i];
    }
    head_ += ") VALUES";
  } else {
    head_ += " VALUES";
  }
  statement_.reserve(options.UseExtSyntax ? kStatementBytes + (64 << 10) : 4096);
}

void TInsertWriter::row(const TMyQuery& query) {
  const int batch = options_.CommitBatchSize;
  if (batch > 0 && rowsInBatch_ == 0) sink_.write("BEGIN;\r\n");
  if (statement_.empty()) {
    statement_ += head_;
    statement_ += options_.UseExtSyntax ? "\r\n" : " ";
  } else {
    statement_ += ",\r\n";
  }
  statement_ += '(';
  const auto& fields = query.Fields();
  for (size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) statement_ += ", ";
    if (i < floatColumns_.size() && floatColumns_[i] && !query.IsNull(i)) {
      AppendFloatLiteral(statement_, query.Value(i));
      continue;
    }
    AppendLiteral(statement_, connection_, fields[i], query.Value(i), query.IsNull(i), options_.HexBlob);
  }
  statement_ += ')';
  if (!options_.UseExtSyntax || statement_.size() >= kStatementBytes) closeStatement();
  if (batch > 0 && ++rowsInBatch_ == batch) {
    closeStatement();
    sink_.write("COMMIT;\r\n");
    rowsInBatch_ = 0;
  }
}

void TInsertWriter::finish() {
  closeStatement();
  if (rowsInBatch_ > 0) sink_.write("COMMIT;\r\n");
  rowsInBatch_ = 0;
}

void TInsertWriter::closeStatement() {
  if (statement_.empty()) return;
  statement_ += ";\r\n";
  sink_.write(statement_);
  statement_.clear();
}

}  // namespace lomarin
