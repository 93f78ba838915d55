// Queries and texts of any bytes: what is written back must parse into a query with the same answers, and occurrences
// must lie in the text, in order. The first line is the query, the rest the text.
#include "fuzz/FuzzTarget.h"
#include "velan/query/QueryMatching.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace {

using namespace velan;

bool matches(const QueryTerms& terms, const String& text, bool wildcard) {
  return wildcard ? terms.matchesString(text, QueryComparison::IgnoreCase) : terms.matchesString(text, false);
}

void checkOccurrences(const QueryTerms& terms, const String& text, bool wildcard) {
  const auto words = FastWordEnumerator::enumeratorWithString(text, true, false);
  if (!words) return;
  const Range all{0, text.length()};
  const auto occurrences = queryOccurrences(*words, terms, all, QueryComparison::IgnoreCase, wildcard);
  for (size_t i = 0; i < occurrences.size(); ++i) {
    const Range& range = occurrences[i].range;
    require(range.location >= 0 && range.length > 0 && endOf(range) <= text.length());
    require(i == 0 || precedes(occurrences[i - 1], occurrences[i]));
  }
  require(occurrences.empty() || containsString(*words, terms, QueryComparison::IgnoreCase, wildcard));
}

}  // namespace

FUZZ_TARGET(query) {
  const String query = String::fromUTF8Lossy(input.takeUntil('\n'));
  const String text = input.text();
  for (const bool wildcard : {false, true}) {
    const auto parse = [wildcard](const String& string) {
      return wildcard ? QueryTerms::initWithWildcard(string) : QueryTerms::initWithString(string);
    };
    const auto terms = parse(query);
    const bool expected = matches(*terms, text, wildcard);
    require(matches(*parse(terms->standardizedQueryTerm()), text, wildcard) == expected);
    require(matches(*parse(terms->normalizedQueryTerm()), text, wildcard) == expected);
    checkOccurrences(*terms, text, wildcard);
  }
}
