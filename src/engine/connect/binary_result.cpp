#include "engine/connect/binary_result.h"

#include <algorithm>

#include "engine/connect/float_text.h"
#include "engine/connect/session_impl.h"

namespace lomarin {

namespace {

// Enough for any number or temporal value; longer texts are read again at their full length.
constexpr unsigned long kFirstBufferSize = 256;

}  // namespace

std::unique_ptr<TBinaryResult> TBinaryResult::Prepare(MYSQL* mysql, std::string_view sql) {
  MYSQL_STMT* stmt = mysql_stmt_init(mysql);
  if (!stmt) return nullptr;
  std::unique_ptr<TBinaryResult> result(new TBinaryResult(stmt));
  if (mysql_stmt_prepare(stmt, sql.data(), sql.size()) != 0) return nullptr;
  MYSQL_RES* metadata = mysql_stmt_result_metadata(stmt);
  if (!metadata) return nullptr;
  const unsigned count = mysql_num_fields(metadata);
  const MYSQL_FIELD* fields = mysql_fetch_fields(metadata);
  const bool hasFloat =
      std::any_of(fields, fields + count, [](const MYSQL_FIELD& f) { return f.type == MYSQL_TYPE_FLOAT; });
  mysql_free_result(metadata);
  return hasFloat ? std::move(result) : nullptr;
}

TBinaryResult::~TBinaryResult() { mysql_stmt_close(stmt_); }

ServerError TBinaryResult::error() const {
  return ServerError(mysql_stmt_errno(stmt_), mysql_stmt_sqlstate(stmt_), mysql_stmt_error(stmt_));
}

void TBinaryResult::Execute() {
  if (mysql_stmt_execute(stmt_) != 0) throw error();
  // The metadata of the run, which may differ from the prepared one's.
  MYSQL_RES* metadata = mysql_stmt_result_metadata(stmt_);
  if (!metadata) throw error();
  const unsigned count = mysql_num_fields(metadata);
  const MYSQL_FIELD* fields = mysql_fetch_fields(metadata);
  fields_.clear();
  for (unsigned i = 0; i < count; ++i) fields_.push_back(FieldOf(fields[i]));
  mysql_free_result(metadata);
  bindColumns();
}

void TBinaryResult::bindColumns() {
  const size_t count = fields_.size();
  binds_.assign(count, MYSQL_BIND{});
  buffers_.assign(count, {});
  floats_.assign(count, 0);
  floatTexts_.assign(count, {});
  lengths_.assign(count, 0);
  nulls_.assign(count, 0);
  row_.assign(count, nullptr);
  rowLengths_.assign(count, 0);
  for (size_t i = 0; i < count; ++i) {
    MYSQL_BIND& bind = binds_[i];
    bind.length = &lengths_[i];
    bind.is_null = &nulls_[i];
    if (fields_[i].Type == TMyFieldType::Float) {
      bind.buffer_type = MYSQL_TYPE_FLOAT;
      bind.buffer = &floats_[i];
      continue;
    }
    // The client library converts every other type to the text the text protocol carries.
    buffers_[i].resize(std::min<unsigned long>(fields_[i].Length + 1, kFirstBufferSize));
    bind.buffer_type = MYSQL_TYPE_STRING;
    bind.buffer = buffers_[i].data();
    bind.buffer_length = buffers_[i].size();
  }
  if (mysql_stmt_bind_result(stmt_, binds_.data()) != 0) throw error();
}

void TBinaryResult::refetch(size_t i) {
  buffers_[i].resize(lengths_[i] + 1);
  binds_[i].buffer = buffers_[i].data();
  binds_[i].buffer_length = buffers_[i].size();
  if (mysql_stmt_fetch_column(stmt_, &binds_[i], static_cast<unsigned>(i), 0) != 0) throw error();
}

bool TBinaryResult::Fetch() {
  const int status = mysql_stmt_fetch(stmt_);
  if (status == MYSQL_NO_DATA) return false;
  if (status == 1) throw error();
  bool grown = false;
  for (size_t i = 0; i < fields_.size(); ++i) {
    if (nulls_[i]) {
      row_[i] = nullptr;
      rowLengths_[i] = 0;
    } else if (fields_[i].Type == TMyFieldType::Float) {
      floatTexts_[i].clear();
      AppendFloatText(floatTexts_[i], floats_[i]);
      row_[i] = floatTexts_[i].data();
      rowLengths_[i] = floatTexts_[i].size();
    } else {
      if (lengths_[i] >= buffers_[i].size()) {
        refetch(i);
        grown = true;
      }
      row_[i] = buffers_[i].data();
      rowLengths_[i] = lengths_[i];
    }
  }
  if (grown && mysql_stmt_bind_result(stmt_, binds_.data()) != 0) throw error();
  return true;
}

}  // namespace lomarin
