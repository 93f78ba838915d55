#include <algorithm>

#include "velan/text/PreimagesInternal.h"

namespace velan {
namespace {

constexpr size_t kMostCollected = 128;

// Ranges that hold `units`, which are in rising order, with the widest gaps between them.
UnitFilter filterOfRanges(const unichar* units, size_t count) {
  size_t gaps[UnitFilter::kMost - 1] = {};  // where the widest gaps end, the widest first; 0 for none
  const auto width = [units](size_t i) { return i == 0 ? 0 : units[i] - units[i - 1]; };
  for (size_t i = 1; i < count; ++i) {
    size_t end = i;
    if (width(end) <= width(gaps[UnitFilter::kMost - 2])) continue;
    for (size_t& gap : gaps) {
      if (width(end) > width(gap)) std::swap(end, gap);
    }
  }
  std::ranges::sort(gaps);
  UnitFilter filter(units[0]);
  filter.kind = UnitFilter::Kind::Ranges;
  size_t first = 0;
  for (size_t k = 0; k < UnitFilter::kMost; ++k) {
    const size_t end = k < std::size(gaps) ? gaps[k] : count;
    if (end == 0) continue;  // stays the first unit alone
    filter.low[k] = units[first];
    filter.span[k] = static_cast<unichar>(units[end - 1] - units[first]);
    first = end;
  }
  return filter;
}

UnitFilter filterOfAll() {
  UnitFilter filter(0);
  filter.kind = UnitFilter::Kind::Ranges;
  filter.span[0] = 0xFFFF;
  return filter;
}

}  // namespace

UnitFilter filterOfPreimages(unichar c, const unichar* table) {
  if (!table) return UnitFilter(c);
  const unichar* rings = ringsOfTable(table);
  if (!rings) return filterOfAll();
  const unichar second = rings[c];
  if (second == c) return UnitFilter(c);
  if (rings[second] == c) return UnitFilter(c, second);
  unichar units[kMostCollected];
  size_t count = 0, own = 0;
  for (unichar unit = second; unit != c; unit = rings[unit]) {  // in rising order
    if (count == kMostCollected - 1) return filterOfAll();
    own += unit < c;
    units[count++] = unit;
  }
  std::copy_backward(units + own, units + count, units + count + 1);
  units[own] = c;
  ++count;
  return filterOfRanges(units, count);
}

}  // namespace velan
