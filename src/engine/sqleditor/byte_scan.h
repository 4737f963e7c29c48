#pragma once
// Private to the splitter: finds the next byte of a small set, 16 bytes at a time where SSE2 is.

#include <array>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lomarin::detail {

// The first byte in [p, end) equal to one of stops, or end.
template <size_t N>
const char* findFirstOf(const char* p, const char* end, const std::array<char, N>& stops) {
#if defined(__SSE2__)
  __m128i wanted[N];
  for (size_t i = 0; i < N; ++i) wanted[i] = _mm_set1_epi8(stops[i]);
  while (end - p >= 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    __m128i hits = _mm_cmpeq_epi8(block, wanted[0]);
    for (size_t i = 1; i < N; ++i) hits = _mm_or_si128(hits, _mm_cmpeq_epi8(block, wanted[i]));
    if (const int mask = _mm_movemask_epi8(hits)) return p + __builtin_ctz(static_cast<unsigned>(mask));
    p += 16;
  }
#endif
  for (; p < end; ++p)
    for (char stop : stops)
      if (*p == stop) return p;
  return end;
}

}  // namespace lomarin::detail
