#include <algorithm>
#include <utility>
#include <vector>

#include "velan/query/evaluation/QueryWalkInternal.h"
#include "velan/query/evaluation/WitnessesInternal.h"

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

Ranges witnessesOfBoth(const Ranges& a, const Ranges& b) {
  Ranges endingWithA;
  Ranges endingWithB;
  endingWithA.reserve(a.size());
  endingWithB.reserve(b.size());
  appendHulls(a, b, endingWithA);
  appendHulls(b, a, endingWithB);
  return smallestOf(endingWithA, endingWithB);
}

}  // namespace

bool Witnesses::has(const QueryTerms& node) {
  std::vector<const QueryTerms*> nodes;  // parents first
  PresentChildren& present = _evaluator.presentChildren();
  walkQuery(node, present, [&](const QueryTerms& each) {
    if (_has.contains(&each)) return false;
    nodes.push_back(&each);
    return true;
  });
  for (auto each = nodes.rbegin(); each != nodes.rend(); ++each) {
    const auto& children = (*each)->children();
    const bool isFound = !(*each)->queryNot() && !((*each)->isWord() && _evaluator.search(**each).isWholeRange());
    bool has = isFound && !hasExclusiveChild(**each);
    for (size_t i = 0; has && (i = present.next(**each, i)) < children.size(); ++i) has = _has[children[i].get()];
    _has[*each] = has;
  }
  return _has[&node];
}

int64_t Witnesses::firstEndFrom(const QueryTerms& node, int64_t start) {
  const Ranges& all = of(node);
  const auto first =
      std::partition_point(all.begin(), all.end(), [start](const Range& witness) { return witness.location < start; });
  return first == all.end() ? NSNotFound : endOf(*first);
}

const Ranges* Witnesses::known(const QueryTerms& node) {
  const auto found = _known.find(&node);
  return found == _known.end() ? nullptr : &found->second;
}

const Ranges& Witnesses::of(const QueryTerms& node) {
  if (const Ranges* found = known(node)) return *found;
  std::vector<Frame> frames;
  frames.push_back({&node, {}, true, 0, {}});
  Ranges result;
  while (!frames.empty()) {
    if (std::optional<Frame> first = step(frames.back(), result)) {
      frames.push_back(std::move(*first));
    } else {
      if (frames.back().isKept) _known[frames.back().node] = result;
      frames.pop_back();
    }
  }
  return _known[&node];
}

// Either names the node whose witnesses must be found before it goes on, or gives its own as `result`.
std::optional<Witnesses::Frame> Witnesses::step(Frame& frame, Ranges& result) {
  if (const Ranges* before = frame.isKept ? known(*frame.node) : nullptr) {
    result = *before;
    frame.isKept = false;
    return std::nullopt;
  }
  if (!frame.node->isWord()) return stepGroup(frame, result);
  const Range all{0, _evaluator.text().length()};
  if (!frame.relation.partner) {
    result = _evaluator.places(*frame.node, all);
    return std::nullopt;
  }
  const Ranges* partner = known(*frame.relation.partner);
  if (!partner) return Frame{frame.relation.partner, {}, true, 0, {}};
  result = ofRelation(*frame.node, frame.relation, *partner);
  return std::nullopt;
}

// The same fold as that of a group's results. `result` is that of child `next - 1` when there is one.
std::optional<Witnesses::Frame> Witnesses::stepGroup(Frame& frame, Ranges& result) {
  const auto& children = frame.node->children();
  if (frame.next == 1) {
    frame.running = std::move(result);
  } else if (frame.next > 1) {
    const bool isEither = children[frame.next - 1]->queryOperator() == QueryOperator::Or;
    frame.running = isEither ? smallestOf(frame.running, result) : witnessesOfBoth(frame.running, result);
  }
  PresentChildren& present = _evaluator.presentChildren();
  while (true) {
    const size_t index = present.next(*frame.node, frame.next);
    if (index >= children.size()) break;
    frame.next = index + 1;
    const QueryOperator queryOperator = children[index]->queryOperator();
    if (index > 0 && (queryOperator == QueryOperator::Optional || queryOperator == QueryOperator::Mixed)) continue;
    if (index > 0 && queryOperator != QueryOperator::Or && frame.running.empty()) continue;
    const Relation relation = relationOfChild(frame.relation, children, index);
    const bool isPartner = index + 1 < children.size() && hasOwnRelation(*children[index + 1]) && !relation.partner;
    return Frame{children[index].get(), relation, isPartner, 0, {}};
  }
  result = std::move(frame.running);
  return std::nullopt;
}

// One of the partner's witnesses has to lie in the span of a place.
Ranges Witnesses::ofRelation(const QueryTerms& leaf, const Relation& relation, const Ranges& partner) {
  const Range all{0, _evaluator.text().length()};
  const Ranges places = _evaluator.places(leaf, all);
  Ranges spans;
  spans.reserve(places.size());
  for (const Range& place : places) spans.push_back(spanAround(_evaluator.text(), relation, place, all));
  // The partner ends no later than the place: the last such witness begins last. If even that begins before the span,
  // all of them do.
  Ranges endingWithPlace;
  endingWithPlace.reserve(places.size());
  size_t next = 0;
  for (size_t i = 0; i < places.size(); ++i) {
    while (next < partner.size() && endOf(partner[next]) <= endOf(places[i])) ++next;
    if (next == 0 || partner[next - 1].location < spans[i].location) continue;
    endingWithPlace.push_back(hullOf(places[i], partner[next - 1]));
  }
  // The partner ends later: the last place that ends before it and whose span does not begin after it. If even that
  // span ends too early, all do.
  Ranges endingWithPartner;
  endingWithPartner.reserve(partner.size());
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
