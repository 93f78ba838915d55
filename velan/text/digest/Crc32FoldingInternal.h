// CRC-32 by folding with carry-less multiplication, after Gopal and others, "Fast CRC Computation for Generic
// Polynomials Using PCLMULQDQ Instruction" (2009), written once for registers of every width. A source file that
// includes this one says in a class `W` what its registers offer:
//
//   Vector, load(bytes)           as many lanes of 16 bytes as there is room for
//   swapped(vector)               the two bytes of each unit exchanged
//   with(crc, vector)             the checksum so far added to the first bytes
//   distance<n>()                 in each lane, what moves it 128 * n bits on
//   fold(vector, distance, next)  the lanes moved on and added to those of `next`
//   joined(vector)                a lane with the same checksum
//
// All is in an anonymous namespace, because each file compiles it for other instructions.
#ifndef VELAN_TEXT_DIGEST_CRC32_FOLDING_INTERNAL_H
#define VELAN_TEXT_DIGEST_CRC32_FOLDING_INTERNAL_H

#ifndef __clang__
#pragma GCC diagnostic ignored "-Wuninitialized"  // of the compiler's own intrinsics
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <cstring>

#include "velan/text/digest/ChecksumsInternal.h"

namespace velan {
namespace {

constexpr size_t kLane = 16;
constexpr uint32_t kPolynomial = 0xEDB88320;

// x^96 divided by the polynomial: bit 0 is x^64, and so on down to x^1.
constexpr int64_t quotient() {
  uint64_t result = 0;
  uint32_t rest = 1;
  for (int i = 0; i < 64; ++i) {
    result |= uint64_t{rest & 1} << i;
    rest = (rest & 1) ? (rest >> 1) ^ kPolynomial : rest >> 1;
  }
  return static_cast<int64_t>(result);
}

// The low half of a register travels 64 bits further than the high half.
template <int n>
constexpr int64_t kLowHalf = crc32Power(128 * n + 32);
template <int n>
constexpr int64_t kHighHalf = crc32Power(128 * n - 32);

// One lane.
struct Single {
  using Vector = __m128i;
  static Vector load(const uint8_t* bytes) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)); }
  static Vector swapped(Vector vector) {
    return _mm_shuffle_epi8(vector, _mm_set_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
  }
  static Vector with(uint32_t crc, Vector vector) {
    return _mm_xor_si128(vector, _mm_cvtsi32_si128(static_cast<int>(crc)));
  }
  template <int n>
  static Vector distance() {
    return _mm_set_epi64x(kHighHalf<n>, kLowHalf<n>);
  }
  static Vector fold(Vector vector, Vector distance, Vector next) {
    const Vector low = _mm_clmulepi64_si128(vector, distance, 0x00);
    const Vector high = _mm_clmulepi64_si128(vector, distance, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), next);
  }
  static Vector joined(Vector vector) { return vector; }
};

// The remainder of 128 bits: down to 96, then division by multiplication with the quotient.
uint32_t reduce(__m128i lane) {
  const __m128i by96 = _mm_clmulepi64_si128(lane, Single::distance<1>(), 0x10);
  const __m128i rest = _mm_xor_si128(_mm_srli_si128(lane, 8), by96);
  const __m128i division = _mm_set_epi64x(int64_t{kPolynomial} << 1 | 1, quotient());
  const __m128i times = _mm_clmulepi64_si128(rest, division, 0x00);
  const __m128i multiple = _mm_clmulepi64_si128(times, division, 0x10);
  return static_cast<uint32_t>(_mm_extract_epi32(_mm_xor_si128(rest, multiple), 2));
}

// Loaded 16 bytes before its middle or less, what moves the bytes of a lane on by as many places, or back behind it;
// what falls out is 0.
alignas(16) constexpr uint8_t kPlaces[3 * kLane] = {
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80,
    0,    1,    2,    3,    4,    5,    6,    7,    8,    9,    10,   11,   12,   13,   14,   15,
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};

