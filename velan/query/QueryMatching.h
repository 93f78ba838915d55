// Evaluating queries on texts: whether a text matches, and where the terms occur.
#ifndef VELAN_QUERY_QUERY_MATCHING_H
#define VELAN_QUERY_QUERY_MATCHING_H

#include <concepts>
#include <span>
#include <vector>

#include "velan/query/QueryTerms.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {

/// Where a term of a query occurs.
struct QueryOccurrence {
  Range range;   // in code units
  String term;   // the word, phrase or pattern of the leaf
  bool primary;  // whether the place takes part in what satisfied the query
};

/// The order in which occurrences are reported: by location, the longer first.
inline bool precedes(const QueryOccurrence& a, const QueryOccurrence& b) { return rangePrecedes(a.range, b.range); }

// Where memory runs out the answers are false, 0 and absent, and the enumerator, where one is given, takes note of it,
// else the tree.
//
// The functions on an enumerator serve callers that index a text once and ask several queries. The enumerator must have
// been created without `wildcard`; for `IgnoreCase` it is best created to ignore case, which saves mapping its units
// again (and ignores case whatever the comparison says). With `wildcard` the leaves are wildcard patterns, otherwise
// plain words.

/// `matchesString`: whether `node` holds in `length` units from `start` on, which are clipped to the text. `partner`,
/// `queryOperator` and `distance` say what a proximity operator relates the node to; null, `Mixed` and 0 for nothing.
VELAN_EXPORT bool matchesString(const FastWordEnumerator& enumerator, const QueryTerms& node, const QueryTerms* partner,
                                QueryOperator queryOperator, int64_t distance, int64_t start, int64_t length,
                                QueryComparison comparison, bool wildcard);

/// `containsString`: whether the text holds any leaf of `node` that is neither negated nor below a negated group,
/// whatever the operators.
VELAN_EXPORT bool containsString(const FastWordEnumerator& enumerator, const QueryTerms& node,
                                 QueryComparison comparison, bool wildcard);

/// The occurrences of all leaves in `range` that are neither negated nor below a negated group, whether or not the
/// query matches, in the order of `precedes`, each range once. An occurrence is primary when it takes part in the
/// match: under a proximity operator when it is one of two that satisfied the relation, elsewhere always. What is
/// related to a group takes part where the group holds near enough, and of the group what makes it hold there.
VELAN_EXPORT std::vector<QueryOccurrence> queryOccurrences(const FastWordEnumerator& enumerator, const QueryTerms& node,
                                                           Range range, QueryComparison comparison, bool wildcard);

/// `callHandlerWithOccurrences`: hands over the occurrences in the order of `precedes`, leaving out those that begin
/// before the end of the one considered last, whether that was handed over or not (so a short one that is left out
/// inside a long one can let a later one inside the long one through). Returns how many before a stop.
VELAN_EXPORT int64_t callHandlerWithOccurrences(std::vector<QueryOccurrence> occurrences,
                                                QueryOccurrenceHandler handler);
/// `callHandlerWithOccurrences`: the same with a plain function and an argument of the caller's.
VELAN_EXPORT int64_t callHandlerWithOccurrences(std::vector<QueryOccurrence> occurrences,
                                                bool (*handler)(void* argument, const String& term, int64_t location,
                                                                int64_t length, bool primary),
                                                void* argument);

/// `enumerateOccurrences`: `callHandlerWithOccurrences` of the `queryOccurrences`.
VELAN_EXPORT int64_t enumerateOccurrences(const FastWordEnumerator& enumerator, const QueryTerms& node, Range range,
                                          QueryComparison comparison, bool wildcard, QueryOccurrenceHandler handler);

/// `matchesQueryTerms:caseSensitive:`: `matchesString:caseSensitive:` of `terms`.
bool matchesQueryTerms(const String& string, const QueryTerms& terms, std::same_as<bool> auto caseSensitive) {
  return terms.matchesString(string, caseSensitive);
}
/// `containsQueryTerms:caseSensitive:`: `containsString:caseSensitive:` of `terms`.
bool containsQueryTerms(const String& string, const QueryTerms& terms, std::same_as<bool> auto caseSensitive) {
  return terms.containsString(string, caseSensitive);
}
/// `enumerateQueryTerms:range:caseSensitive:handler:`: `enumerateString:range:caseSensitive:handler:` of `terms`.
int64_t enumerateQueryTerms(const String& string, const QueryTerms& terms, Range range,
                            std::same_as<bool> auto caseSensitive, QueryOccurrenceHandler handler) {
  return terms.enumerateString(string, range, caseSensitive, handler);
}

/// `findNextQueryTerm:isMutable:range:caseSensitive:anchored:exactPhrase:`: the first place in `range` of any leaf that
/// is neither negated nor below a negated group, the longest that begins there; absent if there is none. Leaves are
/// plain words. With `anchored` the place begins where the range does. With `exactPhrase` a phrase is found unit by
/// unit; without, any separators may lie between its words. `isMutable` is for callers whose texts may change during
/// the search; strings here never do.
VELAN_EXPORT Range findNextQueryTerm(const String& string, const QueryTerms& terms, bool isMutable, Range range,
                                     bool caseSensitive, bool anchored, bool exactPhrase);
/// `findPreviousQueryTerm:isMutable:range:caseSensitive:anchored:exactPhrase:`: the same for the last place; with
/// `anchored` it ends where the range does.
VELAN_EXPORT Range findPreviousQueryTerm(const String& string, const QueryTerms& terms, bool isMutable, Range range,
                                         bool caseSensitive, bool anchored, bool exactPhrase);

/// `matchesQueryTerms:caseSensitive:` of a list: whether any of its strings matches.
bool matchesQueryTerms(std::span<const String> strings, const QueryTerms& terms,
                       std::same_as<bool> auto caseSensitive) {
  for (const String& string : strings) {
    if (terms.matchesString(string, caseSensitive)) return true;
  }
  return false;
}
/// `containsQueryTerms:caseSensitive:` of a list: whether any of its strings holds a leaf.
bool containsQueryTerms(std::span<const String> strings, const QueryTerms& terms,
                        std::same_as<bool> auto caseSensitive) {
  for (const String& string : strings) {
    if (terms.containsString(string, caseSensitive)) return true;
  }
  return false;
}

}  // namespace velan

#endif  // VELAN_QUERY_QUERY_MATCHING_H
