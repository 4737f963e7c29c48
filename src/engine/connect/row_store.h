#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace lomarin {

// A growable array in fixed-size chunks: growing never copies or briefly doubles what is stored.
template <typename T>
class ChunkedArray {
 public:
  void push_back(T value) {
    if (size_ == chunks_.size() * kChunk) chunks_.push_back(std::make_unique<T[]>(kChunk));
    chunks_[size_ / kChunk][size_ % kChunk] = value;
    ++size_;
  }
  T operator[](size_t i) const { return chunks_[i / kChunk][i % kChunk]; }
  size_t size() const { return size_; }
  void clear() {
    chunks_.clear();
    size_ = 0;
  }

 private:
  static constexpr size_t kChunk = 1 << 16;
  std::vector<std::unique_ptr<T[]>> chunks_;
  size_t size_ = 0;
};

// Rows of a result kept for going back and forth. A row's bytes lie together in large blocks;
// the index costs one pointer per row and four bytes per cell.
class RowStore {
 public:
  explicit RowStore(size_t columns = 0) : columns_(columns) {}

  void reset(size_t columns);
  // values[i] == nullptr means NULL.
  void append(const char* const* values, const unsigned long* lengths);

  size_t rowCount() const { return rows_.size(); }
  bool isNull(size_t row, size_t column) const { return (cellEnds_[row * columns_ + column] & kNull) != 0; }
  std::string_view value(size_t row, size_t column) const;

 private:
  // A row is at most one protocol packet (1 GiB), so its offsets fit in 31 bits.
  static constexpr uint32_t kNull = 0x80000000u;
  static constexpr size_t kBlockSize = 1 << 20;

  char* allocate(size_t length);
  uint32_t end(size_t row, size_t column) const { return cellEnds_[row * columns_ + column] & ~kNull; }

  size_t columns_;
  ChunkedArray<const char*> rows_;
  ChunkedArray<uint32_t> cellEnds_;  // where each cell ends, from its row's start
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::vector<std::unique_ptr<char[]>> large_;
  size_t blockUsed_ = kBlockSize;
};

}  // namespace lomarin
