#ifdef __AARCH64EL__

#include <arm_neon.h>

#include "velan/base/utf/UTFVectorsInternal.h"

namespace velan {
namespace {

struct NEON {
  using Bytes = Lane;
  using Signed = int8_t __attribute__((vector_size(16)));
  using Units = uint16_t __attribute__((vector_size(16)));

  static uint8x16_t raw(Bytes bytes) { return reinterpret_cast<uint8x16_t>(bytes); }
  static uint16x8_t raw(Units units) { return reinterpret_cast<uint16x8_t>(units); }

  static Bytes load(const void* from) { return reinterpret_cast<Bytes>(vld1q_u8(static_cast<const uint8_t*>(from))); }
  static void store(void* to, Lane lane) { vst1q_u8(static_cast<uint8_t*>(to), raw(lane)); }
  template <int n>
  static Bytes before(Bytes now, Bytes earlier) {
    return reinterpret_cast<Bytes>(vextq_u8(raw(earlier), raw(now), 16 - n));
  }
  static Bytes lookUp(const std::array<uint8_t, 16>& table, Bytes indices) {
    return reinterpret_cast<Bytes>(vqtbl1q_u8(vld1q_u8(table.data()), raw(indices)));
  }
  static Bytes low(Bytes a, Bytes b) { return reinterpret_cast<Bytes>(vzip1q_u8(raw(a), raw(b))); }
  static Bytes high(Bytes a, Bytes b) { return reinterpret_cast<Bytes>(vzip2q_u8(raw(a), raw(b))); }
  static Units low(Units a, Units b) { return reinterpret_cast<Units>(vzip1q_u16(raw(a), raw(b))); }
  static Units high(Units a, Units b) { return reinterpret_cast<Units>(vzip2q_u16(raw(a), raw(b))); }
  static Lane lane(Bytes bytes, size_t) { return bytes; }
  static Lane shuffled(Lane lane, const std::array<uint8_t, 16>& order) {
    return reinterpret_cast<Lane>(vqtbl1q_u8(raw(lane), vld1q_u8(order.data())));
  }
  static void widen(Bytes bytes, unichar* units) {
    store(units, low(bytes, Bytes{}));
    store(units + 8, high(bytes, Bytes{}));
  }
  static void pack(Units first, Units second, char* bytes) {
    vst1q_u8(reinterpret_cast<uint8_t*>(bytes),
             vuzp1q_u8(vreinterpretq_u8_u16(raw(first)), vreinterpretq_u8_u16(raw(second))));
  }
  // Each byte keeps the bit of its place among eight; adding neighbours three times brings the bits together.
  static uint64_t bits(const Bytes (&block)[4]) {
    constexpr Bytes kPlaces = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    const uint8x16_t first = vpaddq_u8(raw(block[0] & kPlaces), raw(block[1] & kPlaces));
    const uint8x16_t second = vpaddq_u8(raw(block[2] & kPlaces), raw(block[3] & kPlaces));
    const uint8x16_t four = vpaddq_u8(first, second);
    return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(four, four)), 0);
  }
  static uint32_t unitBits(const Units (&block)[4]) {
    constexpr Bytes kPlaces = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    const auto narrowed = [&](size_t i) {
      const uint8x16_t bytes = vuzp1q_u8(vreinterpretq_u8_u16(raw(block[i])), vreinterpretq_u8_u16(raw(block[i + 1])));
      return vandq_u8(bytes, raw(kPlaces));
    };
    const uint8x16_t pairs = vpaddq_u8(narrowed(0), narrowed(2));
    const uint8x16_t fours = vpaddq_u8(pairs, pairs);
    return vgetq_lane_u32(vreinterpretq_u32_u8(vpaddq_u8(fours, fours)), 0);
  }
  static bool any(Bytes bytes) { return vmaxvq_u8(raw(bytes)) != 0; }
  static bool anyHighest(Bytes bytes) { return vmaxvq_u8(raw(bytes)) >= 0x80; }
};

}  // namespace

Transcoded beginUTF16Neon(const uint8_t* bytes, size_t length, unichar* units) {
  return FromUTF8<NEON>::begin(bytes, length, units);
}

Transcoded beginUTF8Neon(const unichar* units, size_t length, char* bytes) {
  return FromUTF16<NEON>::begin(units, length, bytes);
}

}  // namespace velan
#endif  // __AARCH64EL__
