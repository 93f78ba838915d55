// How one unit goes through a set of a wildcard pattern.
#ifndef VELAN_WILDCARD_WILDCARD_SET_INTERNAL_H
#define VELAN_WILDCARD_WILDCARD_SET_INTERNAL_H

#include <algorithm>

#include "velan/base/CTypes.h"

namespace velan {

/// Where the pattern goes on after an element that accepts the unit, null when it does not.
struct WildcardStep {
  const unichar* next;
  bool dependsOnText;  // another unit might have ended the set elsewhere
};

/// Behind a member that matches, the pattern goes on after the next `]`.
inline WildcardStep stepOverRest(const unichar* p, const unichar* end, bool dependsOnText) {
  const unichar* close = std::find(p, end, u']');
  if (close == end) return {end, dependsOnText};
  return {close + 1, dependsOnText || close[-1] == '-'};
}

/// `p` is at a set's `[`.
inline WildcardStep stepOverSet(const unichar* p, const unichar* end, unichar c) {
  constexpr WildcardStep kFails{nullptr, false};
  if (++p == end) return kFails;
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
    if (matches) return isNegated ? kFails : stepOverRest(p, end, dependsOnText);
  }
  return isNegated ? WildcardStep{p, dependsOnText} : kFails;
}

}  // namespace velan

#endif  // VELAN_WILDCARD_WILDCARD_SET_INTERNAL_H
