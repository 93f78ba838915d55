#include <algorithm>
#include <utility>

#include "velan/query/evaluation/EndSearchInternal.h"
#include "velan/query/evaluation/QueryEvaluatorInternal.h"
#include "velan/query/evaluation/QueryWalkInternal.h"
#include "velan/query/evaluation/WitnessesInternal.h"

namespace velan {
namespace {

// Whether a child joined by `queryOperator` can change what its group has come to so far.
bool decides(QueryOperator queryOperator, bool running) {
  switch (queryOperator) {
    case QueryOperator::Or:
      return !running;
    case QueryOperator::Xor:
      return true;
    case QueryOperator::Optional:
    case QueryOperator::Mixed:
      return false;
    default:
      return running;
  }
}

}  // namespace

bool hasOwnRelation(const QueryTerms& node) {
  return isProximity(node.queryOperator()) && node.proximityDistance() > 0;
}

bool hasExclusiveChild(const QueryTerms& node) {
  const auto& children = node.children();
  return !children.empty() && std::any_of(children.begin() + 1, children.end(), [](const auto& child) {
    return child->queryOperator() == QueryOperator::Xor;
  });
}

Relation relationOfChild(const Relation& inherited, const QueryTerms::Children& children, size_t index) {
  const QueryTerms& child = *children[index];
  if (index == 0 || !hasOwnRelation(child)) return inherited;
  return {children[index - 1].get(), child.queryOperator(), child.proximityDistance()};
}

Range spanAround(const SearchedText& text, const Relation& relation, Range place, Range range) {
  const int64_t start =
      reachesBack(relation) ? text.wordStartBefore(place.location, relation.distance, range.location) : place.location;
  const int64_t end =
      reachesOn(relation) ? text.wordEndAfter(endOf(place), relation.distance, endOf(range)) : endOf(place);
  return {start, end - start};
}

RelationRanges::RelationRanges(const SearchedText& text, LeafSearch& leaf, bool negated, const Relation& relation,
                               Range range)
    : _text(text),
      _leaf(leaf),
      _negated(negated),
      _relation(relation),
      _range(range),
      _number(leaf.isWholeRange() ? 0 : leaf.numberFrom(range.location)),
      _pieceStart(range.location) {}

Range RelationRanges::next() { return _negated ? nextPiece() : nextSpan(); }

Range RelationRanges::nextSpan() {
  if (_leaf.isWholeRange()) return _number++ == 0 && _range.length > 0 ? _range : kAbsentRange;
  const int64_t end = endOf(_range);
  const Range* place = _leaf.at(_number);
  if (!place || endOf(*place) > end) return kAbsentRange;
  ++_number;
  return spanAround(_text, _relation, *place, _range);
}

Range RelationRanges::nextPiece() {
  const int64_t end = endOf(_range);
  while (_pieceStart < end) {
    const Range span = nextSpan();
    const int64_t start = std::exchange(_pieceStart, isPresent(span) ? std::max(_pieceStart, endOf(span)) : end);
    const int64_t pieceEnd = isPresent(span) ? span.location : end;
    if (pieceEnd > start) return {start, pieceEnd - start};
  }
  return kAbsentRange;
}

QueryEvaluator::QueryEvaluator(const FastWordEnumerator& enumerator, QueryComparison comparison, LeafKind kind,
                               const LeafPatterns* prepared)
    : _text(enumerator, comparison, prepared ? prepared->literalsTogether() : LiteralsTogether()),
      _comparison(comparisonOn(enumerator, comparison)),
      _kind(kind),
      _prepared(prepared),
      _presentChildren(prepared ? &prepared->manyTerms() : nullptr, _text) {}

QueryEvaluator::QueryEvaluator(QueryComparison comparison, LeafKind kind, const LeafPatterns& prepared)
    : _text(comparison, prepared.literalsTogether()),
      _comparison(comparison),
      _kind(kind),
      _prepared(&prepared),
      _presentChildren(&prepared.manyTerms(), _text) {}

QueryEvaluator::~QueryEvaluator() = default;

void QueryEvaluator::setText(std::u16string_view text) {
  _text.setText(text);
  _presentChildren.forget();
  _evaluated = {0, 0};
  if (!_remembered.empty()) _remembered.clear();
  _witnesses.reset();
  _ends.reset();
}

LeafSearch& QueryEvaluator::otherSearch(const QueryTerms& leaf) {
  if (const auto known = _searches.find(&leaf); known != _searches.end()) return known->second.inText();
  const auto make = [&](auto&& pattern) -> LeafSearch& {
    if (_firstLeaf) return _searches.try_emplace(&leaf, _text, std::forward<decltype(pattern)>(pattern)).first->second;
    _firstSearch.emplace(_text, std::forward<decltype(pattern)>(pattern));
    _firstLeaf = &leaf;
    return *_firstSearch;
  };
  if (const LeafPattern* prepared = _prepared ? _prepared->find(leaf) : nullptr) return make(*prepared);
  return make(std::make_unique<const LeafPattern>(leaf, _kind, _comparison));
}

Ranges QueryEvaluator::places(const QueryTerms& leaf, Range range) {
  LeafSearch& found = search(leaf);
  if (found.isWholeRange()) return range.length > 0 ? Ranges{range} : Ranges();
  const auto places = found.placesIn(range);
  return Ranges(places.begin(), places.end());
}

bool QueryEvaluator::containsAny(const QueryTerms& node) {
  bool found = false;
  _text.lookForAll();
  walkQuery(node, _presentChildren, [&](const QueryTerms& each) {
    if (found || each.queryNot()) return false;
    if (each.isWord()) found = isPresent(search(each).firstIn({0, _text.length()}));
    return !found;
  });
  return found;
}

RelationRanges QueryEvaluator::relationRanges(const QueryTerms& leaf, const Relation& relation, Range range) {
  return {_text, search(leaf), leaf.queryNot(), relation, range};
}

size_t QueryEvaluator::PlaceHash::operator()(const Place& place) const {
  auto hash = reinterpret_cast<uintptr_t>(place.node) * 0x9E3779B97F4A7C15u;
  hash = (hash ^ static_cast<uint64_t>(place.range.location)) * 0x9E3779B97F4A7C15u;
  hash = (hash ^ (hash >> 32) ^ static_cast<uint64_t>(place.range.length)) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 32);
}

