#include "velan/query/QueryExplanation.h"

#include <utility>

#include "velan/query/PreparedQuery.h"
#include "velan/query/evaluation/QueryEvaluatorInternal.h"

namespace velan {
namespace {

ExplainedTerm explainedChild(const ExplainedTerm& parent, size_t index) {
  const auto& children = parent.term->children();
  ExplainedTerm child;
  child.term = children[index].get();
  child.partner = relationOfChild({}, children, index).partner;
  child.depth = parent.depth + 1;
  child.isFirst = index == 0;
  return child;
}

}  // namespace

LeafMeaning leafMeaning(const QueryTerms& leaf, QueryComparison comparison, bool wildcard) {
  return leaf.isWord() ? LeafPattern(leaf, leafKind(wildcard), comparison).meaning() : LeafMeaning::Nothing;
}

std::vector<ExplainedTerm> PreparedQuery::explanation(size_t deepest) const {
  std::vector<ExplainedTerm> explained;
  std::vector<ExplainedTerm> pending(1);
  pending.front().term = _terms.get();
  while (!pending.empty()) {
    explained.push_back(std::move(pending.back()));
    pending.pop_back();
    ExplainedTerm& each = explained.back();
    if (each.term->isWord()) {
      each.meaning = _patterns->find(*each.term)->meaning();
      if (_wildcard) each.pieces = explainedPieces(*each.term, _comparison);
    } else if (each.depth < deepest) {
      for (size_t i = each.term->children().size(); i-- > 0;) pending.push_back(explainedChild(each, i));
    }
  }
  return explained;
}

std::vector<ExplainedTerm> QueryMatcher::explanation(size_t deepest) { return explanation(deepest, {0, NSNotFound}); }

std::vector<ExplainedTerm> QueryMatcher::explanation(size_t deepest, Range range) {
  std::vector<ExplainedTerm> explained = _query.explanation(deepest);
  const Range all = clippedRange(range, length());
  if (hasNoText()) return explained;
  evaluator().forgetOtherRanges(all);
  size_t related = SIZE_MAX;  // the depth of the group whose relation is that of the terms below it
  for (ExplainedTerm& each : explained) {
    if (each.depth <= related) {
      const Relation relation{each.partner, each.term->queryOperator(), each.term->proximityDistance()};
      each.holds = evaluator().evaluate(*each.term, each.partner ? relation : Relation(), all);
      related = each.partner ? each.depth : SIZE_MAX;
    }
    if (each.term->isWord()) each.places = evaluator().places(*each.term, all);
  }
  return explained;
}

}  // namespace velan
