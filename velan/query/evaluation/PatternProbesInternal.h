// What a text is searched for where a pattern has few units in a row, but sets and `?` between or beside them.
#ifndef VELAN_QUERY_EVALUATION_PATTERN_PROBES_INTERNAL_H
#define VELAN_QUERY_EVALUATION_PATTERN_PROBES_INTERNAL_H

#include <string_view>

#include "velan/query/evaluation/SearchedTextInternal.h"

namespace velan {

/// A run of a pattern, each of whose elements stands for one unit, with those elements that tell most.
struct ProbedRun {
  std::u16string_view units;  // of the pattern; empty for none
  NeedleHead head;            // to be gathered only: it says nothing of the other elements
  unsigned tells = 0;         // about how many bits the probes say
  bool isAll = false;         // of the pattern but for `*` at its ends
};

/// The first element of a pattern that is not empty: a unit, `?`, `*` or a set; empty for a set without an end.
inline std::u16string_view firstElement(std::u16string_view pattern) {
  if (pattern.front() != u'[') return pattern.substr(0, 1);
  const size_t close = pattern.find(u']');
  return close == pattern.npos ? std::u16string_view() : pattern.substr(0, close + 1);
}

/// Calls `handle(element)` for each.
template <typename Handle>
void forEachElement(std::u16string_view pattern, Handle handle) {
  for (std::u16string_view element; !pattern.empty(); pattern.remove_prefix(element.size())) {
    element = firstElement(pattern);
    if (element.empty()) return;
    handle(element);
  }
}

/// The run of `pattern`, which is mapped through `table` (null for none), that tells most. Sets are looked at with
/// `hasSets`; without, brackets must not be in it.
ProbedRun mostTellingRun(std::u16string_view pattern, bool hasSets, const unichar* table);

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_PATTERN_PROBES_INTERNAL_H
