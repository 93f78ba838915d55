#include <algorithm>
#include <functional>
#include <utility>

#include "velan/query/evaluation/EndSearchInternal.h"
#include "velan/query/evaluation/WitnessesInternal.h"

namespace velan {
namespace {

// Nodes that nest deeper are not worth the stack.
constexpr int kDeepestNesting = 24;
// Answering so many questions costs less than finding all witnesses, and often the first ones decide.
constexpr int kFewQuestions = 64;

}  // namespace

void RelationEnds::addRun(size_t number, EndRun run) { labelRun(_runs, run, static_cast<int64_t>(number)); }

void RelationEnds::addAllFrom(size_t number, int64_t first) {
  while (!_allFrom.empty() && _allFrom.back().first >= first) _allFrom.pop_back();
  _allFrom.push_back({number, first});
}

RangeEnds RelationEnds::endsOfPlacesFrom(size_t number, int64_t last) const {
  RangeEnds ends;
  if (number >= placed.size()) return ends;
  const auto all = std::partition_point(_allFrom.begin(), _allFrom.end(),
                                        [number](const AllFrom& each) { return each.number < number; });
  const int64_t past = all == _allFrom.end() ? last + 1 : std::min(all->first, last + 1);
  auto run = _runs.lower_bound(endOf(placed[number].place));
  for (; run != _runs.end() && run->first < past; ++run) {
    if (run->second.label >= static_cast<int64_t>(number))
      appendEnds(ends, {run->first, std::min(run->second.past, past)});
  }
  if (past <= last) appendEnds(ends, {past, last + 1});
  return ends;
}

size_t EndSearch::BeginningHash::operator()(const Beginning& beginning) const {
  const auto node = std::hash<const QueryTerms*>{}(beginning.node) * 0x9E3779B97F4A7C15u;
  const auto hash = (node ^ static_cast<uint64_t>(beginning.start)) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 32);
}

bool EndSearch::reaches(const QueryTerms& node) { return isShallow(node) || _evaluator.witnesses().has(node); }

bool EndSearch::isShallow(const QueryTerms& node) {
  const auto [entry, isNew] = _shallow.try_emplace(&node, true);
  if (!isNew) return entry->second;
  PresentChildren& present = _evaluator.presentChildren();
  std::vector<std::pair<const QueryTerms*, int>> pending{{&node, 0}};
  while (!pending.empty() && entry->second) {
    const auto [each, depth] = pending.back();
    pending.pop_back();
    const auto& children = each->children();
    for (size_t i = 0; (i = present.next(*each, i)) < children.size(); ++i) {
      pending.push_back({children[i].get(), depth + 1});
    }
    entry->second = depth <= kDeepestNesting;
  }
  return entry->second;
}

RangeEnds EndSearch::endsOf(const QueryTerms& node, const Relation& relation, int64_t start, int64_t last) {
  if (node.isWord()) {
    return relation.partner ? endsOfRelated(node, relation, start, last) : endsOfLeaf(node, start, last);
  }
  if (relation.partner) return endsOfGroup(node, relation, start, last);
  Witnesses& witnesses = _evaluator.witnesses();
  if (witnesses.has(node) && (!isShallow(node) || ++_questions[&node] > kFewQuestions)) {
    return endsFromTo(witnesses.firstEndFrom(node, start), last);
  }
  Known& known = _known[{&node, start}];
  if (known.last < last) {
    known.ends = endsOfGroup(node, relation, start, last);
    known.last = last;
  }
  RangeEnds ends;
  for (const EndRun& run : known.ends) {
    if (run.first > last) break;
    ends.push_back({run.first, std::min(run.past, last + 1)});
  }
  return ends;
}

RangeEnds EndSearch::endsOfGroup(const QueryTerms& group, const Relation& relation, int64_t start, int64_t last) {
  const auto& children = group.children();
  if (children.empty()) return {};
  RangeEnds running = endsOf(*children[0], relationOfChild(relation, children, 0), start, last);
  PresentChildren& present = _evaluator.presentChildren();
  for (size_t i = 1; (i = present.next(group, i)) < children.size(); ++i) {
    const QueryOperator queryOperator = children[i]->queryOperator();
    if (queryOperator == QueryOperator::Optional || queryOperator == QueryOperator::Mixed) continue;
    const bool joinsByAnd = queryOperator != QueryOperator::Or && queryOperator != QueryOperator::Xor;
    if (joinsByAnd && running.empty()) continue;
    const int64_t lastNeeded = joinsByAnd ? running.back().past - 1 : last;
    const RangeEnds next = endsOf(*children[i], relationOfChild(relation, children, i), start, lastNeeded);
    running = joinsByAnd                            ? endsInBoth(running, next)
              : queryOperator == QueryOperator::Xor ? endsInOne(running, next)
                                                    : endsInEither(running, next);
  }
  return group.queryNot() ? endsInOne(running, endsFromTo(start + 1, last)) : running;
}

