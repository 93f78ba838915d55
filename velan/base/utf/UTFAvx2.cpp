#ifdef __x86_64__

#include <immintrin.h>

#include "velan/base/utf/UTFVectorsInternal.h"

namespace velan {
namespace {

struct AVX2 {
  using Bytes = uint8_t __attribute__((vector_size(32)));
  using Signed = int8_t __attribute__((vector_size(32)));
  using Units = uint16_t __attribute__((vector_size(32)));

  static __m256i raw(Bytes bytes) { return reinterpret_cast<__m256i>(bytes); }
  static __m256i raw(Units units) { return reinterpret_cast<__m256i>(units); }
  static __m128i loadLane(const void* from) { return _mm_loadu_si128(static_cast<const __m128i*>(from)); }

  static Bytes load(const void* from) {
    return reinterpret_cast<Bytes>(_mm256_loadu_si256(static_cast<const __m256i*>(from)));
  }
  static void store(void* to, Lane lane) {
    _mm_storeu_si128(static_cast<__m128i*>(to), reinterpret_cast<__m128i>(lane));
  }
  template <int n>
  static Bytes before(Bytes now, Bytes earlier) {
    const __m256i between = _mm256_permute2x128_si256(raw(earlier), raw(now), 0x21);
    return reinterpret_cast<Bytes>(_mm256_alignr_epi8(raw(now), between, 16 - n));
  }
  static Bytes lookUp(const std::array<uint8_t, 16>& table, Bytes indices) {
    const __m256i both = _mm256_broadcastsi128_si256(loadLane(table.data()));
    return reinterpret_cast<Bytes>(_mm256_shuffle_epi8(both, raw(indices)));
  }
  static Bytes low(Bytes a, Bytes b) { return reinterpret_cast<Bytes>(_mm256_unpacklo_epi8(raw(a), raw(b))); }
  static Bytes high(Bytes a, Bytes b) { return reinterpret_cast<Bytes>(_mm256_unpackhi_epi8(raw(a), raw(b))); }
  static Units low(Units a, Units b) { return reinterpret_cast<Units>(_mm256_unpacklo_epi16(raw(a), raw(b))); }
  static Units high(Units a, Units b) { return reinterpret_cast<Units>(_mm256_unpackhi_epi16(raw(a), raw(b))); }
  static Lane lane(Bytes bytes, size_t i) {
    return reinterpret_cast<Lane>(i == 0 ? _mm256_castsi256_si128(raw(bytes))
                                         : _mm256_extracti128_si256(raw(bytes), 1));
  }
  static Lane shuffled(Lane lane, const std::array<uint8_t, 16>& order) {
    return reinterpret_cast<Lane>(_mm_shuffle_epi8(reinterpret_cast<__m128i>(lane), loadLane(order.data())));
  }
  // Packing works within lanes: the quarters are put in order.
  static __m256i inOrder(__m256i packed) { return _mm256_permute4x64_epi64(packed, 0xD8); }
  static void store(void* to, __m256i vector) { _mm256_storeu_si256(static_cast<__m256i*>(to), vector); }
  static void widen(Bytes bytes, unichar* units) {
    store(units, _mm256_cvtepu8_epi16(reinterpret_cast<__m128i>(lane(bytes, 0))));
    store(units + 16, _mm256_cvtepu8_epi16(reinterpret_cast<__m128i>(lane(bytes, 1))));
  }
  static void pack(Units first, Units second, char* bytes) {
    store(bytes, inOrder(_mm256_packus_epi16(raw(first), raw(second))));
  }
  static uint32_t bits(Bytes bytes) { return static_cast<uint32_t>(_mm256_movemask_epi8(raw(bytes))); }
  static uint64_t bits(const Bytes (&block)[2]) { return bits(block[0]) | uint64_t{bits(block[1])} << 32; }
  static uint32_t unitBits(const Units (&block)[2]) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(inOrder(_mm256_packs_epi16(raw(block[0]), raw(block[1])))));
  }
  static bool any(Bytes bytes) { return !_mm256_testz_si256(raw(bytes), raw(bytes)); }
  static bool anyHighest(Bytes bytes) { return bits(bytes) != 0; }
};

}  // namespace

Transcoded beginUTF16Avx2(const uint8_t* bytes, size_t length, unichar* units) {
  return FromUTF8<AVX2>::begin(bytes, length, units);
}

Transcoded beginUTF8Avx2(const unichar* units, size_t length, char* bytes) {
  return FromUTF16<AVX2>::begin(units, length, bytes);
}

}  // namespace velan
#endif  // __x86_64__
