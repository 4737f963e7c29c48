#include "engine/connect/row_store.h"

#include <cstring>

namespace lomarin {

void RowStore::reset(size_t columns) {
  columns_ = columns;
  cells_.clear();
  blocks_.clear();
  large_.clear();
  blockUsed_ = kBlockSize;
}

const char* RowStore::keep(const char* bytes, size_t length) {
  static const char kEmpty[] = "";
  if (length == 0) return kEmpty;
  if (length > kBlockSize / 4) {
    // Large values get a block of their own, so the shared block is not wasted.
    large_.push_back(std::make_unique<char[]>(length));
    std::memcpy(large_.back().get(), bytes, length);
    return large_.back().get();
  }
  if (blockUsed_ + length > kBlockSize) {
    blocks_.push_back(std::make_unique<char[]>(kBlockSize));
    blockUsed_ = 0;
  }
  char* target = blocks_.back().get() + blockUsed_;
  std::memcpy(target, bytes, length);
  blockUsed_ += length;
  return target;
}

void RowStore::append(const char* const* values, const unsigned long* lengths) {
  for (size_t i = 0; i < columns_; ++i) {
    if (!values[i]) {
      cells_.push_back({nullptr, 0});
    } else {
      cells_.push_back({keep(values[i], lengths[i]), lengths[i]});
    }
  }
}

std::string_view RowStore::value(size_t row, size_t column) const {
  const Cell& c = cell(row, column);
  return c.data ? std::string_view(c.data, c.length) : std::string_view();
}

}  // namespace lomarin