RangeEnds EndSearch::endsOfLeaf(const QueryTerms& leaf, int64_t start, int64_t last) {
  LeafSearch& search = _evaluator.search(leaf);
  int64_t first = start + 1;  // of the ends behind a place
  if (!search.isWholeRange()) {
    const Range* place = search.at(search.numberFrom(start));
    first = place ? endOf(*place) : last + 1;
  }
  return leaf.queryNot() ? endsFromTo(start + 1, std::min(first - 1, last)) : endsFromTo(first, last);
}

RangeEnds EndSearch::endsOfRelated(const QueryTerms& leaf, const Relation& relation, int64_t start, int64_t last) {
  if (_evaluator.search(leaf).isWholeRange()) {
    return leaf.queryNot() ? RangeEnds{} : endsOf(*relation.partner, {}, start, last);
  }
  RelationEnds& known = _relations[&leaf];
  if (leaf.queryNot()) return endsOfUnrelated(known, leaf, relation, start, last);
  lookAtSpans(known, leaf, relation, last);
  const size_t first = known.placed.firstPlaceFrom(start);
  const size_t firstWhole = known.placed.firstSpanFrom(start);
  RangeEnds whole = known.endsOfPlacesFrom(firstWhole, last);
  if (first >= firstWhole) return whole;
  return endsInEither(whole, endsOfCutSpans(known, first, firstWhole, *relation.partner, start, last));
}

// Of the places `first` up to `past`, whose spans begin before `start`.
RangeEnds EndSearch::endsOfCutSpans(const RelationEnds& known, size_t first, size_t past, const QueryTerms& partner,
                                    int64_t start, int64_t last) {
  RangeEnds ends;
  for (const EndRun& run : endsOf(partner, {}, start, last)) {
    first = std::max(first, known.placed.firstSpanReaching(run.first));
    if (first >= past) break;
    const auto& [place, span] = known.placed[first];
    const int64_t from = std::max(run.first, endOf(place));
    if (endOf(span) < run.past) {  // the whole span satisfies the relation, and so it does in any longer range
      appendEnds(ends, {from, last + 1});
      break;
    }
    appendEnds(ends, {from, run.past});
  }
  return ends;
}

// Of a negated leaf: the piece before the first place, those between two spans, and the one behind the last place.
RangeEnds EndSearch::endsOfUnrelated(RelationEnds& known, const QueryTerms& leaf, const Relation& relation,
                                     int64_t start, int64_t last) {
  lookAtPieces(known, leaf, relation, last);
  const PlacedSpans& placed = known.placed;
  const size_t first = placed.firstPlaceFrom(start);
  if (first == placed.size()) return endsOf(*relation.partner, {}, start, last);
  const int64_t firstEnd = endOf(placed[first].place);
  RangeEnds ends = endsOf(*relation.partner, {}, start, firstEnd - 1);
  int64_t allFrom = last + 1;
  if (containsEnd(ends, placed[first].span.location)) {
    allFrom = firstEnd;
  } else {
    const auto good = std::lower_bound(known.goodPieces.begin(), known.goodPieces.end(), first);
    if (good != known.goodPieces.end() && *good + 1 < placed.size()) allFrom = endOf(placed[*good + 1].place);
  }
  auto run = std::partition_point(known.openPieces.begin(), known.openPieces.end(),
                                  [firstEnd](const EndRun& each) { return each.first < firstEnd; });
  for (; run != known.openPieces.end() && run->first < allFrom; ++run) {
    appendEnds(ends, {run->first, std::min(run->past, last + 1)});
  }
  appendEnds(ends, {allFrom, last + 1});
  return ends;
}

void EndSearch::lookAtSpans(RelationEnds& known, const QueryTerms& leaf, const Relation& relation, int64_t last) {
  known.placed.find(_evaluator.text(), _evaluator.search(leaf), relation, last);
  for (; known.looked < known.placed.size(); ++known.looked) {
    const auto& [place, span] = known.placed[known.looked];
    for (EndRun run : endsOf(*relation.partner, {}, span.location, endOf(span))) {
      run.first = std::max(run.first, endOf(place));
      if (run.past > endOf(span)) {
        known.addAllFrom(known.looked, run.first);
      } else if (run.first < run.past) {
        known.addRun(known.looked, run);
      }
    }
  }
}

void EndSearch::lookAtPieces(RelationEnds& known, const QueryTerms& leaf, const Relation& relation, int64_t last) {
  LeafSearch& search = _evaluator.search(leaf);
  known.placed.find(_evaluator.text(), search, relation, last);
  const Range all{0, _evaluator.text().length()};
  for (; known.looked < known.placed.size(); ++known.looked) {
    const Range* found = search.at(known.looked + 1);
    const Range next = found ? *found : Range{endOf(all), 1};
    const RangeEnds ends = endsOf(*relation.partner, {}, endOf(known.placed[known.looked].span), endOf(next) - 1);
    for (const EndRun& run : ends) appendEnds(known.openPieces, run);
    const bool isGood = found && containsEnd(ends, spanAround(_evaluator.text(), relation, next, all).location);
    if (isGood) known.goodPieces.push_back(known.looked);
  }
}

}  // namespace velan