bool QueryEvaluator::holdsLeaf(const QueryTerms& leaf, Range range) {
  return isPresent(search(leaf).firstIn(range)) != leaf.queryNot();
}

Witnesses& QueryEvaluator::witnesses() {
  if (!_witnesses) _witnesses = std::make_unique<Witnesses>(*this);
  return *_witnesses;
}

EndSearch& QueryEvaluator::ends() {
  if (!_ends) _ends = std::make_unique<EndSearch>(*this);
  return *_ends;
}

bool QueryEvaluator::reaches(const QueryTerms& node, const Relation& relation) {
  return ends().reaches(node) && (!relation.partner || ends().reaches(*relation.partner));
}

bool QueryEvaluator::evaluate(const QueryTerms& node, const Relation& relation, Range range) {
  if (node.commonOperator() == QueryOperator::Or) _text.lookForAll();
  std::vector<Frame> frames;
  frames.push_back({&node, relation, range, !relation.partner, 0, false, nullptr});
  bool result = false;
  while (!frames.empty()) {
    if (std::optional<Frame> first = step(frames.back(), result)) {
      frames.push_back(std::move(*first));
    } else {
      frames.pop_back();
    }
  }
  return result;
}

std::optional<QueryEvaluator::Frame> QueryEvaluator::step(Frame& frame, bool& result) {
  if (!frame.node->isWord()) return stepGroup(frame, result);
  if (frame.relation.partner) return stepRelated(frame, result);
  result = holdsLeaf(*frame.node, frame.range);
  return std::nullopt;
}

// `result` is that of child `next - 1` when there is one. A group without a relation is both evaluated by its own group
// and as the partner of the term behind it: it is remembered, or each level of nesting would evaluate all below twice.
std::optional<QueryEvaluator::Frame> QueryEvaluator::stepGroup(Frame& frame, bool& result) {
  const auto& children = frame.node->children();
  if (frame.next > 0) {
    const bool exclusive = frame.next > 1 && children[frame.next - 1]->queryOperator() == QueryOperator::Xor;
    frame.running = exclusive ? frame.running != result : result;
  } else if (frame.relation.partner && frame.range.length <= 0) {
    result = false;  // negated or not
    return std::nullopt;
  } else if (frame.isAskedAgain) {
    if (const auto found = _remembered.find({frame.node, frame.range}); found != _remembered.end()) {
      result = found->second;
      return std::nullopt;
    }
  }
  while (true) {
    const size_t index = frame.running ? frame.next : _presentChildren.next(*frame.node, frame.next);
    if (index >= children.size()) break;
    frame.next = index + 1;
    if (index > 0 && !decides(children[index]->queryOperator(), frame.running)) continue;
    const Relation relation = relationOfChild(frame.relation, children, index);
    const bool isPartner = index + 1 < children.size() && hasOwnRelation(*children[index + 1]);
    return Frame{children[index].get(), relation, frame.range, isPartner && !relation.partner, 0, false, nullptr};
  }
  result = !children.empty() && frame.running != frame.node->queryNot();
  if (frame.isAskedAgain) _remembered[{frame.node, frame.range}] = result;
  return std::nullopt;
}

// `result` is that of the partner in `span` when there is one.
std::optional<QueryEvaluator::Frame> QueryEvaluator::stepRelated(Frame& frame, bool& result) {
  const QueryTerms& partner = *frame.relation.partner;
  if (!frame.ranges) {
    frame.ranges = std::make_unique<RelationRanges>(relationRanges(*frame.node, frame.relation, frame.range));
    result = false;
  }
  while (!result) {
    const Range span = frame.ranges->next();
    if (!isPresent(span)) break;
    if (partner.isWord()) {
      result = holdsLeaf(partner, span);
    } else if (ends().reaches(partner)) {
      result = containsEnd(ends().endsOf(partner, {}, span.location, endOf(span)), endOf(span));
    } else {
      return Frame{&partner, {}, span, true, 0, false, nullptr};
    }
  }
  return std::nullopt;
}

}  // namespace velan
