#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>

#include "velan/base/GrowthInternal.h"
#include "velan/base/StringCopiesInternal.h"
#include "velan/query/evaluation/EndSearchInternal.h"
#include "velan/query/evaluation/NearPlacesInternal.h"
#include "velan/query/evaluation/QueryOccurrencesInternal.h"
#include "velan/query/evaluation/QueryWalkInternal.h"
#include "velan/query/evaluation/WitnessesInternal.h"

namespace velan {
namespace {

bool hasRelations(const QueryTerms& root, PresentChildren& present) {
  bool found = false;
  walkQuery(root, present, [&found](const QueryTerms& node) {
    found = found || hasOwnRelation(node);
    return !found;
  });
  return found;
}

// Walks the tree from the root and marks the places that take part in the match. Where no node has a relation all
// places do.
class PrimaryPlaces {
 public:
  PrimaryPlaces(QueryEvaluator& evaluator, const QueryTerms& root, Range range) : _evaluator(evaluator), _range(range) {
    _pending.push_back({&root, {}, std::make_shared<const RangeColumns>(range), true});
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

  // Of the places of a leaf, from the first in the range on.
  struct Marks {
    bool all = false;
    std::vector<bool> places;

    bool contains(size_t number) const { return all || (number < places.size() && places[number]); }
    void add(size_t number) {
      if (places.size() <= number) places.resize(std::max(number + 1, places.size() * 2));
      places[number] = true;
    }
  };

  const Marks& marksOf(const QueryTerms& leaf) { return _marks[&leaf]; }

 private:
  // A node to mark in the ranges where it takes part; shared by all children of a group.
  struct Task {
    const QueryTerms* node;
    Relation relation;
    std::shared_ptr<const RangeColumns> ranges;
    bool isWholeRange = false;  // there is no other range than the one that is searched
  };

  void visitGroup(const Task& task) {
    const auto& children = task.node->children();
    if (task.node->queryNot()) {
      // Nothing below is reported; its partner takes part where the inverted relation holds.
      if (task.relation.partner) addPartner(task, where(*task.node, task.relation, *task.ranges));
      return;
    }
    PresentChildren& present = _evaluator.presentChildren();
    for (size_t i = 0; (i = present.next(*task.node, i)) < children.size(); ++i) {
      const Relation relation = relationOfChild(task.relation, children, i);
      // A child that the next one is related to takes part through that relation only.
      const bool isPartner = i + 1 < children.size() && hasOwnRelation(*children[i + 1]);
      if (relation.partner || !isPartner)
        _pending.push_back({children[i].get(), relation, task.ranges, task.isWholeRange});
    }
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
    LeafSearch& search = _evaluator.search(leaf);
    if (search.isWholeRange()) {
      if (leaf.queryNot()) return;
      RangeColumns ranges = where(partner, {}, *task.ranges);
      _marks[&leaf].all |= !ranges.isEmpty();
      return addPartner(task, std::move(ranges));
    }
    if (task.isWholeRange && !leaf.queryNot() && isWordsBesideWords(search, partner)) return markNear(task);
    PlacedSpans placed(search.numberFrom(_range.location));
    placed.find(_evaluator.text(), search, task.relation, endOf(_range));
    if (leaf.queryNot()) return addPartner(task, where(partner, {}, placed.pieces(*task.ranges)));
    ClippedSpans spans = placed.spans(*task.ranges);
    spans.whole = where(partner, {}, spans.whole);
    spans.cut = where(partner, {}, spans.cut);
    for (const size_t number : placed.placesOf(spans)) _marks[&leaf].add(number);
    spans.whole.addAll(spans.cut);
    addPartner(task, std::move(spans.whole));
  }

  // Whether places of both are told by counting the words between them.
  bool isWordsBesideWords(const LeafSearch& search, const QueryTerms& partner) {
    return search.findsWholeWords() && partner.isWord() && !partner.queryNot() &&
           _evaluator.search(partner).findsWholeWords() && _evaluator.text().knowsAllByUnits();
  }

  // What the spans in the whole range and the partner's places in them come to, for a leaf whose partner is another.
  void markNear(const Task& task) {
    LeafSearch &leaf = _evaluator.search(*task.node), &partner = _evaluator.search(*task.relation.partner);
    Marks &marks = _marks[task.node], &marksOfPartner = _marks[task.relation.partner];
    size_t marked = 0;  // partners before were looked at
    const NearPlaces near(_evaluator.text(), task.relation, leaf, partner, _range);
    near.forEach([&](size_t place, size_t first, size_t past) {
      marks.add(place);
      for (marked = std::max(marked, first); marked < past; ++marked) marksOfPartner.add(marked);
    });
  }

  // In which of the ranges its partner holds decides about each place of a leaf. What is marked in them is the same
  // without those inside another one where what holds in a range holds in every larger one.
  void addPartner(const Task& task, RangeColumns ranges) {
    if (ranges.isEmpty()) return;
    ranges.sort();
    if (_evaluator.witnesses().has(*task.relation.partner)) ranges.keepLargest();
    ranges.finish();
    _pending.push_back({task.relation.partner, {}, std::make_shared<const RangeColumns>(std::move(ranges))});
  }

  // The ranges in which the node holds, in order and on the same lists.
  RangeColumns where(const QueryTerms& node, const Relation& relation, const RangeColumns& ranges) {
    RangeColumns found = RangeColumns::onListsOf(ranges);
    const bool grows = !relation.partner && _evaluator.witnesses().has(node);
    for (const RangeColumn& column : ranges.columns()) {
      const int64_t last = ranges.lastEndOf(column);
      const RangeEnds ends = grows ? endsFromTo(_evaluator.witnesses().firstEndFrom(node, column.start), last)
                                   : endsOf(node, relation, column, ranges);
      for (const EndRun& run : ends) found.addWithin(column, run);
    }
    return found;
  }

  // Of the column's ranges, those in which the node holds.
  RangeEnds endsOf(const QueryTerms& node, const Relation& relation, const RangeColumn& column,
                   const RangeColumns& ranges) {
    if (_evaluator.reaches(node, relation)) {
      return _evaluator.ends().endsOf(node, relation, column.start, ranges.lastEndOf(column));
    }
    RangeEnds ends;
    for (size_t number = column.first; number < column.past; ++number) {
      const int64_t end = (*ranges.lists()[column.list])[number];
      const Range range{column.start, end - column.start};
      if (end > column.start && _evaluator.evaluate(node, relation, range)) appendEnds(ends, {end, end + 1});
    }
    return ends;
  }

  // Of the ranges that begin at or before a place, the last one reaches furthest.
  void markWithin(const QueryTerms& leaf, const RangeColumns& columns) {
    const Ranges ranges = columns.largest();
    LeafSearch& search = _evaluator.search(leaf);
    Marks& marks = _marks[&leaf];
    marks.all = marks.all || search.isWholeRange() || ranges.front() == _range;
    if (marks.all) return;
    const size_t first = search.numberFrom(_range.location);
    size_t next = 0;
    size_t number = search.numberFrom(ranges.front().location);
    for (const Range* place = search.at(number); place; place = search.at(++number)) {
      while (next < ranges.size() && ranges[next].location <= place->location) ++next;
      if (next > 0 && endOf(*place) <= endOf(ranges[next - 1])) marks.add(number - first);
      if (next == ranges.size() && place->location >= endOf(ranges.back())) return;
    }
  }

  QueryEvaluator& _evaluator;
  const Range _range;
  std::vector<Task> _pending;
  std::unordered_map<const QueryTerms*, Marks> _marks;
};

// Orders those from `first` on by location, the longer first; equal ranges become one, that of the first term, primary
// if any is.
void mergeEqualRanges(std::vector<QueryOccurrence>& occurrences, size_t first) {
  const std::span<QueryOccurrence> merged = std::span(occurrences).subspan(first);
  if (!std::is_sorted(merged.begin(), merged.end(), precedes)) {
    std::stable_sort(merged.begin(), merged.end(), precedes);
  }
  size_t kept = 0;
  for (QueryOccurrence& each : merged) {
    if (kept > 0 && merged[kept - 1].range == each.range) {
      merged[kept - 1].primary |= each.primary;
    } else if (&merged[kept++] != &each) {
      merged[kept - 1] = std::move(each);
    }
  }
  occurrences.resize(first + kept);
}

// Where a leaf is found, in order.
struct LeafPlaces {
  const QueryTerms* leaf;
  std::span<const Range> places;
  const PrimaryPlaces::Marks* marks;  // null where no place is primary
};

// The places of a leaf of which the next one can be appended.
class PlacesLeft {
 public:
  explicit PlacesLeft(const LeafPlaces& all) : _all(all), _terms(all.leaf->word(), all.places.size()) {}

