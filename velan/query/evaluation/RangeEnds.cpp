#include <algorithm>
#include <limits>

#include "velan/query/evaluation/RangeEndsInternal.h"

namespace velan {
namespace {

// Boundary 2k begins run k, boundary 2k + 1 ends it: behind an odd number of boundaries lies a run.
int64_t boundaryOf(const RangeEnds& ends, size_t index) {
  if (index / 2 >= ends.size()) return std::numeric_limits<int64_t>::max();
  return index % 2 == 0 ? ends[index / 2].first : ends[index / 2].past;
}

// Where `combine` of the two memberships is true; it must be false where both are.
template <typename Combine>
RangeEnds combined(const RangeEnds& a, const RangeEnds& b, Combine combine) {
  RangeEnds result;
  size_t inA = 0, inB = 0;
  bool isIn = false;
  int64_t first = 0;
  while (inA < 2 * a.size() || inB < 2 * b.size()) {
    const int64_t boundary = std::min(boundaryOf(a, inA), boundaryOf(b, inB));
    if (boundaryOf(a, inA) == boundary) ++inA;
    if (boundaryOf(b, inB) == boundary) ++inB;
    const bool isInNow = combine(inA % 2 != 0, inB % 2 != 0);
    if (isInNow && !isIn) first = boundary;
    if (!isInNow && isIn) result.push_back({first, boundary});
    isIn = isInNow;
  }
  return result;
}

}  // namespace

RangeEnds endsFromTo(int64_t first, int64_t last) { return first <= last ? RangeEnds{{first, last + 1}} : RangeEnds{}; }

bool containsEnd(const RangeEnds& ends, int64_t end) {
  const auto run = std::partition_point(ends.begin(), ends.end(), [end](const EndRun& r) { return r.past <= end; });
  return run != ends.end() && run->first <= end;
}

void appendEnds(RangeEnds& ends, EndRun run) {
  if (!ends.empty() && ends.back().past >= run.first) {
    ends.back().past = std::max(ends.back().past, run.past);
  } else if (run.first < run.past) {
    ends.push_back(run);
  }
}

RangeEnds endsInBoth(const RangeEnds& a, const RangeEnds& b) {
  return combined(a, b, [](bool inA, bool inB) { return inA && inB; });
}

RangeEnds endsInEither(const RangeEnds& a, const RangeEnds& b) {
  return combined(a, b, [](bool inA, bool inB) { return inA || inB; });
}

RangeEnds endsInOne(const RangeEnds& a, const RangeEnds& b) {
  return combined(a, b, [](bool inA, bool inB) { return inA != inB; });
}

void labelRun(LabelledRuns& runs, EndRun run, int64_t label) {
  auto next = runs.lower_bound(run.first);
  if (next != runs.begin()) {
    LabelledRun& before = std::prev(next)->second;
    if (before.past > run.past) runs.emplace(run.past, before);
    before.past = std::min(before.past, run.first);
  }
  while (next != runs.end() && next->first < run.past) {
    if (next->second.past > run.past) runs.emplace(run.past, next->second);
    next = runs.erase(next);
  }
  runs.emplace(run.first, LabelledRun{run.past, label});
}

}  // namespace velan
