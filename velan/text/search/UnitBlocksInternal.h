// Comparing code units a block at a time, and widening bytes to units. The loops have a fixed length and no early exit,
// so that compilers turn them into vector instructions; callers look closer only at blocks that differ.
#ifndef VELAN_TEXT_SEARCH_UNIT_BLOCKS_INTERNAL_H
#define VELAN_TEXT_SEARCH_UNIT_BLOCKS_INTERNAL_H

#include <cstring>

#include "velan/base/ASCII.h"
#include "velan/base/CTypes.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

/// A byte as a code unit, by sign extension on every machine.
constexpr unichar widened(char byte) { return static_cast<unichar>(static_cast<signed char>(byte)); }

inline constexpr size_t kBlock = 32;

inline bool equalBlocks(const unichar* a, const unichar* b) {
  unsigned different = 0;
  for (size_t i = 0; i < kBlock; ++i) different |= static_cast<unsigned>(a[i] ^ b[i]);
  return different == 0;
}

/// Bit 5 tells "a" from "A", so it does not count where the unit is an ASCII letter.
inline bool equalBlocksIgnoringAsciiCase(const unichar* a, const unichar* b) {
  uint16_t different = 0;
  for (size_t i = 0; i < kBlock; ++i) {
    const auto counted = static_cast<uint16_t>(isASCIILetter(a[i]) ? 0xFFDF : 0xFFFF);
    different = static_cast<uint16_t>(different | ((a[i] ^ b[i]) & counted));
  }
  return different == 0;
}

/// The least `i` below `length` with `units[i] == c`, or `length`.
inline size_t positionOfUnit(const unichar* units, size_t length, unichar c) {
  constexpr size_t kNear = 16;  // most distances are short
  size_t i = 0;
  for (const size_t near = length < kNear ? length : kNear; i < near; ++i) {
    if (units[i] == c) return i;
  }
  return i == length ? length : i + unitKernels().find(units + i, length - i, UnitFilter(c));
}

/// The least `i` below `length` where `differ(i)` holds, or `length`; asks only in blocks that `equal` rejects.
template <typename Equal, typename Differ>
size_t firstDifference(const unichar* a, const unichar* b, size_t length, Equal equal, Differ differ) {
  size_t i = 0;
  while (i < length) {
    const size_t left = length - i;
    if (left >= kBlock && equal(a + i, b + i)) {
      i += kBlock;
      continue;
    }
    for (const size_t end = i + (left < kBlock ? left : kBlock); i < end; ++i) {
      if (differ(i)) return i;
    }
  }
  return length;
}

/// How many units at the start of both runs are the same. The C library's `memcmp` is the fastest test for equality,
/// but does not tell where two runs differ: so it skips stretches that do not.
inline size_t commonPrefixLength(const unichar* a, const unichar* b, size_t length) {
  constexpr size_t kStretch = 512;
  size_t i = 0;
  while (length - i >= kStretch && std::memcmp(a + i, b + i, kStretch * sizeof(unichar)) == 0) i += kStretch;
  return i + firstDifference(a + i, b + i, length - i, equalBlocks, [=](size_t k) { return a[i + k] != b[i + k]; });
}

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_UNIT_BLOCKS_INTERNAL_H
