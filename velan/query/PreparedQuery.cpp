#include "velan/query/PreparedQuery.h"

#include <new>
#include <utility>

#include "velan/query/evaluation/QueryEvaluatorInternal.h"
#include "velan/query/evaluation/QueryOccurrencesInternal.h"
#include "velan/query/filter/RequiredLiteralsInternal.h"

namespace velan {

PreparedQuery::PreparedQuery(std::shared_ptr<const QueryTerms> terms, QueryComparison comparison, bool wildcard)
    : _terms(std::move(terms)),
      _comparison(comparison),
      _wildcard(wildcard),
      _patterns(std::make_unique<LeafPatterns>(*_terms, leafKind(wildcard), comparison)) {}

PreparedQuery::~PreparedQuery() = default;

std::unique_ptr<const PreparedQuery> PreparedQuery::queryWithTerms(std::shared_ptr<const QueryTerms> terms,
                                                                   QueryComparison comparison, bool wildcard) {
  if (!terms) return nullptr;
  try {
    return std::unique_ptr<const PreparedQuery>(new PreparedQuery(std::move(terms), comparison, wildcard));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::unique_ptr<FastWordEnumerator> PreparedQuery::enumeratorWithString(const String& text) const {
  return FastWordEnumerator::enumeratorDividingOnDemand(text, false);
}

std::vector<std::vector<String>> PreparedQuery::requiredLiterals() const {
  std::vector<std::vector<String>> required;
  for (const auto& group : velan::requiredLiterals(*_terms, *_patterns)) {
    required.emplace_back();
    for (const std::u16string& literal : group) {
      required.back().emplace_back(std::u16string_view(literal));
      if (required.back().back().isAbsent()) throw std::bad_alloc();
    }
  }
  return required;
}

QueryMatcher::QueryMatcher(const PreparedQuery& query, const FastWordEnumerator& enumerator)
    : _query(query), _enumerator(&enumerator) {}

QueryMatcher::QueryMatcher(const PreparedQuery& query) : _query(query), _enumerator(nullptr) {}

QueryMatcher::~QueryMatcher() = default;

void QueryMatcher::setText(std::u16string_view text) {
  _text = text;
  _ranOutOfMemory = false;
  if (_evaluator) _evaluator->setText(text);
}

QueryEvaluator& QueryMatcher::evaluator() {
  if (_evaluator) return *_evaluator;
  const LeafKind kind = leafKind(_query._wildcard);
  if (_enumerator) {
    const bool fits = comparisonOn(*_enumerator, _query._comparison) == _query._comparison;
    _evaluator = std::make_unique<QueryEvaluator>(*_enumerator, _query._comparison, kind,
                                                  fits ? _query._patterns.get() : nullptr);
  } else {
    _evaluator = std::make_unique<QueryEvaluator>(_query._comparison, kind, *_query._patterns);
    _evaluator->setText(_text);
  }
  return *_evaluator;
}

// An evaluator that an allocation failed in is of no more use.
template <typename Ask>
bool QueryMatcher::answer(Ask ask) {
  if (hasNoText()) return false;
  try {
    return ask(evaluator());
  } catch (const std::bad_alloc&) {
    _evaluator.reset();
    _ranOutOfMemory = true;
    return false;
  }
}

bool QueryMatcher::matches(Range range) {
  const Range clipped = clippedRange(range, length());
  return answer([&](QueryEvaluator& evaluator) {
    evaluator.forgetOtherRanges(clipped);
    return evaluator.evaluate(*_query._terms, {}, clipped);
  });
}

bool QueryMatcher::contains() {
  return answer([this](QueryEvaluator& evaluator) { return evaluator.containsAny(*_query._terms); });
}

std::vector<QueryOccurrence> QueryMatcher::occurrences(Range range,
                                                       const std::unordered_set<const QueryTerms*>& withoutPart) {
  const Range clipped = clippedRange(range, length());
  try {
    evaluator().forgetOtherRanges(clipped);
    return occurrencesOfQuery(evaluator(), *_query._terms, clipped, withoutPart);
  } catch (...) {
    _evaluator.reset();
    throw;
  }
}

void QueryMatcher::findOccurrences(std::vector<QueryOccurrence>& occurrences, Range range) {
  const Range clipped = clippedRange(range, length());
  try {
    evaluator().forgetOtherRanges(clipped);
    velan::findOccurrences(evaluator(), *_query._terms, clipped, occurrences);
  } catch (...) {
    _evaluator.reset();
    throw;
  }
}

}  // namespace velan
