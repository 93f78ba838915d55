#ifdef __x86_64__

#include <immintrin.h>

#include <bit>

#include "velan/query/filter/ByteSearchInternal.h"

namespace velan {
namespace {

__m512i fourTimes(const uint8_t* table) {
  return _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_load_si128(reinterpret_cast<const __m128i*>(table)));
}

// The kinds that each of 64 bytes allows at one place of the print.
__m512i kinds(const uint8_t* bytes, __m512i low, __m512i high) {
  const __m512i half = _mm512_set1_epi8(15);
  const __m512i block = _mm512_loadu_si512(bytes);
  return _mm512_and_si512(_mm512_shuffle_epi8(low, _mm512_and_si512(block, half)),
                          _mm512_shuffle_epi8(high, _mm512_and_si512(_mm512_srli_epi16(block, 4), half)));
}

}  // namespace

size_t findPrintAvx512(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table) {
  const __m512i low[] = {fourTimes(table.low[0]), fourTimes(table.low[1]), fourTimes(table.low[2])};
  const __m512i high[] = {fourTimes(table.high[0]), fourTimes(table.high[1]), fourTimes(table.high[2])};
  for (; from < length && length - from >= 64 + kPrintLength - 1; from += 64) {
    const uint8_t* block = bytes + from;
    const __m512i first = _mm512_and_si512(kinds(block, low[0], high[0]), kinds(block + 1, low[1], high[1]));
    const uint64_t found = _mm512_test_epi8_mask(first, kinds(block + 2, low[2], high[2]));
    if (found != 0) return from + static_cast<size_t>(std::countr_zero(found));
  }
  return findPrintScalar(bytes, from, length, table);
}

}  // namespace velan

#endif  // __x86_64__
