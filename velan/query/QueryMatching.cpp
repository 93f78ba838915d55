#include "velan/query/QueryMatching.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "velan/query/evaluation/QueryEvaluatorInternal.h"
#include "velan/query/evaluation/QueryOccurrencesInternal.h"
#include "velan/query/evaluation/QueryWalkInternal.h"

namespace velan {
namespace {

constexpr QueryComparison plainComparison(bool caseSensitive) {
  return caseSensitive ? QueryComparison::Exact : QueryComparison::IgnoreCase;
}

// Asks about an index of `string`; the tree takes note when memory runs out for it.
template <typename Result, typename Ask>
Result answerOn(const String& string, const QueryTerms& terms, Result neutral, const Ask& ask) {
  const auto enumerator = FastWordEnumerator::enumeratorDividingOnDemand(string, false);
  if (!enumerator && !string.isEmpty()) terms.noteOutOfMemory();
  return enumerator ? answerOrNote(terms, neutral, [&] { return ask(*enumerator); }) : neutral;
}

bool matches(const QueryTerms& terms, const String& string, QueryComparison comparison, LeafKind kind) {
  return answerOn(string, terms, false, [&](const FastWordEnumerator& enumerator) {
    return QueryEvaluator(enumerator, comparison, kind).evaluate(terms, {}, {0, string.length()});
  });
}

bool containsAny(const QueryTerms& terms, const String& string, QueryComparison comparison, LeafKind kind) {
  return answerOn(string, terms, false, [&](const FastWordEnumerator& enumerator) {
    return QueryEvaluator(enumerator, comparison, kind).containsAny(terms);
  });
}

int64_t enumerate(const QueryTerms& terms, const String& string, Range range, QueryComparison comparison, bool wildcard,
                  QueryOccurrenceHandler handler) {
  if (!handler) return 0;
  auto occurrences = answerOn(string, terms, std::vector<QueryOccurrence>(), [&](const FastWordEnumerator& enumerator) {
    return queryOccurrences(enumerator, terms, range, comparison, wildcard);
  });
  return callHandlerWithOccurrences(std::move(occurrences), handler);
}

// The place of any leaf that comes first by `isBetter`, among those in the range that `isAllowed`.
template <typename IsAllowed, typename IsBetter>
Range bestPlace(const String& string, const QueryTerms& terms, Range range, bool caseSensitive, bool exactPhrase,
                IsAllowed isAllowed, IsBetter isBetter) {
  const QueryComparison comparison = plainComparison(caseSensitive);
  const Range searched = clippedRange(range, string.length());
  return answerOn(string, terms, kAbsentRange, [&](const FastWordEnumerator& enumerator) {
    QueryEvaluator evaluator(enumerator, comparison, exactPhrase ? LeafKind::Plain : LeafKind::Tolerant);
    Range best = kAbsentRange;
    walkPositiveLeaves(terms, [&](const QueryTerms& leaf) {
      LeafSearch& search = evaluator.search(leaf);
      size_t number = search.numberFrom(searched.location);
      for (const Range* place = search.at(number); place && endOf(*place) <= endOf(searched);
           place = search.at(++number)) {
        if (isAllowed(*place, searched) && (!isPresent(best) || isBetter(*place, best))) best = *place;
      }
    });
    return best;
  });
}

}  // namespace

bool matchesString(const FastWordEnumerator& enumerator, const QueryTerms& node, const QueryTerms* partner,
                   QueryOperator queryOperator, int64_t distance, int64_t start, int64_t length,
                   QueryComparison comparison, bool wildcard) {
  return answerOrNote(enumerator, false, [&] {
    return QueryEvaluator(enumerator, comparison, leafKind(wildcard))
        .evaluate(node, {partner, queryOperator, distance}, clippedRange({start, length}, enumerator.length()));
  });
}

bool containsString(const FastWordEnumerator& enumerator, const QueryTerms& node, QueryComparison comparison,
                    bool wildcard) {
  return answerOrNote(enumerator, false,
                      [&] { return QueryEvaluator(enumerator, comparison, leafKind(wildcard)).containsAny(node); });
}

std::vector<QueryOccurrence> queryOccurrences(const FastWordEnumerator& enumerator, const QueryTerms& node, Range range,
                                              QueryComparison comparison, bool wildcard) {
  QueryEvaluator evaluator(enumerator, comparison, leafKind(wildcard));
  return occurrencesOfQuery(evaluator, node, clippedRange(range, enumerator.length()), {});
}

int64_t callHandlerWithOccurrences(std::vector<QueryOccurrence> occurrences, QueryOccurrenceHandler handler) {
  if (!handler) return 0;
  std::stable_sort(occurrences.begin(), occurrences.end(), precedes);
  int64_t reached = 0;
  int64_t count = 0;
  for (const QueryOccurrence& each : occurrences) {
    const bool reported = each.range.location >= reached;
    if (reported && handler(each.term, each.range, each.primary)) return count;
    count += reported;
    reached = endOf(each.range);
  }
  return count;
}

int64_t callHandlerWithOccurrences(std::vector<QueryOccurrence> occurrences,
                                   bool (*handler)(void* argument, const String& term, int64_t location, int64_t length,
                                                   bool primary),
                                   void* argument) {
  if (!handler) return 0;
  return callHandlerWithOccurrences(std::move(occurrences),
                                    [handler, argument](const String& term, Range range, bool primary) {
                                      return handler(argument, term, range.location, range.length, primary);
                                    });
}

int64_t enumerateOccurrences(const FastWordEnumerator& enumerator, const QueryTerms& node, Range range,
                             QueryComparison comparison, bool wildcard, QueryOccurrenceHandler handler) {
  if (!handler) return 0;
  auto occurrences = answerOrNote(enumerator, std::vector<QueryOccurrence>(),
                                  [&] { return queryOccurrences(enumerator, node, range, comparison, wildcard); });
  return callHandlerWithOccurrences(std::move(occurrences), handler);
}

bool QueryTerms::matchesPlain(const String& string, bool caseSensitive) const {
  return matches(*this, string, plainComparison(caseSensitive), LeafKind::Plain);
}

bool QueryTerms::matchesString(const String& string, QueryComparison comparison) const {
  return matches(*this, string, comparison, LeafKind::Wildcard);
}

bool QueryTerms::containsPlain(const String& string, bool caseSensitive) const {
  return containsAny(*this, string, plainComparison(caseSensitive), LeafKind::Plain);
}

bool QueryTerms::containsString(const String& string, QueryComparison comparison) const {
  return containsAny(*this, string, comparison, LeafKind::Wildcard);
}

int64_t QueryTerms::enumeratePlain(const String& string, Range range, bool caseSensitive,
                                   QueryOccurrenceHandler handler) const {
  return enumerate(*this, string, range, plainComparison(caseSensitive), false, handler);
}

int64_t QueryTerms::enumerateString(const String& string, Range range, QueryComparison comparison,
                                    QueryOccurrenceHandler handler) const {
  return enumerate(*this, string, range, comparison, true, handler);
}

Range findNextQueryTerm(const String& string, const QueryTerms& terms, bool, Range range, bool caseSensitive,
                        bool anchored, bool exactPhrase) {
  return bestPlace(
      string, terms, range, caseSensitive, exactPhrase,
      [anchored](const Range& place, const Range& searched) {
        return !anchored || place.location == searched.location;
      },
      rangePrecedes);
}

Range findPreviousQueryTerm(const String& string, const QueryTerms& terms, bool, Range range, bool caseSensitive,
                            bool anchored, bool exactPhrase) {
  return bestPlace(
      string, terms, range, caseSensitive, exactPhrase,
      [anchored](const Range& place, const Range& searched) { return !anchored || endOf(place) == endOf(searched); },
      [](const Range& a, const Range& b) {
        return a.location != b.location ? a.location > b.location : a.length > b.length;
      });
}

}  // namespace velan
