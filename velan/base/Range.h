// Arithmetic on ranges of code units or bytes.
#ifndef VELAN_BASE_RANGE_H
#define VELAN_BASE_RANGE_H

#include "velan/base/CTypes.h"

namespace velan {

inline constexpr Range kAbsentRange{NSNotFound, 0};

constexpr bool operator==(const Range& a, const Range& b) { return a.location == b.location && a.length == b.length; }

/// True unless `range` is absent.
constexpr bool isPresent(const Range& range) { return range.location != NSNotFound; }

/// One past the last position. Only for ranges that lie inside a buffer.
constexpr int64_t endOf(const Range& range) { return range.location + range.length; }

/// The order of places in a text: by location, the longer first.
constexpr bool rangePrecedes(const Range& a, const Range& b) {
  return a.location != b.location ? a.location < b.location : a.length > b.length;
}

/// The part of `range` inside `[0, length)`: a negative location counts as 0 (the length is kept), what lies beyond
/// `length` is cut off. A range that starts at or beyond `length`, or an absent one, becomes `{length, 0}`.
constexpr Range clippedRange(const Range& range, int64_t length) {
  const int64_t start = range.location < 0 ? 0 : range.location < length ? range.location : length;
  const int64_t rest = length - start;
  return {start, range.length < 0 ? 0 : range.length < rest ? range.length : rest};
}

}  // namespace velan

#endif  // VELAN_BASE_RANGE_H