template <bool units, typename W>
typename W::Vector loaded(const uint8_t* bytes) {
  return units ? W::swapped(W::load(bytes)) : W::load(bytes);
}

// The checksum of a lane and of what follows it. At least 16 bytes stand before `end`.
template <bool units>
uint32_t finished(__m128i lane, const uint8_t* bytes, const uint8_t* end) {
  const __m128i distance = Single::distance<1>();
  for (; end - bytes >= 16; bytes += 16) lane = Single::fold(lane, distance, loaded<units, Single>(bytes));
  if (const size_t rest = static_cast<size_t>(end - bytes); rest > 0) {
    // The lane and the rest divided anew, so that 16 bytes come last.
    const __m128i back = Single::load(kPlaces + kLane + rest);
    const __m128i first = _mm_shuffle_epi8(lane, Single::load(kPlaces + rest));
    const __m128i last = _mm_blendv_epi8(_mm_shuffle_epi8(lane, back), loaded<units, Single>(end - kLane), back);
    lane = Single::fold(first, distance, last);
  }
  return reduce(lane);
}

// Of 4 to 15 bytes: put at the end of a lane of zeros, which change nothing.
template <bool units>
uint32_t ofLessThanALane(uint32_t crc, const uint8_t* bytes, size_t length) {
  uint64_t halves[2] = {};
  if (length >= 8) {
    std::memcpy(&halves[0], bytes, 8);
    std::memcpy(&halves[1], bytes + length - 8, 8);
    halves[0] = halves[0] << 8 * (15 - length) << 8;
  } else {
    uint32_t first = 0;
    uint32_t last = 0;
    std::memcpy(&first, bytes, 4);
    std::memcpy(&last, bytes + length - 4, 4);
    halves[1] = uint64_t{last} << 32 | uint64_t{first} << 8 * (8 - length);
  }
  const __m128i lane = _mm_set_epi64x(static_cast<int64_t>(halves[1]), static_cast<int64_t>(halves[0]));
  const __m128i start = _mm_shuffle_epi8(_mm_cvtsi32_si128(static_cast<int>(crc)), Single::load(kPlaces + length));
  return reduce(_mm_xor_si128(units ? Single::swapped(lane) : lane, start));
}

// Goes on with registers of `W` while they are full; at least one is.
template <bool units, typename W>
uint32_t folded(uint32_t crc, const uint8_t* bytes, const uint8_t* end) {
  using Vector = typename W::Vector;
  constexpr int kLanes = sizeof(Vector) / kLane;
  constexpr ptrdiff_t kSize = sizeof(Vector);
  const auto load = [](const uint8_t* at) { return loaded<units, W>(at); };
  const Vector one = W::template distance<kLanes>();
  Vector value = W::with(crc, load(bytes));
  if (end - bytes >= 4 * kSize) {
    Vector second = load(bytes + kSize), third = load(bytes + 2 * kSize), fourth = load(bytes + 3 * kSize);
    const Vector four = W::template distance<4 * kLanes>();
    for (bytes += 4 * kSize; end - bytes >= 4 * kSize; bytes += 4 * kSize) {
      value = W::fold(value, four, load(bytes));
      second = W::fold(second, four, load(bytes + kSize));
      third = W::fold(third, four, load(bytes + 2 * kSize));
      fourth = W::fold(fourth, four, load(bytes + 3 * kSize));
    }
    const Vector two = W::template distance<2 * kLanes>(), three = W::template distance<3 * kLanes>();
    value = W::fold(value, three, W::fold(second, two, W::fold(third, one, fourth)));  // products are independent
  } else {
    bytes += kSize;
  }
  for (; end - bytes >= kSize; bytes += kSize) value = W::fold(value, one, load(bytes));
  return finished<units>(W::joined(value), bytes, end);
}

