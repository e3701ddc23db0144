#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define ZEMO_PIXEL_DIFF_SSE2 1
#endif

// Where two runs of 32-bit pixels differ. These two loops see every byte of every frame, so they read 64 bytes a turn
// and stop at the first difference; the answer is that of a pixel by pixel comparison. Neither pointer needs alignment.
namespace ZEMO::UI {

namespace detail {

inline bool samePixel(const uint8_t* a, const uint8_t* b) { return std::memcmp(a, b, 4) == 0; }

#ifdef ZEMO_PIXEL_DIFF_SSE2
/// All bits set where 16 bytes are equal.
inline __m128i equal16(const uint8_t* a, const uint8_t* b) {
    return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a)),
                          _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)));
}

inline bool same64(const uint8_t* a, const uint8_t* b) {
    const __m128i low = _mm_and_si128(equal16(a, b), equal16(a + 16, b + 16));
    const __m128i high = _mm_and_si128(equal16(a + 32, b + 32), equal16(a + 48, b + 48));
    return _mm_movemask_epi8(_mm_and_si128(low, high)) == 0xFFFF;
}
#else
inline bool same64(const uint8_t* a, const uint8_t* b) { return std::memcmp(a, b, 64) == 0; }
#endif

}  // namespace detail

/// Number of equal pixels before the first differing one; `count` when all are equal.
inline size_t equalPixels(const uint8_t* a, const uint8_t* b, size_t count) {
    size_t i = 0;
    while (count - i >= 16 && detail::same64(a + i * 4, b + i * 4)) i += 16;
    while (i < count && detail::samePixel(a + i * 4, b + i * 4)) ++i;
    return i;
}

/// One past the last differing pixel in [from, count); `from` when that range is equal.
inline size_t endOfDifference(const uint8_t* a, const uint8_t* b, size_t from, size_t count) {
    size_t end = count;
    while (end - from >= 16 && detail::same64(a + (end - 16) * 4, b + (end - 16) * 4)) end -= 16;
    while (end > from && detail::samePixel(a + (end - 1) * 4, b + (end - 1) * 4)) --end;
    return end;
}

}  // namespace ZEMO::UI
