#include <algorithm>
#include <memory>
#include <numeric>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "velan/query/evaluation/EndSearchInternal.h"
#include "velan/query/evaluation/QueryOccurrencesInternal.h"
#include "velan/query/evaluation/QueryWalkInternal.h"

namespace velan {
namespace {

// The ranges in order, without those that another one contains.
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

bool hasExclusiveChild(const QueryTerms& node) {
  const auto& children = node.children();
  return !children.empty() && std::any_of(children.begin() + 1, children.end(), [](const auto& child) {
    return child->queryOperator() == QueryOperator::Xor;
  });
}

// The leaves at or below `root` that can make it false by occurring: negated ones, and all below a negated group or an
// exclusive or, with the partners of these.
std::vector<const QueryTerms*> turningLeaves(const QueryTerms& root) {
  std::vector<const QueryTerms*> nodes;  // parents first
  walkQuery(root, [&nodes](const QueryTerms& node) {
    nodes.push_back(&node);
    return true;
  });
  std::unordered_set<const QueryTerms*> turning;  // first those with a negation or exclusive or at or below them
  for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
    const auto& children = (*node)->children();
    const auto isTurning = [&turning](const auto& child) { return turning.contains(child.get()); };
    if ((*node)->queryNot() || hasExclusiveChild(**node) || std::any_of(children.begin(), children.end(), isTurning)) {
      turning.insert(*node);
    }
  }
  std::unordered_set<const QueryTerms*> turned;
  std::vector<const QueryTerms*> leaves;
  for (const QueryTerms* node : nodes) {
    const auto& children = node->children();
    const bool isTurned = node->queryNot() || hasExclusiveChild(*node) || turned.contains(node);
    if (isTurned && node->isWord()) leaves.push_back(node);
    for (size_t i = 0; i < children.size(); ++i) {
      const QueryTerms* next = i + 1 < children.size() ? children[i + 1].get() : nullptr;
      const bool turnsWithNext = next && hasOwnRelation(*next) && !next->isWord() && turning.contains(next);
      if (isTurned || turnsWithNext) turned.insert(children[i].get());
    }
  }
  return leaves;
}

// Ranges that hold the same places of all turning leaves of a node: where the node holds in one of them, it holds in
// each longer one, and what takes part in the one takes part in the longer. So of such ranges the largest are enough.
class Contents {
 public:
  void add(Range place) {
    _starts.push_back(place.location);
    _ends.push_back(endOf(place));
  }
  void sort() {
    std::sort(_starts.begin(), _starts.end());
    std::sort(_ends.begin(), _ends.end());
  }

  // Ranges that end before this hold fewer places than one that ends at `end`; 0 when there are none.
  int64_t previousEnd(int64_t end) const {
    const size_t count = endsBy(end);
    return count > 0 ? _ends[count - 1] : 0;
  }
  // Ranges that begin from here on hold fewer places than one that begins at `start`.
  int64_t nextStart(int64_t start) const {
    const size_t count = startsBefore(start);
    return count < _starts.size() ? _starts[count] + 1 : NSNotFound;
  }

  // Of the ranges that hold the same places, those that no other one contains.
  Ranges largestOfEach(Ranges ranges) const {
    if (_starts.empty()) return largestRanges(std::move(ranges));
    std::vector<std::pair<std::pair<size_t, size_t>, Range>> keyed;
    for (const Range& range : ranges) {
      keyed.push_back({{startsBefore(range.location), endsBy(endOf(range))}, range});
    }
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    Ranges result;
    for (auto begin = keyed.begin(); begin != keyed.end();) {
      Ranges same;
      const auto key = begin->first;
      for (; begin != keyed.end() && begin->first == key; ++begin) same.push_back(begin->second);
      same = largestRanges(std::move(same));
      result.insert(result.end(), same.begin(), same.end());
    }
    return result;
  }

 private:
  size_t startsBefore(int64_t start) const {
    return static_cast<size_t>(std::lower_bound(_starts.begin(), _starts.end(), start) - _starts.begin());
  }
  size_t endsBy(int64_t end) const {
    return static_cast<size_t>(std::upper_bound(_ends.begin(), _ends.end(), end) - _ends.begin());
  }

  std::vector<int64_t> _starts;
  std::vector<int64_t> _ends;
};

// Numbers to take, each once.
class Untaken {
 public:
  explicit Untaken(size_t count) : _next(count + 1) { std::iota(_next.begin(), _next.end(), size_t{0}); }

  size_t firstFrom(size_t number) {
    while (_next[number] != number) number = _next[number] = _next[_next[number]];
    return number;
  }
  void take(size_t number) { _next[number] = number + 1; }

