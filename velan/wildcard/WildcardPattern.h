// Wildcard patterns: what a pattern is (its type), its normal form, how many units it can match, and its conversion
// through the table that the text goes through. Patterns are given by their first unit and one past the last.
//
// `*` stands for any run of units, `?` for any one. In the Unix flavour `[` opens a set that stands for one unit: it
// ends at the next `]`, `^` at its start negates it, `-` makes a range of the units beside it, `|` separates members
// and is none. There is no escape character.
#ifndef VELAN_WILDCARD_WILDCARD_PATTERN_H
#define VELAN_WILDCARD_WILDCARD_PATTERN_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// What `optimizeWildcard` returns. "Fixed" means without `?` and sets.
enum {
  WildcardTypeExact = 0,       // no wildcard at all
  WildcardTypeAnyOne = 1,      // `?` only
  WildcardTypePrefix = 2,      // fixed, one `*` at the end
  WildcardTypeSuffix = 3,      // fixed, one `*` at the start
  WildcardTypeContains = 4,    // fixed between two `*`
  WildcardTypeGeneral = 5,     // any other pattern with `*`, without a set
  WildcardTypeSetGeneral = 6,  // sets, and more than one `*` or one inside
  WildcardTypeSetPrefix = 7,   // sets, one `*` at the end
  WildcardTypeSetSuffix = 8,   // sets, one `*` at the start
  WildcardTypeSetFixed = 9,    // sets, no `*`
  WildcardTypeUnusable = 10,   // malformed, empty, without a literal, or with too few of them
};

/// `optimizeWildcard`: rewrites `[start, end)` in place into its normal form and returns its type, 0 to 10. The normal
/// form has no runs of `*`, no `|` in sets and no sets without members; it is never longer than the pattern. A pattern
/// with a `*` and fewer than `minCharacters` literals (units and sets) is unusable.
///
/// `range` (may be null) receives where the fixed units of the normal form lie: without the `*` at its end (types 2, 4
/// and 7) and at its start (3, 4 and 8), otherwise all of it; for an unusable pattern what was rewritten until that
/// became clear.
VELAN_EXPORT uint32_t optimizeWildcard(unichar* start, unichar* end, Range* range, uint64_t minCharacters);

/// The length of the normal form that `optimizeWildcard` left, from the type and the range it gave for a usable
/// pattern.
VELAN_EXPORT int64_t normalWildcardLen(uint32_t type, Range range);

/// `minWildcardLen`: the least number of units that the pattern matches. A set that is not closed ends with the
/// pattern.
VELAN_EXPORT int64_t minWildcardLen(const unichar* start, const unichar* end);

/// `maxWildcardLen`: the greatest number of units that the pattern matches, `INT64_MAX` if it has a `*`.
VELAN_EXPORT int64_t maxWildcardLen(const unichar* start, const unichar* end);

/// `unicharTableForWildcardComparison`: the table that ignores case (bit 0 of `flags`), diacritics (bit 1) or both;
/// null for neither. Higher bits do not count.
VELAN_EXPORT const unichar* unicharTableForWildcardComparison(uint32_t flags);

/// `prepareWildcardUsingUnicharTable`: replaces each unit of the pattern by its entry in `table` (65,536 entries; null
/// changes nothing), as the matchers that take a table expect it.
VELAN_EXPORT void prepareWildcardUsingUnicharTable(unichar* start, unichar* end, const unichar* table);

/// `MinWildcardFuzzyAnalogy`: the least similarity that counts as a fuzzy match, 0.75 at first. While other threads may
/// search use the accessors.
VELAN_EXPORT extern double MinWildcardFuzzyAnalogy;

/// `minWildcardFuzzyAnalogy`
VELAN_EXPORT double minWildcardFuzzyAnalogy(void);
/// `setMinWildcardFuzzyAnalogy:`: any number is taken.
VELAN_EXPORT void setMinWildcardFuzzyAnalogy(double analogy);

#ifdef __cplusplus
}  // extern "C"

class String;

/// `wildcardType`: the type that `optimizeWildcard` gives with at least 1 literal, but 0 for an empty or absent string.
VELAN_EXPORT uint32_t wildcardType(const String& pattern);

/// The normal form of the pattern, as `optimizeWildcard` makes it with at least 1 literal; absent for an unusable one.
VELAN_EXPORT String normalWildcard(const String& pattern);

/// `wildcardLength`: `minWildcardLen` of the string as it stands.
VELAN_EXPORT int64_t wildcardLength(const String& pattern);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_WILDCARD_WILDCARD_PATTERN_H