  // Where the next one begins; behind all texts when none is left.
  int64_t nextLocation() const { return _next < _all.places.size() ? _all.places[_next].location : INT64_MAX; }
  void appendNextTo(std::vector<QueryOccurrence>& occurrences) {
    occurrences.push_back({_all.places[_next], _terms.take(), _all.marks && _all.marks->contains(_next)});
    ++_next;
  }

 private:
  const LeafPlaces _all;
  StringCopies _terms;
  size_t _next = 0;
};

// Brings the places of leaves together, which are added in the order of the tree.
class OccurrenceLists {
 public:
  void add(const LeafPlaces& list) {
    if (_count == kFew) {
      appendEach();
      _isSorted = false;
    }
    _lists[_count++] = list;
  }

  // All of them in the order of the text.
  std::vector<QueryOccurrence> merged() {
    if (_isSorted && _count > 1) {
      merge();
    } else {
      appendEach();
      if (!_isSorted) mergeEqualRanges(_occurrences, 0);
    }
    return std::move(_occurrences);
  }

 private:
  static constexpr size_t kFew = 8;  // of more lists the next element is not found by comparing all their next ones

  void appendEach() {
    for (const LeafPlaces& list : std::span(_lists, _count)) {
      StringCopies terms(list.leaf->word(), list.places.size());
      makeRoom(_occurrences, list.places.size());
      for (size_t i = 0; i < list.places.size(); ++i) {
        _occurrences.push_back({list.places[i], terms.take(), list.marks && list.marks->contains(i)});
      }
    }
    _count = 0;
  }

