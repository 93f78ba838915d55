// Whether a whole run of units matches a wildcard pattern (syntax: WildcardPattern.h), and how similar two words are.
// Runs are given by their first unit and one past the last. The matchers neither recurse nor allocate (a pattern of
// more than 4,096 units may need working memory, see `stringMatchesUnixWildcard`), take at most some steps per unit of
// the text for each 64 units of the pattern, accept patterns in normal form or not, and may be called from any thread.
// PreparedWildcard.h and PreparedSimilarity.h have the same for one pattern or word and many words.
#ifndef VELAN_WILDCARD_WILDCARD_MATCHING_H
#define VELAN_WILDCARD_WILDCARD_MATCHING_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `stringMatchesWildcard`: `*` and `?`; everything else, `[` too, is a literal. An empty pattern matches an empty text
/// only, "*" matches every text.
VELAN_EXPORT bool stringMatchesWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                                        const unichar* patternEnd);

/// `stringMatchesWildcardUsingUnicharTable`: compares `table[unit]` of the text with the pattern, which has gone
/// through the same table before (`prepareWildcardUsingUnicharTable`). `table` has 65,536 entries; null compares
/// exactly.
VELAN_EXPORT bool stringMatchesWildcardUsingUnicharTable(const unichar* text, const unichar* textEnd,
                                                         const unichar* pattern, const unichar* patternEnd,
                                                         const unichar* table);

/// `stringMatchesUnixWildcard`: `*`, `?` and sets. In a set the first member that matches ends the search, and the
/// pattern goes on after the next `]`; "[]" matches nothing, "[^]" any unit, "-" first in a set makes a range from the
/// `[` or `^` before it, "-" directly before `]` makes a range up to `]`, which then does not end the set. A set that
/// is not closed ends with the pattern. Patterns of more than 4,096 units need heap memory, 2 MiB and two bytes per
/// unit, when they hold "-]", and are false without; others may use as much, and only take longer without.
VELAN_EXPORT bool stringMatchesUnixWildcard(const unichar* text, const unichar* textEnd, const unichar* pattern,
                                            const unichar* patternEnd);

/// `stringMatchesUnixWildcardUsingUnicharTable`: the same with a table, as in `stringMatchesWildcardUsingUnicharTable`.
VELAN_EXPORT bool stringMatchesUnixWildcardUsingUnicharTable(const unichar* text, const unichar* textEnd,
                                                             const unichar* pattern, const unichar* patternEnd,
                                                             const unichar* table);

/// `stringMatchesUnixWildcardFuzzy`: the similarity of two words (no patterns) from 0 to 1: the share of units of the
/// longer one that stand in the same place, or that can be paired in order, whichever is greater. Not a number when
/// both are empty, so that no comparison with a threshold holds. Takes linear time; above 512 units it needs heap
/// memory, and without it the result is 0.
VELAN_EXPORT double stringMatchesUnixWildcardFuzzy(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB);

/// `stringMatchesUnixWildcardFuzzyUsingUnicharTable`: the same for `table[unit]` of both words.
VELAN_EXPORT double stringMatchesUnixWildcardFuzzyUsingUnicharTable(const unichar* a, size_t lengthA, const unichar* b,
                                                                    size_t lengthB, const unichar* table);

#ifdef __cplusplus
}  // extern "C"

class String;

/// `isLikeWildcard:`: `stringMatchesWildcard` for strings. An empty or absent string is like nothing, not even "*";
/// nothing is like an empty or absent pattern. The same holds for the three below.
VELAN_EXPORT bool isLikeWildcard(const String& string, const String& pattern);

/// `isCaseInsensitiveLikeWildcard:`: both sides go through the upper table.
VELAN_EXPORT bool isCaseInsensitiveLikeWildcard(const String& string, const String& pattern);

/// `isLikeUnixWildcard:`: `stringMatchesUnixWildcard` for strings.
VELAN_EXPORT bool isLikeUnixWildcard(const String& string, const String& pattern);

/// `isCaseInsensitiveLikeUnixWildcard:`: both sides go through the upper table.
VELAN_EXPORT bool isCaseInsensitiveLikeUnixWildcard(const String& string, const String& pattern);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_WILDCARD_WILDCARD_MATCHING_H