 private:
  std::vector<size_t> _next;  // a way to the first one that is not taken
};

// Walks the tree from the root and marks the places that take part in the match.
class PrimaryPlaces {
 public:
  PrimaryPlaces(QueryEvaluator& evaluator, const QueryTerms& root, Range range)
      : _evaluator(evaluator), _root(root), _range(range) {
    add(root, {}, {range});
    while (!_pending.empty()) {
      const Task task = std::move(_pending.back());
      _pending.pop_back();
      if (task.node->isWord()) {
        visitLeaf(task);
      } else {
        visitGroup(task);
      }
    }
  }

  bool contains(const QueryTerms& leaf, size_t number) const {
    const auto found = _marks.find(&leaf);
    if (found == _marks.end()) return false;
    const size_t index = number - found->second.first;
    return index < found->second.places.size() && found->second.places[index];
  }

 private:
  // A node to mark in the ranges where it takes part; shared by all children of a group.
  struct Task {
    const QueryTerms* node;
    Relation relation;
    std::shared_ptr<const Ranges> ranges;
  };

  // Of the places of a leaf, from the first in the range on.
  struct Marks {
    size_t first = 0;
    std::vector<bool> places;
  };

  void add(const QueryTerms& node, const Relation& relation, Ranges ranges) {
    if (ranges.empty()) return;
    _pending.push_back({&node, relation, std::make_shared<const Ranges>(std::move(ranges))});
  }

  void visitGroup(const Task& task) {
    const auto& children = task.node->children();
    if (task.node->queryNot()) {
      // Nothing below is reported; its partner takes part where the inverted relation holds.
      if (task.relation.partner) add(*task.relation.partner, {}, rangesOfGroup(task));
      return;
    }
    for (size_t i = 0; i < children.size(); ++i) {
      const Relation relation = relationOfChild(task.relation, children, i);
      // A child that the next one is related to takes part through that relation only.
      const bool isPartner = i + 1 < children.size() && hasOwnRelation(*children[i + 1]);
      if (relation.partner || !isPartner) _pending.push_back({children[i].get(), relation, task.ranges});
    }
  }

  Ranges rangesOfGroup(const Task& task) {
    Ranges ranges;
    for (const Range& range : *task.ranges) {
      if (_evaluator.holds(*task.node, task.relation, range)) ranges.push_back(range);
    }
    return ranges;
  }

  void visitLeaf(const Task& task) {
    if (task.relation.partner) {
      visitRelated(task);
    } else if (!task.node->queryNot()) {
      markWithin(*task.node, *task.ranges);
    }
  }

  void visitRelated(const Task& task) {
    const QueryTerms& leaf = *task.node;
    const QueryTerms& partner = *task.relation.partner;
    const Contents contents = contentsOf(partner);
    Ranges satisfied;
    const auto addIfSatisfied = [&](int64_t start, int64_t end) {
      if (start < end && _evaluator.holds(partner, {}, {start, end - start})) satisfied.push_back({start, end - start});
    };
    if (_evaluator.search(leaf).isWholeRange()) {
      for (const Range& range : *task.ranges) {
        if (!leaf.queryNot()) addIfSatisfied(range.location, endOf(range));
      }
    } else {
      LeafSearch& search = _evaluator.search(leaf);
      PlacedSpans placed(search.numberFrom(_range.location));
      placed.find(_evaluator.text(), search, task.relation, endOf(_range));
      Untaken untaken(placed.size());
      for (const Range& range : *task.ranges) {
        if (leaf.queryNot()) {
          addPieces(placed, range, untaken, addIfSatisfied);
        } else {
          addSpans(placed, range, contents, untaken, addIfSatisfied);
        }
      }
    }
    if (satisfied.empty()) return;
    satisfied = contents.largestOfEach(std::move(satisfied));
    if (!leaf.queryNot()) markWithin(leaf, satisfied);
    add(partner, {}, std::move(satisfied));
  }

  // The spans of the places in `range`, clipped to it. Those that lie in it wholly are the same for all ranges. Of
  // those that its beginning or end cuts only the largest that hold the same turning places can add anything.
  void addSpans(const PlacedSpans& placed, Range range, const Contents& contents, Untaken& untaken, auto add) {
    const int64_t start = range.location;
    const int64_t end = endOf(range);
    const size_t first = placed.firstPlaceFrom(start);
    const size_t past = placed.countEndingBy(end);
    if (first >= past) return;
    const size_t firstBegun = std::clamp(placed.firstSpanFrom(start), first, past);
    const size_t firstCut = std::clamp(placed.firstSpanReaching(end + 1), first, past);
    for (size_t i = untaken.firstFrom(firstBegun); i < firstCut; i = untaken.firstFrom(i)) {
      add(placed[i].span.location, endOf(placed[i].span));
      untaken.take(i);
    }
    if (firstCut < firstBegun) add(start, end);
    for (size_t count = std::min(firstBegun, firstCut); count > first;) {
      const int64_t spanEnd = endOf(placed[count - 1].span);
      add(start, spanEnd);
      count = std::min(count - 1, placed.firstSpanReaching(contents.previousEnd(spanEnd)));
    }
    for (size_t i = std::max(firstBegun, firstCut); i < past;) {
      const int64_t spanStart = placed[i].span.location;
      add(spanStart, end);
      i = std::max(i + 1, placed.firstSpanFrom(contents.nextStart(spanStart)));
    }
  }