  // Which list comes next nobody could predict, so it is chosen without a branch. That several elements begin at one
  // place is rare.
  void merge() {
    std::optional<PlacesLeft> lists[kFew];
    int64_t next[kFew];
    size_t total = 0;
    for (size_t i = 0; i < _count; ++i) {
      next[i] = lists[i].emplace(_lists[i]).nextLocation();
      total += _lists[i].places.size();
    }
    _occurrences.reserve(total);
    int64_t last = -1;
    size_t sameStart = 0;  // those from here on begin at `last`
    while (true) {
      size_t list = 0;
      int64_t least = next[0];
      for (size_t i = 1; i < _count; ++i) {
        list = next[i] < least ? i : list;
        least = std::min(least, next[i]);
      }
      if (least != last) {
        if (_occurrences.size() - sameStart > 1) mergeEqualRanges(_occurrences, sameStart);
        sameStart = _occurrences.size();
        last = least;
      }
      if (least == INT64_MAX) return;
      lists[list]->appendNextTo(_occurrences);
      next[list] = lists[list]->nextLocation();
    }
  }

  std::vector<QueryOccurrence> _occurrences;
  LeafPlaces _lists[kFew];
  size_t _count = 0;
  bool _isSorted = true;
};

}  // namespace

std::vector<QueryOccurrence> occurrencesOfQuery(QueryEvaluator& evaluator, const QueryTerms& root, Range range,
                                                const std::unordered_set<const QueryTerms*>& withoutPart) {
  if (range.length <= 0) return {};
  evaluator.text().lookForAll();
  std::unique_ptr<PrimaryPlaces> primary;
  if (hasRelations(root, evaluator.presentChildren())) {
    primary = std::make_unique<PrimaryPlaces>(evaluator, root, range);
  }
  const PrimaryPlaces::Marks all{true, {}};
  OccurrenceLists lists;
  walkPositiveLeaves(root, evaluator.presentChildren(), [&](const QueryTerms& leaf) {
    LeafSearch& search = evaluator.search(leaf);
    const std::span<const Range> places = search.isWholeRange() ? std::span(&range, 1) : search.placesIn(range);
    if (places.empty()) return;
    const auto& marks = primary ? primary->marksOf(leaf) : all;
    lists.add({&leaf, places, withoutPart.contains(&leaf) ? nullptr : &marks});
  });
  return lists.merged();
}

void findOccurrences(QueryEvaluator& evaluator, const QueryTerms& root, Range range,
                     std::vector<QueryOccurrence>& occurrences) {
  if (range.length <= 0) return occurrences.clear();
  const QueryTerms* leaf = evaluator.prepared() ? evaluator.prepared()->onlyLeaf() : nullptr;
  LeafSearch* const search = leaf ? &evaluator.search(*leaf) : nullptr;
  if (!search || search->isWholeRange()) {
    occurrences = occurrencesOfQuery(evaluator, root, range, {});
    return;
  }
  // Most terms are those of the text before, and not to be counted again.
  const auto places = search->placesIn(range);
  const String& term = leaf->word();
  const size_t kept = std::min(occurrences.size(), places.size());
  for (size_t i = 0; i < kept; ++i) {
    QueryOccurrence& each = occurrences[i];
    each.range = places[i];
    if (!each.term.isSameObject(term)) each.term = term;
    each.primary = true;
  }
  occurrences.erase(occurrences.begin() + static_cast<std::ptrdiff_t>(kept), occurrences.end());
  StringCopies terms(term, places.size() - kept);
  makeRoom(occurrences, places.size() - kept);
  for (const Range& place : places.subspan(kept)) occurrences.push_back({place, terms.take(), true});
}

}  // namespace velan
