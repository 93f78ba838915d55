// Witnesses: the smallest ranges in which something holds.
//
// Where a part of a query has no negation and no exclusive or, it holds in a range exactly when it holds in some part
// of that range. Then the smallest ranges in which it holds tell everything, and "does it hold in this span?" is a
// search in a sorted list instead of an evaluation. No witness contains another, so both their beginnings and ends
// grow.
#ifndef VELAN_QUERY_EVALUATION_WITNESSES_INTERNAL_H
#define VELAN_QUERY_EVALUATION_WITNESSES_INTERNAL_H

#include <optional>
#include <unordered_map>

#include "velan/query/evaluation/QueryEvaluatorInternal.h"

namespace velan {

/// Finds the witnesses of nodes in the whole text, for one evaluator, whose leaves and text it uses. A level of nesting
/// costs time in proportion to the places of its terms, and no recursion.
class Witnesses {
 public:
  explicit Witnesses(QueryEvaluator& evaluator) : _evaluator(evaluator) {}

  /// Whether neither a negation nor an exclusive or is at or below `node`, nor a lone `*`.
  bool has(const QueryTerms& node);
  /// The witnesses of a node that has them, without a relation of its own; kept as long as this.
  const Ranges& of(const QueryTerms& node);
  /// Of these, the end of the first one that begins at or after `start`; `NSNotFound` when there is none.
  int64_t firstEndFrom(const QueryTerms& node, int64_t start);

 private:
  // A node whose witnesses are being found.
  struct Frame {
    const QueryTerms* node;
    Relation relation;
    bool isKept;  // asked for from outside, or as a partner
    size_t next = 0;
    Ranges running;
  };

  std::optional<Frame> step(Frame& frame, Ranges& result);
  std::optional<Frame> stepGroup(Frame& frame, Ranges& result);
  const Ranges* known(const QueryTerms& node);
  Ranges ofRelation(const QueryTerms& leaf, const Relation& relation, const Ranges& partner);

  QueryEvaluator& _evaluator;
  std::unordered_map<const QueryTerms*, bool> _has;
  std::unordered_map<const QueryTerms*, Ranges> _known;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_WITNESSES_INTERNAL_H
