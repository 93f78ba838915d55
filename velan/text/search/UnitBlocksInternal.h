// Looking for one code unit that is mostly near, and widening bytes to units.
#ifndef VELAN_TEXT_SEARCH_UNIT_BLOCKS_INTERNAL_H
#define VELAN_TEXT_SEARCH_UNIT_BLOCKS_INTERNAL_H

#include "velan/base/CTypes.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

/// A byte as a code unit, by sign extension on every machine.
constexpr unichar widened(char byte) { return static_cast<unichar>(static_cast<signed char>(byte)); }

/// The least `i` below `length` with `units[i] == c`, or `length`.
inline size_t positionOfUnit(const unichar* units, size_t length, unichar c) {
  constexpr size_t kNear = 16;  // most distances are short
  size_t i = 0;
  for (const size_t near = length < kNear ? length : kNear; i < near; ++i) {
    if (units[i] == c) return i;
  }
  return i == length ? length : i + unitKernels().find(units + i, length - i, UnitFilter(c));
}

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_UNIT_BLOCKS_INTERNAL_H
