#include <gtest/gtest.h>

#include <string>

#include "engine/connect/row_store.h"

namespace lomarin {
namespace {

TEST(RowStore, KeepsNullEmptyAndBytesOfEveryCellAcrossBlocksAndChunks) {
  RowStore store(3);
  const std::string big(600 * 1024, 'x');  // larger than a quarter block: a block of its own
  const std::string binary("a\0b", 3);
  constexpr size_t kRows = 70000;  // more rows than one index chunk holds
  for (size_t i = 0; i < kRows; ++i) {
    const std::string number = std::to_string(i);
    const std::string& third = i == 5 ? big : binary;
    const char* values[] = {number.c_str(), i % 2 ? nullptr : "", third.data()};
    const unsigned long lengths[] = {number.size(), 0, third.size()};
    store.append(values, lengths);
  }
  ASSERT_EQ(store.rowCount(), kRows);
  for (size_t i : {size_t{0}, size_t{1}, size_t{5}, size_t{65535}, size_t{65536}, kRows - 1}) {
    EXPECT_EQ(store.value(i, 0), std::to_string(i));
    EXPECT_EQ(store.isNull(i, 1), i % 2 == 1);
    EXPECT_EQ(store.value(i, 1), "");
    EXPECT_EQ(store.value(i, 2), i == 5 ? std::string_view(big) : std::string_view(binary));
  }

  const char* allNull[] = {nullptr, nullptr, nullptr};
  const unsigned long zero[] = {0, 0, 0};
  store.append(allNull, zero);
  EXPECT_TRUE(store.isNull(kRows, 0) && store.isNull(kRows, 2));

  store.reset(1);
  EXPECT_EQ(store.rowCount(), 0u);
}

}  // namespace
}  // namespace lomarin
