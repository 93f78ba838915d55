// One sequence of UTF-8 at a time, for what works on single characters.
#ifndef VELAN_BASE_UTF_UTF_INTERNAL_H
#define VELAN_BASE_UTF_UTF_INTERNAL_H

#include <cstddef>
#include <cstdint>

#include "velan/base/ByteOrder.h"
#include "velan/base/CTypes.h"

namespace velan {

/// `length` is the length of the sequence when it is valid, else of the maximal malformed part.
struct UTF8Sequence {
  uint32_t codePoint;
  uint8_t length;
  bool valid;
  bool truncated;  // malformed only because nothing follows
};

/// The sequence at `bytes`, of which `available` (at least one) may be looked at; for an ASCII byte too.
inline UTF8Sequence decodeUTF8Sequence(const uint8_t* bytes, size_t available) {
  const uint8_t lead = bytes[0];
  if (lead < 0x80) return {lead, 1, true, false};
  if (lead < 0xC2 || lead > 0xF4) return {0, 1, false, false};
  const uint8_t count = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The second byte's limits exclude overlong forms, surrogates and values above U+10FFFF.
  uint8_t low = 0x80;
  uint8_t high = 0xBF;
  if (lead == 0xE0) low = 0xA0;
  if (lead == 0xED) high = 0x9F;
  if (lead == 0xF0) low = 0x90;
  if (lead == 0xF4) high = 0x8F;
  uint32_t codePoint = lead & (0xFFu >> (count + 1));
  for (uint8_t i = 1; i < count; ++i) {
    if (i >= available) return {0, i, false, true};
    if (bytes[i] < low || bytes[i] > high) return {0, i, false, false};
    codePoint = (codePoint << 6) | (bytes[i] & 0x3Fu);
    low = 0x80;
    high = 0xBF;
  }
  return {codePoint, count, true, false};
}

/// Writes one or two units; returns how many.
inline size_t putUTF16(uint32_t codePoint, unichar* units) {
  if (codePoint < 0x10000) {
    units[0] = static_cast<unichar>(codePoint);
    return 1;
  }
  units[0] = static_cast<unichar>(0xD7C0 + (codePoint >> 10));
  units[1] = static_cast<unichar>(0xDC00 + (codePoint & 0x3FF));
  return 2;
}

/// The bytes of a unit from U+0080 up, of one from U+0800 up, and of a pair.
inline void putTwoBytes(unichar unit, char* bytes) {
  storeBigEndian(bytes, static_cast<uint16_t>(0xC080 | (unit & 0x7C0) << 2 | (unit & 0x3F)));
}
inline void putThreeBytes(unichar unit, char* bytes) {
  bytes[0] = static_cast<char>(0xE0 | unit >> 12);
  storeBigEndian(bytes + 1, static_cast<uint16_t>(0x8080 | (unit & 0xFC0) << 2 | (unit & 0x3F)));
}
inline void putFourBytes(unichar high, unichar low, char* bytes) {
  const uint32_t codePoint = 0x10000u + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
  storeBigEndian(bytes, 0xF0808080u | (codePoint & 0x1C0000) << 6 | (codePoint & 0x3F000) << 4 |
                            (codePoint & 0xFC0) << 2 | (codePoint & 0x3F));
}

}  // namespace velan

#endif  // VELAN_BASE_UTF_UTF_INTERNAL_H
