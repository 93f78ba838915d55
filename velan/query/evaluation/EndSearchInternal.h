// Where ranges that begin at one place may end so that a query holds in them.
//
// The meaning of a query is that of `QueryEvaluator`, asked differently: instead of one range, all ranges with the same
// beginning are answered at once, as runs of ends. And, or, exclusive or and negation join such runs; a leaf gives one
// run. For a relation "P op/d N" and a beginning s:
//  - A place of N whose span begins before s is asked for P in ranges from s on: P's ends for s, as far as the spans
//    reach, and everything behind the first span's end that is among them.
//  - A place whose span begins at or behind s gives the same ends for every such s. Each is looked at once, from left
//    to right, and kept so that "of the places from the i-th on" is a walk over the runs, not over the places.
//  - For a negated N the pieces between two spans are the same for every s, too; those at the ends are asked for.
// So each place of each N costs one question for P's ends, which the length of a span bounds, however deeply relations
// nest and whatever is negated.
#ifndef VELAN_QUERY_EVALUATION_END_SEARCH_INTERNAL_H
#define VELAN_QUERY_EVALUATION_END_SEARCH_INTERNAL_H

#include <memory>
#include <unordered_map>
#include <vector>

#include "velan/query/evaluation/PlacedSpansInternal.h"
#include "velan/query/evaluation/QueryEvaluatorInternal.h"
#include "velan/query/evaluation/RangeEndsInternal.h"

namespace velan {

/// What is known of a leaf with a relation, as far as the text was looked at.
class RelationEnds {
 public:
  PlacedSpans placed;
  size_t looked = 0;  // the places, or the pieces behind places, that were looked at

  /// Adds the ends that the place `number` gives to all ranges that begin before its span: `run`, or all from `first`.
  void addRun(size_t number, EndRun run);
  void addAllFrom(size_t number, int64_t first);
  /// Those that the places from `number` on give, up to `last`.
  RangeEnds endsOfPlacesFrom(size_t number, int64_t last) const;

  // Of a negated leaf, the numbers of the places behind which a piece satisfies the relation that ends where the next
  // span begins, and the ends of those that end anywhere before the next place does.
  std::vector<size_t> goodPieces;
  RangeEnds openPieces;

 private:
  struct AllFrom {
    size_t number;
    int64_t first;
  };
  LabelledRuns _runs;             // of several places that give an end, the number of the last one
  std::vector<AllFrom> _allFrom;  // those that no later place undercuts, so both members grow
};

/// Answers for one evaluator, whose leaves and text it uses.
class EndSearch {
 public:
  explicit EndSearch(QueryEvaluator& evaluator) : _evaluator(evaluator) {}

  /// Whether the ends of `node` can be found: it has witnesses, or does not nest deeper than is worth a recursion.
  bool reaches(const QueryTerms& node);
  /// The ends of ranges from `start` to at most `last`, which are not empty, in which the node that is reached holds.
  RangeEnds endsOf(const QueryTerms& node, const Relation& relation, int64_t start, int64_t last);

 private:
  struct Known {
    int64_t last = -1;  // ends up to here are known
    RangeEnds ends;
  };
  struct Beginning {
    const QueryTerms* node;
    int64_t start;
    bool operator==(const Beginning& other) const = default;
  };
  struct BeginningHash {
    size_t operator()(const Beginning& beginning) const;
  };

  bool isShallow(const QueryTerms& node);
  // All of them as `endsOf`.
  RangeEnds endsOfGroup(const QueryTerms& group, const Relation& relation, int64_t start, int64_t last);
  RangeEnds endsOfLeaf(const QueryTerms& leaf, int64_t start, int64_t last);
  RangeEnds endsOfRelated(const QueryTerms& leaf, const Relation& relation, int64_t start, int64_t last);
  RangeEnds endsOfUnrelated(RelationEnds& known, const QueryTerms& leaf, const Relation& relation, int64_t start,
                            int64_t last);
  RangeEnds endsOfCutSpans(const RelationEnds& known, size_t first, size_t past, const QueryTerms& partner,
                           int64_t start, int64_t last);
  void lookAtSpans(RelationEnds& known, const QueryTerms& leaf, const Relation& relation, int64_t last);
  void lookAtPieces(RelationEnds& known, const QueryTerms& leaf, const Relation& relation, int64_t last);

  QueryEvaluator& _evaluator;
  std::unordered_map<const QueryTerms*, bool> _shallow;
  std::unordered_map<const QueryTerms*, int> _questions;  // asked of groups that have witnesses
  std::unordered_map<const QueryTerms*, RelationEnds> _relations;
  std::unordered_map<Beginning, Known, BeginningHash> _known;  // of groups without a relation
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_END_SEARCH_INTERNAL_H
