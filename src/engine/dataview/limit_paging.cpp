#include "engine/dataview/limit_paging.h"

#include <charconv>
#include <stdexcept>

namespace lomarin::dataview {

std::string LimitClause(int64_t start, int64_t size) {
  return "LIMIT " + std::to_string(start) + "," + std::to_string(size);
}

int64_t ParsePageSize(std::string_view text) {
  int64_t size = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
  if (error != std::errc() || end != text.data() + text.size() || text.empty())
    throw std::invalid_argument("'" + std::string(text) + "' is not a valid integer value");
  if (size <= 0) throw std::invalid_argument("Division by zero");
  return size;
}

void TLimitPaging::Start(int64_t size, int64_t total) {
  if (size <= 0) throw std::invalid_argument("Division by zero");
  size_ = size;
  lastPageStart_ = (total / size) * size;
  pageEnd_ = size;
}

std::string TLimitPaging::First() {
  std::string clause = FirstHint();
  pageEnd_ = size_;
  return clause;
}

std::string TLimitPaging::Prior() {
  std::string clause = PriorHint();
  pageEnd_ -= size_;
  prevPageStart_ = prevPageStart_ - size_ >= 1 ? prevPageStart_ - size_ : 0;
  return clause;
}

std::string TLimitPaging::Next() {
  std::string clause = NextHint();
  prevPageStart_ = pageEnd_ - size_;
  pageEnd_ += size_;
  return clause;
}

std::string TLimitPaging::Last() {
  std::string clause = LastHint();
  pageEnd_ = size_ + lastPageStart_;
  return clause;
}

}  // namespace lomarin::dataview
