// Sets of ranges, as columns.
#ifndef VELAN_QUERY_EVALUATION_RANGE_COLUMNS_INTERNAL_H
#define VELAN_QUERY_EVALUATION_RANGE_COLUMNS_INTERNAL_H

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "velan/query/evaluation/QueryEvaluatorInternal.h"
#include "velan/query/evaluation/RangeEndsInternal.h"

namespace velan {

/// Ranges with one beginning whose ends stand side by side in a list of ends.
struct RangeColumn {
  int64_t start;
  size_t list;
  size_t first, past;
};

/// Spans that overlap clip each other in about as many ways as there are pairs of them, but what clips all of some
/// neighbours at one place is one column.
class RangeColumns {
 public:
  using List = std::shared_ptr<const std::vector<int64_t>>;

  RangeColumns() = default;
  explicit RangeColumns(Range range);
  /// No columns yet, on the same lists.
  static RangeColumns onListsOf(const RangeColumns& other);

  /// Takes ends that never shrink, and returns the number of the list.
  size_t addList(std::vector<int64_t> ends);
  /// Adds a column unless it is empty.
  void add(int64_t start, size_t list, size_t first, size_t past);
  /// Adds the part of a column whose ends lie in a run.
  void addWithin(const RangeColumn& column, EndRun run);
  /// Adds all columns of `others`, which are on the same lists.
  void addAll(const RangeColumns& others);
  /// To be called when all is added: brings columns in order, and those that touch together.
  void sort();
  /// The same, and forgets unused ends: lists and ends have other numbers then.
  void finish();
  /// Keeps of each column the largest range, unless one that begins before it reaches as far. They must be in order.
  void keepLargest();

  bool isEmpty() const { return _columns.empty(); }
  const std::vector<List>& lists() const { return _lists; }
  /// By their starts.
  const std::vector<RangeColumn>& columns() const { return _columns; }
  int64_t lastEndOf(const RangeColumn& column) const { return (*_lists[column.list])[column.past - 1]; }
  /// The ranges in order that no other one contains.
  Ranges largest() const;

 private:
  void forgetUnusedEnds();

  std::vector<List> _lists;
  std::vector<RangeColumn> _columns;
};

/// The ends of those columns whose starts were passed.
class PassedEnds {
 public:
  /// Borrows.
  explicit PassedEnds(const RangeColumns& ranges) : _ranges(ranges), _runs(ranges.lists().size()) {}

  /// Passes the columns that begin at or before `start`; it never shrinks.
  void pass(int64_t start);
  /// The last of the ends, -1 for none.
  int64_t last() const { return _last; }
  /// Adds to `columns` ranges from `start` to each of the ends in a run.
  void addWithin(EndRun run, int64_t start, RangeColumns& columns) const;

 private:
  void add(const RangeColumn& column);

  const RangeColumns& _ranges;
  size_t _next = 0;
  int64_t _last = -1;
  std::vector<std::map<size_t, size_t>> _runs;  // of each list, apart from each other
};

/// Which ranges begin and end where, asked from left to right.
class PassedStarts {
 public:
  /// Borrows columns in order; those on `leftOut`, the number of a list, do not count.
  PassedStarts(const RangeColumns& ranges, size_t leftOut)
      : _ranges(ranges), _leftOut(leftOut), _runs(ranges.lists().size()) {}

  /// Whether any range begins from `first` to `last`, both included, and ends in `ends`. Nothing may be smaller than it
  /// was when this was called before.
  bool hasAny(int64_t first, int64_t last, EndRun ends);

 private:
  static bool hasAny(LabelledRuns& runs, int64_t start, EndRun numbers);

  const RangeColumns& _ranges;
  const size_t _leftOut;
  size_t _next = 0;
  std::vector<LabelledRuns> _runs;  // of each list: the numbers of ends, with the last beginning of a range with them
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_RANGE_COLUMNS_INTERNAL_H
