// Witnesses: the smallest ranges in which something holds.
//
// Where a part of a query has no negation and no exclusive or, it holds in a range exactly when it holds in some part
// of that range. Then the smallest ranges in which it holds tell everything, and "does it hold in this span?" is a
// search in a sorted list instead of an evaluation. No witness contains another, so both their beginnings and ends
// grow.
#ifndef VELAN_QUERY_WITNESSES_INTERNAL_H
#define VELAN_QUERY_WITNESSES_INTERNAL_H

#include <vector>

#include "velan/base/Range.h"

namespace velan {

using Ranges = std::vector<Range>;

/// The ranges in order, without those that another one contains.
Ranges largestRanges(Ranges ranges);

/// Whether any witness lies in `range`.
bool holdsWithin(const Ranges& witnesses, Range range);
/// The witnesses of "a and b".
Ranges witnessesOfBoth(const Ranges& a, const Ranges& b);
/// The witnesses of "a or b".
Ranges witnessesOfEither(const Ranges& a, const Ranges& b);
/// The witnesses of a proximity term: `places` are its occurrences, `spans[i]` is the span of `places[i]`, and
/// `partner` are the witnesses of its partner, one of which has to lie in a span.
Ranges witnessesOfRelation(const Ranges& places, const Ranges& spans, const Ranges& partner);

}  // namespace velan

#endif  // VELAN_QUERY_WITNESSES_INTERNAL_H
