#include <algorithm>

#include "velan/query/WitnessesInternal.h"

namespace velan {
namespace {

Range hullOf(const Range& a, const Range& b) {
  const int64_t start = std::min(a.location, b.location);
  return {start, std::max(endOf(a), endOf(b)) - start};
}

// For each range of `a` the pair with the last range of `b` that ends no later: of all such ranges that one begins
// last, so the pair's hull is the smallest.
void appendHulls(const Ranges& a, const Ranges& b, Ranges& hulls) {
  size_t next = 0;
  for (const Range& range : a) {
    while (next < b.size() && endOf(b[next]) <= endOf(range)) ++next;
    if (next > 0) hulls.push_back(hullOf(range, b[next - 1]));
  }
}

// Both lists in order of their ends, without the ranges that contain another one.
Ranges smallestOf(const Ranges& a, const Ranges& b) {
  Ranges all(a.size() + b.size());
  std::merge(a.begin(), a.end(), b.begin(), b.end(), all.begin(), [](const Range& x, const Range& y) {
    return endOf(x) != endOf(y) ? endOf(x) < endOf(y) : x.location > y.location;
  });
  int64_t lastStart = -1;
  std::erase_if(all, [&lastStart](const Range& range) {
    if (range.location <= lastStart) return true;
    lastStart = range.location;
    return false;
  });
  return all;
}

}  // namespace

Ranges largestRanges(Ranges ranges) {
  std::sort(ranges.begin(), ranges.end(), rangePrecedes);
  int64_t reached = -1;
  std::erase_if(ranges, [&reached](const Range& range) {
    if (endOf(range) <= reached) return true;
    reached = endOf(range);
    return false;
  });
  return ranges;
}

bool holdsWithin(const Ranges& witnesses, Range range) {
  const auto first = std::partition_point(witnesses.begin(), witnesses.end(),
                                          [range](const Range& witness) { return witness.location < range.location; });
  return first != witnesses.end() && endOf(*first) <= endOf(range);
}

Ranges witnessesOfBoth(const Ranges& a, const Ranges& b) {
  Ranges endingWithA;
  Ranges endingWithB;
  appendHulls(a, b, endingWithA);
  appendHulls(b, a, endingWithB);
  return smallestOf(endingWithA, endingWithB);
}

Ranges witnessesOfEither(const Ranges& a, const Ranges& b) { return smallestOf(a, b); }

Ranges witnessesOfRelation(const Ranges& places, const Ranges& spans, const Ranges& partner) {
  Ranges endingWithPlace;
  // The partner ends no later than the place: the last such witness begins last. If even that begins before the span,
  // all of them do.
  size_t next = 0;
  for (size_t i = 0; i < places.size(); ++i) {
    while (next < partner.size() && endOf(partner[next]) <= endOf(places[i])) ++next;
    if (next == 0 || partner[next - 1].location < spans[i].location) continue;
    endingWithPlace.push_back(hullOf(places[i], partner[next - 1]));
  }
  // The partner ends later: the last place that ends before it and whose span does not begin after it. If even that
  // span ends too early, all do.
  Ranges endingWithPartner;
  size_t ending = 0;
  size_t beginning = 0;
  for (const Range& witness : partner) {
    while (ending < places.size() && endOf(places[ending]) <= endOf(witness)) ++ending;
    while (beginning < spans.size() && spans[beginning].location <= witness.location) ++beginning;
    const size_t last = std::min(ending, beginning);
    if (last == 0 || endOf(spans[last - 1]) < endOf(witness)) continue;
    endingWithPartner.push_back(hullOf(places[last - 1], witness));
  }
  return smallestOf(endingWithPlace, endingWithPartner);
}

}  // namespace velan
