// Sets of places where ranges end, as runs.
#ifndef VELAN_QUERY_EVALUATION_RANGE_ENDS_INTERNAL_H
#define VELAN_QUERY_EVALUATION_RANGE_ENDS_INTERNAL_H

#include <cstdint>
#include <map>
#include <vector>

namespace velan {

/// The ends from `first` up to, but not including, `past`; never empty.
struct EndRun {
  int64_t first;
  int64_t past;
};

/// Runs in order that neither overlap nor touch.
using RangeEnds = std::vector<EndRun>;

/// The ends from `first` to `last`, both included; none when `last` is smaller.
RangeEnds endsFromTo(int64_t first, int64_t last);
bool containsEnd(const RangeEnds& ends, int64_t end);
/// Appends what lies behind the runs already there; a run that touches the last one extends it.
void appendEnds(RangeEnds& ends, EndRun run);

RangeEnds endsInBoth(const RangeEnds& a, const RangeEnds& b);
RangeEnds endsInEither(const RangeEnds& a, const RangeEnds& b);
/// The ends in one of the two but not in both; with all ends there are as the other one, the complement.
RangeEnds endsInOne(const RangeEnds& a, const RangeEnds& b);

struct LabelledRun {
  int64_t past;
  int64_t label;
};

/// Runs by their beginnings that do not overlap, each with what it was labelled last.
using LabelledRuns = std::map<int64_t, LabelledRun>;

/// Labels a run, which is not empty, whatever label parts of it had.
void labelRun(LabelledRuns& runs, EndRun run, int64_t label);

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_RANGE_ENDS_INTERNAL_H
