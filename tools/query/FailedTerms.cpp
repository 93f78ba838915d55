#include "tools/query/FailedTerms.h"

#include <algorithm>
#include <vector>

namespace velan::tool {
namespace {

constexpr size_t kDeepest = 20;

bool isAlternative(const ExplainedTerm& term) {
  const QueryOperator op = term.term->queryOperator();
  return !term.isFirst && (op == QueryOperator::Or || op == QueryOperator::Xor);
}

bool combined(bool before, const ExplainedTerm& term) {
  const bool holds = term.holds.value_or(true);
  if (term.isFirst) return holds;
  switch (term.term->queryOperator()) {
    case QueryOperator::Or:
      return before || holds;
    case QueryOperator::Xor:
      return before != holds;
    case QueryOperator::Optional:
    case QueryOperator::Mixed:
      return before;
    default:
      return before && holds;
  }
}

// Marks what failed of the group that ends before `end`: all before the last alternative to something that fails.
void markFailed(const std::vector<ExplainedTerm>& terms, size_t group, size_t end, std::vector<bool>& failed) {
  size_t alternative = group + 1;
  bool holds = false;
  for (size_t i = group + 1; i < end; ++i) {
    if (terms[i].depth != terms[group].depth + 1) continue;
    if (isAlternative(terms[i]) && !holds) alternative = i;
    holds = combined(holds, terms[i]);
    const bool fails = !terms[i].term->isWord() && terms[i].holds == false;
    if (fails) failed[i] = true;
  }
  std::fill(failed.begin() + static_cast<std::ptrdiff_t>(group + 1),
            failed.begin() + static_cast<std::ptrdiff_t>(alternative), true);
}

}  // namespace

FailedTerms::FailedTerms(const PreparedQuery& query) {
  const std::vector<ExplainedTerm> shape = query.explanation(kDeepest);
  const bool hasCompound = shape.size() > 3;  // more than one alternative of two words
  _mayBe = hasCompound && std::any_of(shape.begin(), shape.end(), isAlternative);
}

std::unordered_set<const QueryTerms*> FailedTerms::in(QueryMatcher& matcher, Range range) const {
  std::unordered_set<const QueryTerms*> leaves;
  if (!_mayBe) return leaves;
  const std::vector<ExplainedTerm> terms = matcher.explanation(kDeepest, range);
  std::vector<bool> failed(terms.size());
  for (size_t group = 0; group < terms.size(); ++group) {
    if (terms[group].term->isWord() || !terms[group].holds) continue;
    size_t end = group + 1;
    while (end < terms.size() && terms[end].depth > terms[group].depth) ++end;
    if (failed[group]) {
      std::fill(failed.begin() + static_cast<std::ptrdiff_t>(group), failed.begin() + static_cast<std::ptrdiff_t>(end),
                true);
    } else if (!terms[group].partner) {
      markFailed(terms, group, end, failed);
    }
  }
  for (size_t i = 0; i < terms.size(); ++i) {
    if (failed[i] && terms[i].term->isWord()) leaves.insert(terms[i].term);
  }
  return leaves;
}

}  // namespace velan::tool
