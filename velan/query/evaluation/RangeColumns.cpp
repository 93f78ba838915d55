#include <algorithm>
#include <tuple>
#include <utility>

#include "velan/query/evaluation/RangeColumnsInternal.h"

namespace velan {
namespace {

// Of the ends from number `first` to `past`, the number of the first one at or after `end`.
size_t numberFrom(const std::vector<int64_t>& ends, size_t first, size_t past, int64_t end) {
  const auto begin = ends.begin();
  return static_cast<size_t>(
      std::lower_bound(begin + static_cast<ptrdiff_t>(first), begin + static_cast<ptrdiff_t>(past), end) - begin);
}

}  // namespace

RangeColumns::RangeColumns(Range range) { add(range.location, addList({endOf(range)}), 0, 1); }

RangeColumns RangeColumns::onListsOf(const RangeColumns& other) {
  RangeColumns result;
  result._lists = other._lists;
  return result;
}

size_t RangeColumns::addList(std::vector<int64_t> ends) {
  _lists.push_back(std::make_shared<const std::vector<int64_t>>(std::move(ends)));
  return _lists.size() - 1;
}

void RangeColumns::add(int64_t start, size_t list, size_t first, size_t past) {
  if (first < past) _columns.push_back({start, list, first, past});
}

void RangeColumns::addWithin(const RangeColumn& column, EndRun run) {
  const auto& ends = *_lists[column.list];
  const size_t first = numberFrom(ends, column.first, column.past, run.first);
  add(column.start, column.list, first, numberFrom(ends, first, column.past, run.past));
}

void RangeColumns::addAll(const RangeColumns& others) {
  _columns.insert(_columns.end(), others._columns.begin(), others._columns.end());
}

void RangeColumns::sort() {
  std::sort(_columns.begin(), _columns.end(), [](const RangeColumn& a, const RangeColumn& b) {
    return std::tie(a.start, a.list, a.first) < std::tie(b.start, b.list, b.first);
  });
  size_t kept = 0;
  for (const RangeColumn& column : _columns) {
    RangeColumn* last = kept > 0 ? &_columns[kept - 1] : nullptr;
    if (last && last->start == column.start && last->list == column.list && column.first <= last->past) {
      last->past = std::max(last->past, column.past);
    } else {
      _columns[kept++] = column;
    }
  }
  _columns.resize(kept);
}

void RangeColumns::finish() {
  sort();
  forgetUnusedEnds();
}

void RangeColumns::keepLargest() {
  int64_t reached = -1;
  std::erase_if(_columns, [&](RangeColumn& column) {
    const int64_t last = lastEndOf(column);
    column.first = column.past - 1;
    return last <= std::exchange(reached, std::max(reached, last));
  });
}

// So that columns which leave out the same ends do not come apart there, and lists do not gather.
void RangeColumns::forgetUnusedEnds() {
  std::vector<std::vector<int64_t>> uses(_lists.size());  // how many columns begin at an end less those that went by
  for (const RangeColumn& column : _columns) {
    auto& of = uses[column.list];
    of.resize(_lists[column.list]->size() + 1);
    ++of[column.first];
    --of[column.past];
  }
  std::vector<List> lists;
  std::vector<size_t> newLists(_lists.size());
  std::vector<std::vector<size_t>> newNumbers(_lists.size());
  for (size_t list = 0; list < _lists.size(); ++list) {
    newLists[list] = lists.size();
    if (uses[list].empty()) continue;
    std::vector<int64_t> used;
    int64_t columns = 0;
    for (size_t number = 0; number < uses[list].size(); ++number) {
      newNumbers[list].push_back(used.size());
      columns += uses[list][number];
      if (columns > 0) used.push_back((*_lists[list])[number]);
    }
    lists.push_back(std::make_shared<const std::vector<int64_t>>(std::move(used)));
  }
  for (RangeColumn& column : _columns) {
    const auto& numbers = newNumbers[column.list];
    column = {column.start, newLists[column.list], numbers[column.first], numbers[column.past]};
  }
  _lists = std::move(lists);
}

Ranges RangeColumns::largest() const {
  Ranges result;
  int64_t reached = -1;
  for (const RangeColumn& column : _columns) {
    const int64_t end = lastEndOf(column);
    if (end <= reached) continue;
    reached = end;
    if (!result.empty() && result.back().location == column.start) result.pop_back();
    result.push_back({column.start, end - column.start});
  }
  return result;
}

void PassedEnds::pass(int64_t start) {
  const auto& columns = _ranges.columns();
  for (; _next < columns.size() && columns[_next].start <= start; ++_next) {
    add(columns[_next]);
    _last = std::max(_last, _ranges.lastEndOf(columns[_next]));
  }
}

void PassedEnds::add(const RangeColumn& column) {
  auto& runs = _runs[column.list];
  size_t first = column.first;
  size_t past = column.past;
  auto run = runs.upper_bound(first);
  if (run != runs.begin() && std::prev(run)->second >= first) {
    --run;
    if (run->second >= past) return;
    first = run->first;
  }
  while (run != runs.end() && run->first <= past) {
    past = std::max(past, run->second);
    run = runs.erase(run);
  }
  runs.emplace(first, past);
}

void PassedEnds::addWithin(EndRun run, int64_t start, RangeColumns& columns) const {
  for (size_t list = 0; list < _runs.size(); ++list) {
    const auto& ends = *_ranges.lists()[list];
    const size_t first = numberFrom(ends, 0, ends.size(), run.first);
    const size_t past = numberFrom(ends, first, ends.size(), run.past);
    auto next = _runs[list].upper_bound(first);
    if (next != _runs[list].begin()) --next;
    for (; next != _runs[list].end() && next->first < past; ++next) {
      columns.add(start, list, std::max(first, next->first), std::min(past, next->second));
    }
  }
}

bool PassedStarts::hasAny(int64_t first, int64_t last, EndRun ends) {
  const auto& columns = _ranges.columns();
  for (; _next < columns.size() && columns[_next].start <= last; ++_next) {
    const RangeColumn& column = columns[_next];
    if (column.start < first || column.list == _leftOut) continue;
    labelRun(_runs[column.list], {static_cast<int64_t>(column.first), static_cast<int64_t>(column.past)}, column.start);
  }
  for (size_t list = 0; list < _runs.size(); ++list) {
    if (_runs[list].empty()) continue;
    const auto& all = *_ranges.lists()[list];
    const size_t from = numberFrom(all, 0, all.size(), ends.first);
    const size_t past = numberFrom(all, from, all.size(), ends.past);
    if (hasAny(_runs[list], first, {static_cast<int64_t>(from), static_cast<int64_t>(past)})) return true;
  }
  return false;
}

// Forgets what lies before, so that nothing is looked at twice in vain.
bool PassedStarts::hasAny(LabelledRuns& runs, int64_t start, EndRun numbers) {
  auto run = runs.begin();
  while (run != runs.end() && (run->second.past <= numbers.first || run->second.label < start)) run = runs.erase(run);
  return run != runs.end() && run->first < numbers.past;
}

}  // namespace velan
