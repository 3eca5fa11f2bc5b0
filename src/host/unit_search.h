// Scans over UTF-16 units and bytes that catalogue-sized texts go through on
// every record: sixteen bytes at a time with SSE2 where the machine has it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace talp::host {

inline constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

// Offset of the first unit in [from, size) that equals a or b (pass the same
// unit twice for one), or that is a surrogate when withSurrogates; kNotFound
// when there is none.
inline std::size_t FindUnit(std::u16string_view units, std::size_t from, char16_t a, char16_t b,
                            bool withSurrogates = false) {
  const char16_t* p = units.data();
  const std::size_t n = units.size();
  std::size_t i = from;
#if defined(__SSE2__)
  const __m128i wantA = _mm_set1_epi16(static_cast<short>(a));
  const __m128i wantB = _mm_set1_epi16(static_cast<short>(b));
  const __m128i surrogateMask = _mm_set1_epi16(static_cast<short>(0xF800));
  const __m128i surrogateBits = _mm_set1_epi16(static_cast<short>(0xD800));
  for (; i + 8 <= n; i += 8) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    __m128i hit = _mm_or_si128(_mm_cmpeq_epi16(chunk, wantA), _mm_cmpeq_epi16(chunk, wantB));
    if (withSurrogates) {
      hit = _mm_or_si128(hit, _mm_cmpeq_epi16(_mm_and_si128(chunk, surrogateMask), surrogateBits));
    }
    const int mask = _mm_movemask_epi8(hit);
    if (mask != 0) return i + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(mask)) / 2);
  }
#endif
  for (; i < n; ++i) {
    const char16_t u = p[i];
    if (u == a || u == b || (withSurrogates && (u & 0xF800) == 0xD800)) return i;
  }
  return kNotFound;
}

// Offset of the first unit in [from, size) that equals one of the four units
// of set (repeat a unit to look for fewer), or kNotFound.
inline std::size_t FindAnyUnit(std::u16string_view units, std::size_t from, const char16_t (&set)[4]) {
  const char16_t* p = units.data();
  const std::size_t n = units.size();
  std::size_t i = from;
#if defined(__SSE2__)
  const __m128i w0 = _mm_set1_epi16(static_cast<short>(set[0]));
  const __m128i w1 = _mm_set1_epi16(static_cast<short>(set[1]));
  const __m128i w2 = _mm_set1_epi16(static_cast<short>(set[2]));
  const __m128i w3 = _mm_set1_epi16(static_cast<short>(set[3]));
  for (; i + 8 <= n; i += 8) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const __m128i hit = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(chunk, w0), _mm_cmpeq_epi16(chunk, w1)),
                                     _mm_or_si128(_mm_cmpeq_epi16(chunk, w2), _mm_cmpeq_epi16(chunk, w3)));
    const int mask = _mm_movemask_epi8(hit);
    if (mask != 0) return i + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(mask)) / 2);
  }
#endif
  for (; i < n; ++i) {
    const char16_t u = p[i];
    if (u == set[0] || u == set[1] || u == set[2] || u == set[3]) return i;
  }
  return kNotFound;
}

// Replaces every unit equal to from by to, in place, from start on.
inline void ReplaceUnit(std::u16string& text, char16_t from, char16_t to, std::size_t start = 0) {
  char16_t* units = text.data();
  for (std::size_t k = start; k < text.size(); ++k) units[k] = units[k] == from ? to : units[k];
}

// Whether any unit of units is a high surrogate.
inline bool HasHighSurrogate(std::u16string_view units) {
  const char16_t* p = units.data();
  const std::size_t n = units.size();
  std::size_t i = 0;
#if defined(__SSE2__)
  const __m128i mask = _mm_set1_epi16(static_cast<short>(0xFC00));
  const __m128i high = _mm_set1_epi16(static_cast<short>(0xD800));
  const auto isHigh = [&](std::size_t at) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + at));
    return _mm_cmpeq_epi16(_mm_and_si128(chunk, mask), high);
  };
  // Pairs are rare: thirty-two units are tested with one branch.
  for (; i + 32 <= n; i += 32) {
    const __m128i any = _mm_or_si128(_mm_or_si128(isHigh(i), isHigh(i + 8)), _mm_or_si128(isHigh(i + 16), isHigh(i + 24)));
    if (_mm_movemask_epi8(any) != 0) return true;
  }
  for (; i + 8 <= n; i += 8) {
    if (_mm_movemask_epi8(isHigh(i)) != 0) return true;
  }
#endif
  for (; i < n; ++i) {
    if ((p[i] & 0xFC00) == 0xD800) return true;
  }
  return false;
}

// Widens the leading bytes below 0x80 of bytes[0, n) into dest, sixteen at a
// time, and returns how many it widened (a multiple of sixteen).
inline std::size_t WidenAsciiBlocks(const unsigned char* bytes, std::size_t n, char16_t* dest) {
  std::size_t i = 0;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  for (; i + 16 <= n; i += 16) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    if (_mm_movemask_epi8(chunk) != 0) break;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dest + i), _mm_unpacklo_epi8(chunk, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dest + i + 8), _mm_unpackhi_epi8(chunk, zero));
  }
#else
  static_cast<void>(bytes);
  static_cast<void>(n);
  static_cast<void>(dest);
#endif
  return i;
}

// Narrows the leading units below 0x80 of units[0, n) into dest, eight at a
// time, and returns how many it narrowed (a multiple of eight).
inline std::size_t NarrowAsciiBlocks(const char16_t* units, std::size_t n, char* dest) {
  std::size_t i = 0;
#if defined(__SSE2__)
  const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
  const __m128i zero = _mm_setzero_si128();
  for (; i + 8 <= n; i += 8) {
    const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(chunk, high), zero)) != 0xFFFF) break;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dest + i), _mm_packus_epi16(chunk, chunk));
  }
#else
  static_cast<void>(units);
  static_cast<void>(n);
  static_cast<void>(dest);
#endif
  return i;
}

}  // namespace talp::host
