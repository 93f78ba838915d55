// CRC-32 by folding with carry-less multiplication, after Gopal and others, "Fast CRC Computation for Generic
// Polynomials Using PCLMULQDQ Instruction" (2009). Compiled for processors with PCLMULQDQ and SSSE3.
#ifdef __x86_64__

#include <immintrin.h>

#include "velan/text/digest/ChecksumsInternal.h"

namespace velan {
namespace {

constexpr int64_t kPolynomial = 0x1DB710641;  // with its x^32
constexpr int64_t kQuotient = 0x1F7011641;    // x^64 divided by it

// What moves a register 128 * n bits on: the low half travels 64 bits further than the high half.
template <int n>
__m128i distance() {
  return _mm_set_epi64x(crc32Power(128 * n - 32), crc32Power(128 * n + 32));
}

__m128i fold(__m128i value, __m128i distance, __m128i next) {
  const __m128i low = _mm_clmulepi64_si128(value, distance, 0x00);
  const __m128i high = _mm_clmulepi64_si128(value, distance, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

// The remainder of 128 bits: down to 96, to 64, then division by multiplication with the quotient.
uint32_t reduce(__m128i value) {
  const __m128i low32 = _mm_set_epi32(0, 0, 0, -1);
  const __m128i by96 = _mm_clmulepi64_si128(value, distance<1>(), 0x10);
  value = _mm_xor_si128(_mm_srli_si128(value, 8), by96);
  const __m128i by64 = _mm_clmulepi64_si128(_mm_and_si128(value, low32), _mm_set_epi64x(0, crc32Power(64)), 0x00);
  value = _mm_xor_si128(_mm_srli_si128(value, 4), by64);
  const __m128i division = _mm_set_epi64x(kQuotient, kPolynomial);
  __m128i multiple = _mm_clmulepi64_si128(_mm_and_si128(value, low32), division, 0x10);
  multiple = _mm_clmulepi64_si128(_mm_and_si128(multiple, low32), division, 0x00);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(_mm_xor_si128(value, multiple), 4)));
}

__m128i loadBytes(const uint8_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

// The high byte of each unit first.
__m128i loadUnits(const uint8_t* at) {
  return _mm_shuffle_epi8(loadBytes(at), _mm_set_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
}

// Takes whole 16-byte blocks, at least one; `bytes` and `length` then tell what is left.
template <__m128i load(const uint8_t*)>
uint32_t foldBlocks(uint32_t crc, const uint8_t*& bytes, size_t& length) {
  __m128i value = _mm_xor_si128(load(bytes), _mm_cvtsi32_si128(static_cast<int>(crc)));
  if (length >= 64) {
    __m128i second = load(bytes + 16), third = load(bytes + 32), fourth = load(bytes + 48);
    for (bytes += 64, length -= 64; length >= 64; bytes += 64, length -= 64) {
      value = fold(value, distance<4>(), load(bytes));
      second = fold(second, distance<4>(), load(bytes + 16));
      third = fold(third, distance<4>(), load(bytes + 32));
      fourth = fold(fourth, distance<4>(), load(bytes + 48));
    }
    value = fold(fold(fold(value, distance<1>(), second), distance<1>(), third), distance<1>(), fourth);
  } else {
    bytes += 16;
    length -= 16;
  }
  for (; length >= 16; bytes += 16, length -= 16) value = fold(value, distance<1>(), load(bytes));
  return reduce(value);
}

}  // namespace

uint32_t crc32Clmul(uint32_t crc, const uint8_t* bytes, size_t length) {
  if (length >= 16) crc = foldBlocks<loadBytes>(crc, bytes, length);
  return crc32Scalar(crc, bytes, length);
}

uint32_t crc32UnitsClmul(uint32_t crc, const unichar* units, size_t length) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(units);
  size_t left = length * sizeof(unichar);
  if (left >= 16) crc = foldBlocks<loadUnits>(crc, bytes, left);
  return crc32UnitsScalar(crc, units + length - left / sizeof(unichar), left / sizeof(unichar));
}

}  // namespace velan

#endif  // __x86_64__
