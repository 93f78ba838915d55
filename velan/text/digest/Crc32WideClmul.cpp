// CRC-32 by folding four times 512 bits at once; see Crc32Clmul.cpp for the method. Compiled for processors with
// VPCLMULQDQ and AVX-512.
#ifdef __x86_64__

#include <immintrin.h>

#include "velan/text/digest/ChecksumsInternal.h"

namespace velan {
namespace {

constexpr size_t kBlock = 256;    // four registers
constexpr size_t kWorthIt = 512;  // below, the wide registers cost more than they save

// In each of the four lanes, what moves a register 128 * n bits on.
template <int n>
__m512i distance() {
  return _mm512_set4_epi64(crc32Power(128 * n - 32), crc32Power(128 * n + 32), crc32Power(128 * n - 32),
                           crc32Power(128 * n + 32));
}

__m512i fold(__m512i value, __m512i distance, __m512i next) {
  constexpr int kSumOfThree = 0x96;
  return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(value, distance, 0x00),
                                   _mm512_clmulepi64_epi128(value, distance, 0x11), next, kSumOfThree);
}

__m128i fold(__m128i value, __m128i next) {
  const __m128i distance = _mm_set_epi64x(crc32Power(96), crc32Power(160));
  return _mm_xor_si128(
      _mm_xor_si128(_mm_clmulepi64_si128(value, distance, 0x00), _mm_clmulepi64_si128(value, distance, 0x11)), next);
}

__m512i loadBytes(const uint8_t* at) { return _mm512_loadu_si512(at); }

// The high byte of each unit first.
__m512i loadUnits(const uint8_t* at) {
  const __m512i swapped = _mm512_set4_epi32(0x0E0F0C0D, 0x0A0B0809, 0x06070405, 0x02030001);
  return _mm512_shuffle_epi8(loadBytes(at), swapped);
}

// Takes whole blocks, at least one; `bytes` and `length` then tell what is left. The result is a text of 16 bytes with
// the same checksum as the blocks, continued from 0.
template <__m512i load(const uint8_t*)>
void foldBlocks(uint32_t crc, const uint8_t*& bytes, size_t& length, uint8_t* sixteen) {
  __m512i first = _mm512_xor_si512(load(bytes), _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(crc))));
  __m512i second = load(bytes + 64), third = load(bytes + 128), fourth = load(bytes + 192);
  for (bytes += kBlock, length -= kBlock; length >= kBlock; bytes += kBlock, length -= kBlock) {
    first = fold(first, distance<16>(), load(bytes));
    second = fold(second, distance<16>(), load(bytes + 64));
    third = fold(third, distance<16>(), load(bytes + 128));
    fourth = fold(fourth, distance<16>(), load(bytes + 192));
  }
  const __m512i all = fold(fold(fold(first, distance<4>(), second), distance<4>(), third), distance<4>(), fourth);
  __m128i lanes[4];
  _mm512_storeu_si512(lanes, all);
  const __m128i value = fold(fold(fold(lanes[0], lanes[1]), lanes[2]), lanes[3]);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(sixteen), value);
}

}  // namespace

uint32_t crc32WideClmul(uint32_t crc, const uint8_t* bytes, size_t length) {
  if (length >= kWorthIt) {
    uint8_t sixteen[16];
    foldBlocks<loadBytes>(crc, bytes, length, sixteen);
    crc = crc32Clmul(0, sixteen, sizeof sixteen);
  }
  return crc32Clmul(crc, bytes, length);
}

uint32_t crc32UnitsWideClmul(uint32_t crc, const unichar* units, size_t length) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(units);
  size_t left = length * sizeof(unichar);
  if (left >= kWorthIt) {
    uint8_t sixteen[16];
    foldBlocks<loadUnits>(crc, bytes, left, sixteen);
    crc = crc32Clmul(0, sixteen, sizeof sixteen);
  }
  const size_t rest = left / sizeof(unichar);
  return crc32UnitsClmul(crc, units + length - rest, rest);
}

}  // namespace velan

#endif  // __x86_64__
