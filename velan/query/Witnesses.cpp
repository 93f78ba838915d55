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

}  // namespace

Ranges smallestRanges(Ranges ranges) {
  std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) {
    return endOf(a) != endOf(b) ? endOf(a) < endOf(b) : a.location > b.location;
  });
  int64_t lastStart = -1;
  std::erase_if(ranges, [&lastStart](const Range& range) {
    if (range.location <= lastStart) return true;
    lastStart = range.location;
    return false;
  });
  return ranges;
}

Ranges largestRanges(Ranges ranges) {
  std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) {
    return a.location != b.location ? a.location < b.location : a.length > b.length;
  });
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
  Ranges hulls;
  appendHulls(a, b, hulls);
  appendHulls(b, a, hulls);
  return smallestRanges(std::move(hulls));
}

Ranges witnessesOfEither(const Ranges& a, const Ranges& b) {
  Ranges all(a);
  all.insert(all.end(), b.begin(), b.end());
  return smallestRanges(std::move(all));
}

Ranges witnessesOfRelation(const Ranges& places, const Ranges& spans, const Ranges& partner) {
  Ranges hulls;
  // The partner ends no later than the place: the last such witness begins last. If even that begins before the span,
  // all of them do.
  size_t next = 0;
  for (size_t i = 0; i < places.size(); ++i) {
    while (next < partner.size() && endOf(partner[next]) <= endOf(places[i])) ++next;
    if (next > 0 && partner[next - 1].location >= spans[i].location)
      hulls.push_back(hullOf(places[i], partner[next - 1]));
  }
  // The partner ends later: the last place that ends before it and whose span does not begin after it. If even that
  // span ends too early, all do.
  size_t ending = 0;
  size_t beginning = 0;
  for (const Range& witness : partner) {
    while (ending < places.size() && endOf(places[ending]) <= endOf(witness)) ++ending;
    while (beginning < spans.size() && spans[beginning].location <= witness.location) ++beginning;
    const size_t last = std::min(ending, beginning);
    if (last > 0 && endOf(spans[last - 1]) >= endOf(witness)) hulls.push_back(hullOf(places[last - 1], witness));
  }
  return smallestRanges(std::move(hulls));
}

}  // namespace velan
