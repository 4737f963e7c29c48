#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace lomarin {

// Rows of a result kept for going back and forth. Cell bytes live in large blocks, so growing
// never copies what is already stored and a row costs one index entry per cell.
class RowStore {
 public:
  explicit RowStore(size_t columns = 0) : columns_(columns) {}

  void reset(size_t columns);
  // values[i] == nullptr means NULL.
  void append(const char* const* values, const unsigned long* lengths);

  size_t rowCount() const { return columns_ ? cells_.size() / columns_ : 0; }
  bool isNull(size_t row, size_t column) const { return cell(row, column).data == nullptr; }
  std::string_view value(size_t row, size_t column) const;

 private:
  struct Cell {
    const char* data;
    size_t length;
  };
  const Cell& cell(size_t row, size_t column) const { return cells_[row * columns_ + column]; }
  const char* keep(const char* bytes, size_t length);

  static constexpr size_t kBlockSize = 1 << 20;
  size_t columns_;
  std::vector<Cell> cells_;
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::vector<std::unique_ptr<char[]>> large_;
  size_t blockUsed_ = kBlockSize;
};

}  // namespace lomarin
