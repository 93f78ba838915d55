// The two-way algorithm (Crochemore and Perrin, 1991): linear time and constant space for any needle. Slower than a
// plain scan on ordinary text; it takes over where a scan meets one near match after another.
#ifndef VELAN_TEXT_SEARCH_TWO_WAY_SEARCH_INTERNAL_H
#define VELAN_TEXT_SEARCH_TWO_WAY_SEARCH_INTERNAL_H

#include <algorithm>

#include "velan/base/CTypes.h"

namespace velan {

/// A place to cut the needle, and a period: the right part's, or a safe distance for a needle without one.
struct Factorization {
  size_t cut;
  size_t period;
};

/// The greatest suffix of `needle(0)` to `needle(length - 1)` in the order `before`, and its period.
template <typename Needle, typename Before>
Factorization maximalSuffix(Needle needle, size_t length, Before before) {
  size_t start = 0, candidate = 1, matched = 0, period = 1;
  while (candidate + matched < length) {
    const unichar best = needle(start + matched);
    const unichar other = needle(candidate + matched);
    if (best == other) {
      if (++matched == period) {
        candidate += period;
        matched = 0;
      }
    } else if (before(other, best)) {
      candidate += matched + 1;
      matched = 0;
      period = candidate - start;
    } else {
      start = candidate++;
      matched = 0;
      period = 1;
    }
  }
  return {start, period};
}

/// The least position where `needle(0)` to `needle(needleLength - 1)` lies in `text(0)` to `text(length - 1)`, or
/// `length`. `needleLength` is between 1 and `length`.
template <typename Text, typename Needle>
size_t findTwoWay(Text text, size_t length, Needle needle, size_t needleLength) {
  const auto less = maximalSuffix(needle, needleLength, [](unichar a, unichar b) { return a < b; });
  const auto greater = maximalSuffix(needle, needleLength, [](unichar a, unichar b) { return a > b; });
  auto [cut, period] = less.cut > greater.cut ? less : greater;

  bool isPeriodic = cut + period <= needleLength;
  for (size_t i = 0; isPeriodic && i < cut; ++i) isPeriodic = needle(i) == needle(i + period);
  if (!isPeriodic) period = std::max(cut, needleLength - cut) + 1;

  size_t known = 0;  // units at the start of the needle that match at `position`, from the step before
  for (size_t position = 0; position <= length - needleLength;) {
    size_t i = std::max(cut, known);
    while (i < needleLength && needle(i) == text(position + i)) ++i;
    if (i < needleLength) {
      position += i - cut + 1;
      known = 0;
      continue;
    }
    i = cut;
    while (i > known && needle(i - 1) == text(position + i - 1)) --i;
    if (i <= known) return position;
    position += period;
    known = isPeriodic ? needleLength - period : 0;
  }
  return length;
}

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_TWO_WAY_SEARCH_INTERNAL_H
