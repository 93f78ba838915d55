#ifdef __x86_64__

#include <immintrin.h>

#include "velan/base/utf/UTFVectorsInternal.h"

namespace velan {
namespace {

struct SSE4 {
  using Bytes = Lane;
  using Signed = int8_t __attribute__((vector_size(16)));
  using Units = uint16_t __attribute__((vector_size(16)));

  static __m128i raw(Bytes bytes) { return reinterpret_cast<__m128i>(bytes); }
  static __m128i raw(Units units) { return reinterpret_cast<__m128i>(units); }

  static Bytes load(const void* from) {
    return reinterpret_cast<Bytes>(_mm_loadu_si128(static_cast<const __m128i*>(from)));
  }
  static void store(void* to, Lane lane) { _mm_storeu_si128(static_cast<__m128i*>(to), raw(lane)); }
  template <int n>
  static Bytes before(Bytes now, Bytes earlier) {
    return reinterpret_cast<Bytes>(_mm_alignr_epi8(raw(now), raw(earlier), 16 - n));
  }
  static Bytes lookUp(const std::array<uint8_t, 16>& table, Bytes indices) {
    return shuffled(load(table.data()), indices);
  }
  static Bytes low(Bytes a, Bytes b) { return reinterpret_cast<Bytes>(_mm_unpacklo_epi8(raw(a), raw(b))); }
  static Bytes high(Bytes a, Bytes b) { return reinterpret_cast<Bytes>(_mm_unpackhi_epi8(raw(a), raw(b))); }
  static Units low(Units a, Units b) { return reinterpret_cast<Units>(_mm_unpacklo_epi16(raw(a), raw(b))); }
  static Units high(Units a, Units b) { return reinterpret_cast<Units>(_mm_unpackhi_epi16(raw(a), raw(b))); }
  static Lane lane(Bytes bytes, size_t) { return bytes; }
  static Lane shuffled(Lane lane, Bytes order) {
    return reinterpret_cast<Lane>(_mm_shuffle_epi8(raw(lane), raw(order)));
  }
  static Lane shuffled(Lane lane, const std::array<uint8_t, 16>& order) { return shuffled(lane, load(order.data())); }
  static void widen(Bytes bytes, unichar* units) {
    store(units, low(bytes, Bytes{}));
    store(units + 8, high(bytes, Bytes{}));
  }
  static void pack(Units first, Units second, char* bytes) {
    store(bytes, reinterpret_cast<Bytes>(_mm_packus_epi16(raw(first), raw(second))));
  }
  static uint64_t bits(Bytes bytes) { return static_cast<uint32_t>(_mm_movemask_epi8(raw(bytes))); }
  static uint64_t bits(const Bytes (&block)[4]) {
    return bits(block[0]) | bits(block[1]) << 16 | bits(block[2]) << 32 | bits(block[3]) << 48;
  }
  static uint32_t unitBits(const Units (&block)[4]) {
    const __m128i first = _mm_packs_epi16(raw(block[0]), raw(block[1]));
    const __m128i second = _mm_packs_epi16(raw(block[2]), raw(block[3]));
    return static_cast<uint32_t>(_mm_movemask_epi8(first)) | static_cast<uint32_t>(_mm_movemask_epi8(second)) << 16;
  }
  static bool any(Bytes bytes) { return !_mm_testz_si128(raw(bytes), raw(bytes)); }
  static bool anyHighest(Bytes bytes) { return bits(bytes) != 0; }
};

}  // namespace

Transcoded beginUTF16Sse4(const uint8_t* bytes, size_t length, unichar* units) {
  return FromUTF8<SSE4>::begin(bytes, length, units);
}

Transcoded beginUTF8Sse4(const unichar* units, size_t length, char* bytes) {
  return FromUTF16<SSE4>::begin(units, length, bytes);
}

}  // namespace velan
#endif  // __x86_64__
