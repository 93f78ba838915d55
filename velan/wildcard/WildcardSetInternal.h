// How one unit goes through a set of a wildcard pattern.
#ifndef VELAN_WILDCARD_WILDCARD_SET_INTERNAL_H
#define VELAN_WILDCARD_WILDCARD_SET_INTERNAL_H

#include <algorithm>
#include <cstddef>

#include "velan/base/CTypes.h"

namespace velan {

/// Where the pattern goes on after an element that accepts the unit, null when it does not.
struct WildcardStep {
  const unichar* next;
  bool dependsOnText;  // another unit might have ended the set elsewhere
  ptrdiff_t cost;      // how many units of the pattern were looked at
};

/// `p` is at a set's `[`. Behind a member that matches, the pattern goes on after the next `]`.
inline WildcardStep stepOverSet(const unichar* p, const unichar* end, unichar c) {
  const unichar* const open = p;
  const auto step = [&](const unichar* next, bool dependsOnText) {
    return WildcardStep{next, dependsOnText, std::max(p, next) - open};
  };
  if (++p == end) return step(nullptr, false);
  const bool isNegated = *p == '^';
  if (isNegated) ++p;
  bool dependsOnText = false;
  while (p < end) {
    const unichar member = *p++;
    bool matches = false;
    if (member == ']') break;
    if (member != '-') {
      matches = member == c && c != '|';
    } else if (p < end) {
      matches = p[-2] <= c && c <= *p;
      dependsOnText = dependsOnText || *p == ']';
      ++p;
    }
    if (!matches) continue;
    if (isNegated) return step(nullptr, false);
    const unichar* const close = std::find(p, end, u']');
    if (close == end) return step(end, dependsOnText);
    return step(close + 1, dependsOnText || close[-1] == '-');
  }
  return isNegated ? step(p, dependsOnText) : step(nullptr, false);
}

}  // namespace velan

#endif  // VELAN_WILDCARD_WILDCARD_SET_INTERNAL_H
