#pragma once
// Private to the splitter: finds the next byte of a small set, 16 bytes at a time where SSE2 is.

#include <array>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lomarin::detail {

template <size_t N>
class ByteSet {
 public:
  ByteSet() = default;
  explicit ByteSet(const std::array<char, N>& bytes) {
    for (char b : bytes) table_[static_cast<unsigned char>(b)] = true;
#if defined(__SSE2__)
    for (size_t i = 0; i < N; ++i) wanted_[i] = _mm_set1_epi8(bytes[i]);
#endif
  }

  // The first byte in [p, end) of the set, or end.
  const char* find(const char* p, const char* end) const {
    // Runs between quotes are often a few bytes long; a table look-up settles them cheaper.
    for (const char* stop = p + 8 < end ? p + 8 : end; p < stop; ++p)
      if (table_[static_cast<unsigned char>(*p)]) return p;
#if defined(__SSE2__)
    while (end - p >= 16) {
      const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
      __m128i hits = _mm_cmpeq_epi8(block, wanted_[0]);
      for (size_t i = 1; i < N; ++i) hits = _mm_or_si128(hits, _mm_cmpeq_epi8(block, wanted_[i]));
      if (const int mask = _mm_movemask_epi8(hits)) return p + __builtin_ctz(static_cast<unsigned>(mask));
      p += 16;
    }
#endif
    for (; p < end; ++p)
      if (table_[static_cast<unsigned char>(*p)]) return p;
    return end;
  }

 private:
  std::array<bool, 256> table_{};
#if defined(__SSE2__)
  __m128i wanted_[N];
#endif
};

}  // namespace lomarin::detail
