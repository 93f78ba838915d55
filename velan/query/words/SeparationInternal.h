// The one loop that splits units at separators.
#ifndef VELAN_QUERY_WORDS_SEPARATION_INTERNAL_H
#define VELAN_QUERY_WORDS_SEPARATION_INTERNAL_H

#include <string_view>

#include "velan/base/Range.h"
#include "velan/text/CharacterSets.h"

namespace velan {

/// Hands over each longest run of units that are not in `separators` until `handle(range)` returns true, and returns
/// how many it handed over before that.
template <class Handle>
int64_t enumerateRuns(std::u16string_view units, const uint8_t* separators, Handle handle) {
  int64_t count = 0;
  for (size_t i = 0; i < units.size(); ++i) {
    if (isMemberOfCharacterSetRep(separators, units[i])) continue;
    const size_t start = i;
    while (i < units.size() && !isMemberOfCharacterSetRep(separators, units[i])) ++i;
    if (handle(Range{static_cast<int64_t>(start), static_cast<int64_t>(i - start)})) break;
    ++count;
  }
  return count;
}

/// The run that `index`, which lies inside the units and is not in `separators`, belongs to.
inline Range runAround(std::u16string_view units, const uint8_t* separators, int64_t index) {
  auto start = static_cast<size_t>(index);
  size_t end = start;
  while (start > 0 && !isMemberOfCharacterSetRep(separators, units[start - 1])) --start;
  while (end < units.size() && !isMemberOfCharacterSetRep(separators, units[end])) ++end;
  return {static_cast<int64_t>(start), static_cast<int64_t>(end - start)};
}

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_SEPARATION_INTERNAL_H
