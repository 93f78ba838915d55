#ifdef __x86_64__

#include <immintrin.h>

#include "velan/query/words/WordIndexInternal.h"

namespace velan {

namespace {

__m256i load(const void* bytes) { return _mm256_loadu_si256(static_cast<const __m256i*>(bytes)); }

// ASCII: the 16 bytes of the bitmap that matter fit a register. Unit 0x2C ("," ) looks up byte 0x2C >> 3 = 5 of them,
// and bit 0x2C & 7 = 4. `units` are 32 bytes below 0x80.
__m256i asciiMarks(__m256i units, __m256i bitmap) {
  const __m256i bits = _mm256_set1_epi64x(static_cast<int64_t>(0x8040201008040201));
  const __m256i row = _mm256_and_si256(_mm256_srli_epi16(units, 3), _mm256_set1_epi8(0x0F));
  const __m256i column = _mm256_and_si256(units, _mm256_set1_epi8(7));
  const __m256i hit = _mm256_and_si256(_mm256_shuffle_epi8(bitmap, row), _mm256_shuffle_epi8(bits, column));
  return _mm256_min_epu8(hit, _mm256_set1_epi8(1));
}

// Any eight units: each fetches the 32 bits of the bitmap that it lies in.
__m256i gatheredEight(const unichar* units, const uint8_t* separators) {
  const __m256i eight = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units)));
  const __m256i words =
      _mm256_i32gather_epi32(reinterpret_cast<const int*>(separators), _mm256_srli_epi32(eight, 5), 4);
  const __m256i bits = _mm256_srlv_epi32(words, _mm256_and_si256(eight, _mm256_set1_epi32(31)));
  return _mm256_and_si256(bits, _mm256_set1_epi32(1));
}

__m256i gatheredMarks(const unichar* units, const uint8_t* separators) {
  const __m256i low = _mm256_packus_epi32(gatheredEight(units, separators), gatheredEight(units + 8, separators));
  const __m256i high =
      _mm256_packus_epi32(gatheredEight(units + 16, separators), gatheredEight(units + 24, separators));
  return _mm256_permutevar8x32_epi32(_mm256_packus_epi16(low, high), _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

// Packing works on the halves of two registers: lets the middle quarters trade places.
__m256i inOrder(__m256i packed) { return _mm256_permute4x64_epi64(packed, 0xD8); }

void markSeparators(const unichar* units, size_t length, const uint8_t* separators, uint8_t* marks) {
  const __m256i beyondASCII = _mm256_set1_epi16(static_cast<int16_t>(0xFF80));
  const __m256i bitmap = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(separators)));
  size_t i = 0;
  for (; length - i >= 32; i += 32) {
    const __m256i low = load(units + i);
    const __m256i high = load(units + i + 16);
    const bool isASCII = _mm256_testz_si256(_mm256_or_si256(low, high), beyondASCII);
    const __m256i block =
        isASCII ? asciiMarks(inOrder(_mm256_packus_epi16(low, high)), bitmap) : gatheredMarks(units + i, separators);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(marks + i), block);
  }
  kWordIndexScalar.mark(units + i, length - i, separators, marks + i);
}

size_t typesFromMarks(const uint8_t* marks, size_t length, uint8_t* types) {
  __m256i words = _mm256_setzero_si256();
  size_t i = 0;
  for (; length - i >= 32; i += 32) {
    const __m256i mark = load(marks + i + 1);
    const __m256i begins = _mm256_andnot_si256(mark, load(marks + i));
    const __m256i ends = _mm256_andnot_si256(mark, load(marks + i + 2));
    // As no bit leaves its byte, doubling 16 bits at a time doubles the bytes: mark + 2 (begins + 2 ends).
    const __m256i twoEnds = _mm256_slli_epi16(ends, 1);
    const __m256i both = _mm256_slli_epi16(_mm256_or_si256(begins, twoEnds), 1);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(types + i), _mm256_or_si256(mark, both));
    words = _mm256_add_epi64(words, _mm256_sad_epu8(begins, _mm256_setzero_si256()));
  }
  uint64_t sums[4];
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(sums), words);
  return sums[0] + sums[1] + sums[2] + sums[3] + kWordIndexScalar.typesFromMarks(marks + i, length - i, types + i);
}

}  // namespace

const WordIndexKernels kWordIndexAvx2 = {.mark = markSeparators, .typesFromMarks = typesFromMarks};

}  // namespace velan

#endif  // __x86_64__
