#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include "velan/query/QueryOccurrencesInternal.h"
#include "velan/query/QueryWalkInternal.h"

namespace velan {
namespace {

Ranges distinctRanges(Ranges ranges) {
  std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) {
    return a.location != b.location ? a.location < b.location : a.length < b.length;
  });
  ranges.erase(std::unique(ranges.begin(), ranges.end()), ranges.end());
  return ranges;
}

// In ranges none of which contains another: the index of the first one that ends at or after `end`, or begins at or
// after `start`.
size_t firstEndingFrom(const Ranges& ranges, int64_t end) {
  const auto before = [end](const Range& range) { return endOf(range) < end; };
  return static_cast<size_t>(std::partition_point(ranges.begin(), ranges.end(), before) - ranges.begin());
}

size_t firstBeginningFrom(const Ranges& ranges, int64_t start) {
  const auto before = [start](const Range& range) { return range.location < start; };
  return static_cast<size_t>(std::partition_point(ranges.begin(), ranges.end(), before) - ranges.begin());
}

// Walks the tree from the root and marks the places that take part in the match.
class PrimaryPlaces {
 public:
  PrimaryPlaces(QueryEvaluator& evaluator, const QueryTerms& root, Range range) : _evaluator(evaluator) {
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
    return found != _marks.end() && number < found->second.size() && found->second[number];
  }

 private:
  // A node to mark in the ranges where it takes part; shared by all children of a group.
  struct Task {
    const QueryTerms* node;
    Relation relation;
    std::shared_ptr<const Ranges> ranges;
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
      if (_evaluator.evaluate(*task.node, task.relation, range)) ranges.push_back(range);
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
    // Where the partner holds in every range around one in which it holds, the largest ranges are enough.
    const bool grows = partner.isWord() ? !partner.queryNot() : _evaluator.witnesses(partner) != nullptr;
    Ranges satisfied;
    if (grows && !leaf.queryNot() && !_evaluator.search(leaf).isWholeRange() && task.ranges->size() > 1) {
      satisfied = satisfiedSpans(task);
    } else {
      for (const Range& range : *task.ranges) addSatisfied(task, range, satisfied);
    }
    if (satisfied.empty()) return;
    if (!leaf.queryNot()) markWithin(leaf, satisfied);
    add(partner, {}, grows ? largestRanges(std::move(satisfied)) : distinctRanges(std::move(satisfied)));
  }

  // Appends the spans or pieces within `range` that satisfy the relation.
  void addSatisfied(const Task& task, Range range, Ranges& satisfied) {
    RelationRanges ranges = _evaluator.relationRanges(*task.node, task.relation, range);
    for (Range each = ranges.next(); isPresent(each); each = ranges.next()) {
      if (_evaluator.holds(*task.relation.partner, each)) satisfied.push_back(each);
    }
  }

  // The same for all ranges at once, each occurrence being looked at once. Its span is clipped to each range that the
  // occurrence lies in. Of the ranges that the span's beginning cuts, the last one leaves most; of those that its end
  // cuts, the first one; those inside the span stay whole, and each of them is added once.
  Ranges satisfiedSpans(const Task& task) {
    const QueryTerms& partner = *task.relation.partner;
    const Ranges ranges = largestRanges(*task.ranges);
    std::vector<size_t> holding{0};  // how many of the first ranges the partner holds in
    for (const Range& range : ranges) holding.push_back(holding.back() + (_evaluator.holds(partner, range) ? 1 : 0));
    LeafSearch& search = _evaluator.search(*task.node);
    RelationRanges spans = _evaluator.relationRanges(*task.node, task.relation, {0, _evaluator.text().length()});
    Ranges satisfied;
    size_t added = 0;  // the ranges before this one have been added
    for (Range span = spans.next(); isPresent(span); span = spans.next()) {
      const Range place = *search.at(spans.occurrence());
      const size_t first = firstEndingFrom(ranges, endOf(place));          // the ranges around the place begin here
      const size_t last = firstBeginningFrom(ranges, place.location + 1);  // and end before
      const size_t inside = std::max(first, firstBeginningFrom(ranges, span.location));
      const size_t insideEnd = std::min(last, firstEndingFrom(ranges, endOf(span) + 1));
      const auto addClipped = [&](size_t index) {
        const int64_t start = std::max(span.location, ranges[index].location);
        const Range clipped{start, std::min(endOf(span), endOf(ranges[index])) - start};
        if (_evaluator.holds(partner, clipped)) satisfied.push_back(clipped);
      };
      if (inside > first && inside - 1 < last) addClipped(inside - 1);
      if (insideEnd < last && insideEnd >= first) addClipped(insideEnd);
      if (inside >= insideEnd || holding[insideEnd] == holding[inside]) continue;
      for (added = std::max(added, inside); added < insideEnd; ++added) {
        if (holding[added + 1] > holding[added]) satisfied.push_back(ranges[added]);
      }
    }
    return satisfied;
  }

  void mark(const QueryTerms& leaf, size_t number) {
    auto& marks = _marks[&leaf];
    if (marks.size() <= number) marks.resize(std::max(number + 1, marks.size() * 2));
    marks[number] = true;
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
  std::vector<Task> _pending;
  std::unordered_map<const QueryTerms*, std::vector<bool>> _marks;
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
