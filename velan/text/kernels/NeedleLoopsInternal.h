// Finding, counting and gathering the head of a needle: its probes in vectors, then the rest unit by unit.
#ifndef VELAN_TEXT_KERNELS_NEEDLE_LOOPS_INTERNAL_H
#define VELAN_TEXT_KERNELS_NEEDLE_LOOPS_INTERNAL_H

#include <cstring>

#include "velan/text/kernels/NeedleTestsInternal.h"
#include "velan/text/kernels/PositionLoopsInternal.h"

namespace velan {
namespace {

/// How many units at the start are the same, in steps of four; `length` if all are.
inline size_t sameUnits(const unichar* a, const unichar* b, size_t length) {
  size_t i = 0;
  for (; length - i >= 4; i += 4) {
    if (std::memcmp(a + i, b + i, 4 * sizeof(unichar)) != 0) return i;  // compiled to a comparison of two numbers
  }
  if (length >= 4 && std::memcmp(a + length - 4, b + length - 4, 4 * sizeof(unichar)) == 0) return length;
  while (i < length && a[i] == b[i]) ++i;
  return i;
}

/// The same of mapped units; the last one, which mostly lies far from the probes, is looked at before the others.
inline size_t sameMappedUnits(const unichar* text, const unichar* needle, size_t length, const unichar* table) {
  if (table[text[length - 1]] != needle[length - 1]) return 0;
  size_t i = 0;
  while (i < length && table[text[i]] == needle[i]) ++i;
  return i;
}

/// Looks closer where the probes of a head are.
template <bool hasTable>
class HeadMatcher {
 public:
  HeadMatcher(const unichar* text, const NeedleHead& head) : _text(text), _head(head) {}

  /// Whether the head lies at `position`. Positions come in rising order.
  bool matches(size_t position) {
    const size_t same = hasTable ? sameMappedUnits(_text + position, _head.units, _head.length, _head.table)
                                 : sameUnits(_text + position, _head.units, _head.length);
    if (same == _head.length) return true;
    _compared += same + 1;
    // A scan stays ahead of searches that need no luck while it compares no more than a few units per position.
    gaveUp = _compared / 4 > position + 1024;
    return false;
  }

  bool gaveUp = false;

 private:
  const unichar* _text;
  const NeedleHead& _head;
  size_t _compared = 0;
};

template <typename V, typename Test, bool hasTable>
NeedlePosition findHeadBy(const unichar* text, size_t positions, const NeedleHead& head) {
  if (head.tellsAll) return {firstWhere<V>(0, positions, Test{text, head}, kAny), false};
  HeadMatcher<hasTable> matcher(text, head);
  const size_t found = firstWhere<V>(0, positions, Test{text, head},
                                     [&](size_t position) { return matcher.matches(position) || matcher.gaveUp; });
  return {found, matcher.gaveUp};
}

template <typename V, typename Test, bool hasTable>
NeedleCount countHeadBy(const unichar* text, size_t positions, const NeedleHead& head) {
  if (head.tellsAll) return {countWhere<V>(0, positions, Test{text, head}), {positions, false}};
  HeadMatcher<hasTable> matcher(text, head);
  size_t count = 0, next = 0;
  forEachWhere<V>(positions, Test{text, head}, [&](size_t position) {
    if (position >= next && matcher.matches(position)) {
      ++count;
      next = position + head.length;
    }
    return matcher.gaveUp;
  });
  return {count, {next, matcher.gaveUp}};
}

template <typename V, typename Test, bool hasTable>
NeedlePositions gatherHeadBy(const unichar* text, size_t positions, const NeedleHead& head, unichar* found,
                             size_t most) {
  NeedlePositions gathered = gatherWhere<V>(0, positions, Test{text, head}, found, 0, most);
  if (head.tellsAll || head.telling == NeedleHead::Telling::ProbesOnly) return gathered;
  size_t count = 0;
  for (size_t k = 0; k < gathered.count; ++k) {
    const unichar position = found[k];
    found[count] = position;
    count += (hasTable ? sameMappedUnits(text + position, head.units, head.length, head.table)
                       : sameUnits(text + position, head.units, head.length)) == head.length;
  }
  return {count, gathered.end};
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_NEEDLE_LOOPS_INTERNAL_H
