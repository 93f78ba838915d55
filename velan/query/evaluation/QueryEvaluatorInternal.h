// The meaning of a query tree.
//
// A group evaluates its children from left to right and folds their results: and, or, exclusive or; an optional child
// never decides. A leaf holds in a range when it occurs there, a negated one when it does not. A negated group inverts
// its result.
//
// Proximity. In "P op/d N" the later term N carries operator, distance and negation; its partner P is the child
// directly before it in the group, and the fold must be true so far. Let R be the searched range; an empty R gives
// false, negated or not. N's occurrences in R, from left to right, have one span each, clipped to R: from the d-th word
// start before the occurrence (for AFTER: from its own start) to the d-th word end after it (for BEFORE and NEXT: to
// its own end).
//  - Not negated: true when P, without a partner of its own, holds inside at least one span.
//  - Negated: true when P, without a partner, holds inside at least one longest non-empty piece of R outside all spans;
//    without any N the one piece is R. P lies wholly in one piece, a group P is satisfied within one piece, a negated P
//    is inverted within the piece.
//  - A group N hands partner, operator, distance and range to its children joined by and, or, exclusive or, so that
//    "a NEAR (b OR c)" relates a to b or to c; a negated group N inverts its whole result.
// A distance of zero or less relates like and. An empty tree matches nothing.
//
// The same meaning stands in four places, which change together: here for one range; in EndSearch for all ranges with
// one beginning, which relations ask about; in Witnesses for all ranges, where nothing is negated; and in
// QueryOccurrences, for the places that take part in a match.
#ifndef VELAN_QUERY_EVALUATION_QUERY_EVALUATOR_INTERNAL_H
#define VELAN_QUERY_EVALUATION_QUERY_EVALUATOR_INTERNAL_H

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "velan/query/evaluation/LeafSearchInternal.h"

namespace velan {

using Ranges = std::vector<Range>;

/// What a proximity operator relates a node to; without a partner there is no relation.
struct Relation {
  const QueryTerms* partner = nullptr;
  QueryOperator queryOperator = QueryOperator::Mixed;
  int64_t distance = 0;
};

/// Whether `node` is related to the child before it by a proximity operator of its own.
bool hasOwnRelation(const QueryTerms& node);

/// Whether any child but the first is joined by exclusive or.
bool hasExclusiveChild(const QueryTerms& node);

/// The relation of child `index` of a group whose own relation is `inherited`.
Relation relationOfChild(const Relation& inherited, const QueryTerms::Children& children, size_t index);

/// Whether the spans of places reach beyond their beginnings, and beyond their ends.
inline bool reachesBack(const Relation& relation) { return relation.queryOperator != QueryOperator::After; }
inline bool reachesOn(const Relation& relation) {
  return relation.queryOperator == QueryOperator::Near || relation.queryOperator == QueryOperator::After;
}

/// The span of a leaf's `place` in a relation, clipped to `range`.
Range spanAround(const SearchedText& text, const Relation& relation, Range place, Range range);

/// The ranges in which the partner of a leaf has to hold: the spans of the leaf's occurrences or, when it is negated,
/// the pieces outside all spans. Both beginnings and ends grow.
class RelationRanges {
 public:
  RelationRanges(const SearchedText& text, LeafSearch& leaf, bool negated, const Relation& relation, Range range);

  /// The next range, absent when there is none.
  Range next();

 private:
  Range nextSpan();
  Range nextPiece();

  const SearchedText& _text;
  LeafSearch& _leaf;
  const bool _negated;
  const Relation _relation;
  const Range _range;
  size_t _number;
  int64_t _pieceStart;
};

class EndSearch;
class Witnesses;

/// Evaluates any nodes of one tree on one text. Each leaf is searched once. In relations the ends of ranges are
/// searched (EndSearchInternal.h); where a partner nests too deep for that, it is evaluated in each range, and what it
/// gives there is remembered. Depth of the tree costs memory only.
class QueryEvaluator {
 public:
  /// `prepared` may have patterns of leaves, for this kind and for the comparison on the enumerator; others are made
  /// when they are needed. Null for none. Borrows both.
  QueryEvaluator(const FastWordEnumerator& enumerator, QueryComparison comparison, LeafKind kind,
                 const LeafPatterns* prepared = nullptr);
  /// For any number of texts, one after the other; an empty one at first. Borrows the patterns.
  QueryEvaluator(QueryComparison comparison, LeafKind kind, const LeafPatterns& prepared);
  ~QueryEvaluator();

  /// Goes over to `text`, which it borrows; the room of what was found in the one before is used again. Not for an
  /// evaluator with an enumerator.
  void setText(std::u16string_view text);

  const SearchedText& text() const { return _text; }
  /// Null for none.
  const LeafPatterns* prepared() const { return _prepared; }
  /// The children of groups that are to be looked at: what others are has no influence on any answer.
  PresentChildren& presentChildren() { return _presentChildren; }
  LeafSearch& search(const QueryTerms& leaf) {
    return _firstLeaf == &leaf ? _firstSearch->inText() : otherSearch(leaf);
  }
  /// Where the leaf is found in `range`, negated or not.
  Ranges places(const QueryTerms& leaf, Range range);
  /// Whether the text holds any leaf that is neither negated nor below a negated group.
  bool containsAny(const QueryTerms& node);
  /// To be called before nodes are evaluated in one part of the text after the other: what was remembered for another
  /// part goes.
  void forgetOtherRanges(Range range) {
    if (!(range == _evaluated) && !_remembered.empty()) _remembered.clear();
    _evaluated = range;
  }
  bool evaluate(const QueryTerms& node, const Relation& relation, Range range);
  Witnesses& witnesses();
  EndSearch& ends();
  /// Whether `ends` answers for the node.
  bool reaches(const QueryTerms& node, const Relation& relation);

 private:
  // A node that is being evaluated. `step` either names the node that must be evaluated before it goes on, or gives the
  // result.
  struct Frame {
    const QueryTerms* node;
    Relation relation;
    Range range;
    bool isAskedAgain = false;               // a group without a relation that is a partner too: worth remembering
    size_t next = 0;                         // of a group: the child to go on with
    bool running = false;                    // of a group: the result so far
    std::unique_ptr<RelationRanges> ranges;  // of a related leaf
  };
  struct Place {
    const QueryTerms* node;
    Range range;
    bool operator==(const Place& other) const { return node == other.node && range == other.range; }
  };
  struct PlaceHash {
    size_t operator()(const Place& place) const;
  };

  LeafSearch& otherSearch(const QueryTerms& leaf);
  std::optional<Frame> step(Frame& frame, bool& result);
  std::optional<Frame> stepGroup(Frame& frame, bool& result);
  std::optional<Frame> stepRelated(Frame& frame, bool& result);
  bool holdsLeaf(const QueryTerms& leaf, Range range);
  RelationRanges relationRanges(const QueryTerms& leaf, const Relation& relation, Range range);

  SearchedText _text;
  const QueryComparison _comparison;
  const LeafKind _kind;
  const LeafPatterns* const _prepared;
  PresentChildren _presentChildren;
  Range _evaluated{0, 0};
  const QueryTerms* _firstLeaf = nullptr;  // the one whose search needs no room of its own
  std::optional<LeafSearch> _firstSearch;
  std::unordered_map<const QueryTerms*, LeafSearch> _searches;  // of the others
  std::unordered_map<Place, bool, PlaceHash> _remembered;
  std::unique_ptr<Witnesses> _witnesses;  // made when first needed, like the ends
  std::unique_ptr<EndSearch> _ends;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_QUERY_EVALUATOR_INTERNAL_H