// Through the widest registers that the text fills.
template <bool units, typename Widest, typename... Narrower>
uint32_t throughLanes(uint32_t crc, const uint8_t* bytes, size_t length) {
  if (length >= sizeof(typename Widest::Vector)) return folded<units, Widest>(crc, bytes, bytes + length);
  if constexpr (sizeof...(Narrower) > 0) {
    return throughLanes<units, Narrower...>(crc, bytes, length);
  } else {
    return ofLessThanALane<units>(crc, bytes, length);
  }
}

template <typename... Widths>
uint32_t crc32OfBytes(uint32_t crc, const uint8_t* bytes, size_t length) {
  if (length < 4) return crc32Scalar(crc, bytes, length);
  return throughLanes<false, Widths...>(crc, bytes, length);
}

template <typename... Widths>
uint32_t crc32OfUnits(uint32_t crc, const unichar* units, size_t length) {
  if (length < 2) return crc32UnitsScalar(crc, units, length);
  return throughLanes<true, Widths...>(crc, reinterpret_cast<const uint8_t*>(units), length * sizeof(unichar));
}

#ifdef __VPCLMULQDQ__

// Two lanes.
struct Double {
  using Vector = __m256i;
  static Vector load(const uint8_t* bytes) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes)); }
  static Vector swapped(Vector vector) {
    return _mm256_shuffle_epi8(vector, _mm256_set_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1,  //
                                                       14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
  }
  static Vector with(uint32_t crc, Vector vector) {
    return _mm256_xor_si256(vector, _mm256_zextsi128_si256(_mm_cvtsi32_si128(static_cast<int>(crc))));
  }
  template <int n>
  static Vector distance() {
    return _mm256_broadcastsi128_si256(Single::distance<n>());
  }
  static Vector fold(Vector vector, Vector distance, Vector next) {
    const Vector low = _mm256_clmulepi64_epi128(vector, distance, 0x00);
    const Vector high = _mm256_clmulepi64_epi128(vector, distance, 0x11);
    return _mm256_xor_si256(_mm256_xor_si256(low, high), next);
  }
  static __m128i joined(Vector vector) {
    return Single::fold(_mm256_castsi256_si128(vector), Single::distance<1>(), _mm256_extracti128_si256(vector, 1));
  }
};

#endif
#ifdef __AVX512BW__

// Four lanes.
struct Fourfold {
  using Vector = __m512i;
  static Vector load(const uint8_t* bytes) { return _mm512_loadu_si512(bytes); }
  static Vector swapped(Vector vector) {
    return _mm512_shuffle_epi8(vector, _mm512_set4_epi32(0x0E0F0C0D, 0x0A0B0809, 0x06070405, 0x02030001));
  }
  static Vector with(uint32_t crc, Vector vector) {
    return _mm512_xor_si512(vector, _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(crc))));
  }
  template <int n>
  static Vector distance() {
    return _mm512_broadcast_i32x4(Single::distance<n>());
  }
  static Vector fold(Vector vector, Vector distance, Vector next) {
    constexpr int kSumOfThree = 0x96;
    return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(vector, distance, 0x00),
                                     _mm512_clmulepi64_epi128(vector, distance, 0x11), next, kSumOfThree);
  }
  static __m128i joined(Vector vector) {
    const __m256i first = _mm256_set_m128i(Single::distance<2>(), Single::distance<3>());
    const __m256i last = _mm256_zextsi128_si256(Single::distance<1>());
    const __m512i distances = _mm512_inserti64x4(_mm512_zextsi256_si512(first), last, 1);
    const __m512i sum = fold(vector, distances, _mm512_maskz_mov_epi64(0xC0, vector));  // the last lane stays
    const __m256i two = _mm256_xor_si256(_mm512_castsi512_si256(sum), _mm512_extracti64x4_epi64(sum, 1));
    return _mm_xor_si128(_mm256_castsi256_si128(two), _mm256_extracti128_si256(two, 1));
  }
};

#endif

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_DIGEST_CRC32_FOLDING_INTERNAL_H
