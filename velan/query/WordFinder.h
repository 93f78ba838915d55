// Finding words, phrases and wildcard patterns in an indexed text.
#ifndef VELAN_QUERY_WORD_FINDER_H
#define VELAN_QUERY_WORD_FINDER_H

#include "velan/base/Range.h"
#include "velan/base/String.h"
#include "velan/query/QueryComparison.h"

namespace velan {

class FastWordEnumerator;

// Positions and lengths are in code units of the enumerator's text; a range is clipped to it. With `IgnoreCase` and
// `IgnoreDiacritics` the units of both sides are compared through the table of `unicharTableForWildcardComparison`. An
// enumerator created to ignore case is always searched so.

/// `FindWordInString`: where the `wordLength` units of `word` first occur in the range, `NSNotFound` if they do not.
/// They may hold separators. With `wholeWord` the occurrence begins at the start of a word and ends at the end of a
/// word. An empty word is never found.
VELAN_EXPORT int64_t FindWordInString(const FastWordEnumerator& enumerator, int64_t start, int64_t length,
                                      const unichar* word, int64_t wordLength, QueryComparison comparison,
                                      bool wholeWord);

/// `FindNonExactPhraseInString`: where the words of `phrase` (by the word separators) first follow each other in the
/// range, whatever separators lie between: from the first word's start to the last one's end. Absent if they do not, or
/// if the phrase has no words.
VELAN_EXPORT Range FindNonExactPhraseInString(const FastWordEnumerator& enumerator, int64_t start, int64_t length,
                                              const unichar* phrase, int64_t phraseLength, QueryComparison comparison);

/// `FindWildcardStringInCharacters`: the first word in the range that matches the wildcard pattern, absent if none
/// does. A pattern without a literal, other than a lone `*`, and a malformed one are never found.
///  - `splitsPhrases`: a pattern that holds separators outside its sets is split there; its pieces match consecutive
///    words, and a piece without a literal matches any word of fitting length. Without, such a pattern is not found.
///  - `acceptsWholeRange`: a lone `*` is found as the whole range, if that is not empty. Without, it is not found.
///  - `allowsFuzzy`: `QueryComparison::Fuzzy` is honoured.
VELAN_EXPORT Range FindWildcardStringInCharacters(const FastWordEnumerator& enumerator, Range range,
                                                  const String& pattern, QueryComparison comparison, bool splitsPhrases,
                                                  bool acceptsWholeRange, bool allowsFuzzy);

/// `FindWildcardInCharacters`: the same for a pattern given by its units.
VELAN_EXPORT Range FindWildcardInCharacters(const FastWordEnumerator& enumerator, Range range, const unichar* pattern,
                                            int64_t patternLength, QueryComparison comparison, bool splitsPhrases,
                                            bool acceptsWholeRange, bool allowsFuzzy);

}  // namespace velan

#endif  // VELAN_QUERY_WORD_FINDER_H
