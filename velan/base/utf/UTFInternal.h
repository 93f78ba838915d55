// One sequence of UTF-8 at a time: for converters that stop anywhere.
#ifndef VELAN_BASE_UTF_UTF_INTERNAL_H
#define VELAN_BASE_UTF_UTF_INTERNAL_H

#include <cstddef>
#include <cstdint>

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

}  // namespace velan

#endif  // VELAN_BASE_UTF_UTF_INTERNAL_H