  // The pieces of `range` outside the spans of the places in it.
  void addPieces(const PlacedSpans& placed, Range range, Untaken& untaken, auto add) {
    const size_t first = placed.firstPlaceFrom(range.location);
    const size_t past = placed.countEndingBy(endOf(range));
    if (first >= past) return add(range.location, endOf(range));
    add(range.location, placed[first].span.location);
    add(endOf(placed[past - 1].span), endOf(range));
    for (size_t i = untaken.firstFrom(first); i + 1 < past; i = untaken.firstFrom(i)) {
      add(endOf(placed[i].span), placed[i + 1].span.location);
      untaken.take(i);
    }
  }

  // A partner that nests too deep for the ends to be searched gets what the whole query turns on, which is found once.
  Contents contentsOf(const QueryTerms& partner) {
    const bool isShallow = _evaluator.ends().reaches(partner);
    if (!isShallow && _contentsOfRoot) return *_contentsOfRoot;
    Contents contents;
    for (const QueryTerms* leaf : turningLeaves(isShallow ? partner : _root)) {
      for (const Range& place : _evaluator.places(*leaf, _range)) contents.add(place);
    }
    contents.sort();
    if (!isShallow) _contentsOfRoot = contents;
    return contents;
  }

  void mark(const QueryTerms& leaf, size_t number) {
    const auto [entry, isNew] = _marks.try_emplace(&leaf);
    Marks& marks = entry->second;
    if (isNew) marks.first = _evaluator.search(leaf).numberFrom(_range.location);
    const size_t index = number - marks.first;
    if (marks.places.size() <= index) marks.places.resize(std::max(index + 1, marks.places.size() * 2));
    marks.places[index] = true;
  }

  // Of the ranges that begin at or before a place, the last one reaches furthest.
  void markWithin(const QueryTerms& leaf, const Ranges& anyRanges) {
    const Ranges ranges = largestRanges(anyRanges);
    LeafSearch& search = _evaluator.search(leaf);
    if (search.isWholeRange()) return mark(leaf, 0);
    size_t next = 0;
    size_t number = search.numberFrom(ranges.front().location);
    for (const Range* place = search.at(number); place; place = search.at(++number)) {
      while (next < ranges.size() && ranges[next].location <= place->location) ++next;
      if (next > 0 && endOf(*place) <= endOf(ranges[next - 1])) mark(leaf, number);
      if (next == ranges.size() && place->location >= endOf(ranges.back())) return;
    }
  }

  QueryEvaluator& _evaluator;
  const QueryTerms& _root;
  const Range _range;
  std::optional<Contents> _contentsOfRoot;
  std::vector<Task> _pending;
  std::unordered_map<const QueryTerms*, Marks> _marks;
};

// Orders by location, the longer first; equal ranges become one, that of the first term, primary if any is.
void mergeEqualRanges(std::vector<QueryOccurrence>& occurrences) {
  std::stable_sort(occurrences.begin(), occurrences.end(), precedes);
  size_t kept = 0;
  for (QueryOccurrence& each : occurrences) {
    if (kept > 0 && occurrences[kept - 1].range == each.range) {
      occurrences[kept - 1].primary |= each.primary;
    } else if (&occurrences[kept++] != &each) {
      occurrences[kept - 1] = std::move(each);
    }
  }
  occurrences.resize(kept);
}

}  // namespace

std::vector<QueryOccurrence> occurrencesOfQuery(QueryEvaluator& evaluator, const QueryTerms& root, Range range) {
  std::vector<QueryOccurrence> occurrences;
  if (range.length <= 0) return occurrences;
  const PrimaryPlaces primary(evaluator, root, range);
  walkPositiveLeaves(root, [&](const QueryTerms& leaf) {
    LeafSearch& search = evaluator.search(leaf);
    if (search.isWholeRange()) {
      occurrences.push_back({range, leaf.word(), primary.contains(leaf, 0)});
      return;
    }
    size_t number = search.numberFrom(range.location);
    for (const Range* place = search.at(number); place && endOf(*place) <= endOf(range); place = search.at(++number)) {
      occurrences.push_back({*place, leaf.word(), primary.contains(leaf, number)});
    }
  });
  mergeEqualRanges(occurrences);
  return occurrences;
}

}  // namespace velan
