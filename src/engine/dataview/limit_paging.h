#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lomarin::dataview {

// "LIMIT n,size" with no blanks.
std::string LimitClause(int64_t start, int64_t size);
// The page size typed in the limit bar; throws std::invalid_argument for text that is not a
// positive whole number, since the last page cannot be computed from it.
int64_t ParsePageSize(std::string_view text);

// The paging state of the limit bar. Each step returns the clause it applies, which is the hint
// its button showed before the click.
class TLimitPaging {
 public:
  // Restarts on the first page of a result of `total` rows.
  void Start(int64_t size, int64_t total);

  std::string First();
  std::string Prior();
  std::string Next();
  std::string Last();

  int64_t Size() const { return size_; }
  int64_t PageEnd() const { return pageEnd_; }
  int64_t PrevPageStart() const { return prevPageStart_; }
  int64_t LastPageStart() const { return lastPageStart_; }

  bool FirstEnabled() const { return pageEnd_ != size_; }
  bool PriorEnabled() const { return FirstEnabled(); }
  bool NextEnabled() const { return !(lastPageStart_ < pageEnd_); }
  bool LastEnabled() const { return NextEnabled(); }

  std::string FirstHint() const { return LimitClause(0, size_); }
  std::string PriorHint() const { return LimitClause(prevPageStart_, size_); }
  std::string NextHint() const { return LimitClause(pageEnd_, size_); }
  std::string LastHint() const { return LimitClause(lastPageStart_, size_); }

 private:
  int64_t size_ = 0;
  int64_t pageEnd_ = 0;
  int64_t prevPageStart_ = 0;
  int64_t lastPageStart_ = 0;
};

}  // namespace lomarin::dataview
