#include "engine/connect/row_store.h"

#include <cstring>

namespace lomarin {

void RowStore::reset(size_t columns) {
  columns_ = columns;
  rows_.clear();
  cellEnds_.clear();
  blocks_.clear();
  large_.clear();
  blockUsed_ = kBlockSize;
}

char* RowStore::allocate(size_t length) {
  if (length > kBlockSize / 4) {
    // Large rows get a block of their own, so the shared block is not wasted.
    large_.push_back(std::make_unique<char[]>(length));
    return large_.back().get();
  }
  if (blockUsed_ + length > kBlockSize) {
    blocks_.push_back(std::make_unique<char[]>(kBlockSize));
    blockUsed_ = 0;
  }
  char* target = blocks_.back().get() + blockUsed_;
  blockUsed_ += length;
  return target;
}

void RowStore::append(const char* const* values, const unsigned long* lengths) {
  size_t total = 0;
  for (size_t i = 0; i < columns_; ++i)
    if (values[i]) total += lengths[i];
  char* row = total ? allocate(total) : nullptr;
  uint32_t offset = 0;
  for (size_t i = 0; i < columns_; ++i) {
    if (!values[i]) {
      cellEnds_.push_back(offset | kNull);
      continue;
    }
    if (lengths[i]) std::memcpy(row + offset, values[i], lengths[i]);
    offset += static_cast<uint32_t>(lengths[i]);
    cellEnds_.push_back(offset);
  }
  rows_.push_back(row);
}

std::string_view RowStore::value(size_t row, size_t column) const {
  if (isNull(row, column)) return {};
  const uint32_t start = column == 0 ? 0 : end(row, column - 1);
  const char* bytes = rows_[row];
  return bytes ? std::string_view(bytes + start, end(row, column) - start) : std::string_view("", 0);
}

}  // namespace lomarin
