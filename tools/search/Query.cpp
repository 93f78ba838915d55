#include "tools/search/Query.h"

#include "tools/Console.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

QueryComparison comparisonOf(const QueryOptions& options) {
  QueryComparison comparison = options.caseSensitive ? QueryComparison::Exact : QueryComparison::IgnoreCase;
  if (options.ignoreDiacritics) comparison = comparison | QueryComparison::IgnoreDiacritics;
  if (options.fuzzy) comparison = comparison | QueryComparison::Fuzzy;
  return comparison;
}

}  // namespace

std::optional<Query> makeQuery(const QueryOptions& options) {
  if (options.noWildcards && (options.ignoreDiacritics || options.fuzzy)) {
    complain("--no-wildcards finds plain words only; it cannot be combined with --ignore-diacritics or --fuzzy");
    return std::nullopt;
  }
  if (!(options.similarity > 0 && options.similarity <= 1)) {
    complain("--fuzzy takes a similarity above 0 and up to 1");
    return std::nullopt;
  }
  const String text = String::fromUTF8(options.query);
  if (text.isAbsent()) {
    complain("the query is not valid UTF-8");
    return std::nullopt;
  }
  FastWordEnumerator::setSplitAsianWords(true);
  setMinWildcardFuzzyAnalogy(options.similarity);
  auto terms = options.noWildcards ? QueryTerms::initWithString(text, QueryOperator::And, options.distance)
                                   : QueryTerms::initWithWildcard(text, QueryOperator::And, options.distance);
  if (!terms->isValid()) complain("the query has no terms, so it matches nothing");
  return Query{std::move(terms), comparisonOf(options), !options.noWildcards};
}

std::unique_ptr<FastWordEnumerator> Query::index(const String& text) const {
  // Upper case now saves mapping the units later, but not on the way to units without diacritics.
  const bool upperCase =
      contains(comparison, QueryComparison::IgnoreCase) && !contains(comparison, QueryComparison::IgnoreDiacritics);
  return FastWordEnumerator::enumeratorWithString(text, upperCase, false);
}

}  // namespace velan::tool
