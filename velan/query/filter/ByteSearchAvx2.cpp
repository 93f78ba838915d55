#ifdef __x86_64__

#include <immintrin.h>

#include <bit>

#include "velan/query/filter/ByteSearchInternal.h"

namespace velan {
namespace {

__m256i twice(const uint8_t* table) {
  return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(table)));
}

// The kinds that each of 32 bytes allows at one place of the print.
__m256i kinds(const uint8_t* bytes, __m256i low, __m256i high) {
  const __m256i half = _mm256_set1_epi8(15);
  const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
  return _mm256_and_si256(_mm256_shuffle_epi8(low, _mm256_and_si256(block, half)),
                          _mm256_shuffle_epi8(high, _mm256_and_si256(_mm256_srli_epi16(block, 4), half)));
}

}  // namespace

size_t findPrintAvx2(const uint8_t* bytes, size_t from, size_t length, const PrintTable& table) {
  const __m256i low[] = {twice(table.low[0]), twice(table.low[1]), twice(table.low[2])};
  const __m256i high[] = {twice(table.high[0]), twice(table.high[1]), twice(table.high[2])};
  for (; from < length && length - from >= 32 + kPrintLength - 1; from += 32) {
    const uint8_t* block = bytes + from;
    const __m256i first = _mm256_and_si256(kinds(block, low[0], high[0]), kinds(block + 1, low[1], high[1]));
    const __m256i all = _mm256_and_si256(first, kinds(block + 2, low[2], high[2]));
    const auto none = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(all, _mm256_setzero_si256())));
    if (none != UINT32_MAX) return from + static_cast<size_t>(std::countr_one(none));
  }
  return findPrintScalar(bytes, from, length, table);
}

}  // namespace velan

#endif  // __x86_64__
