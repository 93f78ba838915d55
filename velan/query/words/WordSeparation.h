// Splits a string into its words: longest runs of units that are not in `defaultWordSeparators`. Positions are in
// units.
#ifndef VELAN_QUERY_WORDS_WORD_SEPARATION_H
#define VELAN_QUERY_WORDS_WORD_SEPARATION_H

#include <memory>
#include <optional>
#include <vector>

#include "velan/base/FunctionRef.h"
#include "velan/base/String.h"
#include "velan/query/words/FastWordEnumerator.h"

namespace velan {

/// Receives one word, with the string and its units, and returns true to stop.
using StringWordHandler = bool (*)(const String& string, const unichar* characters, int64_t start, int64_t length,
                                   void* context);
using StringWordBlock =
    FunctionRef<bool(const String& string, const unichar* characters, int64_t start, int64_t length)>;

/// `enumerateWordsUsingHandler:context:`: hands over the words of `string` in order and returns how many it handed over
/// before `handler` asked to stop. 0 for a null handler. Allocates nothing, and never splits East Asian runs.
VELAN_EXPORT int64_t enumerateWordsUsingHandler(const String& string, StringWordHandler handler, void* context);
/// `enumerateWordsUsingBlock:`: the same with a closure.
VELAN_EXPORT int64_t enumerateWordsUsingBlock(const String& string, StringWordBlock block);

/// Appends the words of at least `minLen` units that `enumerator` knows to a new list with room for an eighth of the
/// text's length; nothing without an enumerator.
template <class List>
std::optional<List> wordListOfEnumerator(const FastWordEnumerator* enumerator, int64_t minLen, bool* hyphenated) {
  if (!enumerator) return std::nullopt;
  std::optional<List> words(std::in_place);
  if constexpr (requires { words->reserve(size_t{1}); }) words->reserve(static_cast<size_t>(enumerator->length() / 8));
  enumerator->addWordsTo(*words, minLen, hyphenated);
  return words;
}

/// `wordsUsingDefaultSeparation:class:`: the words of at least `minLen` units, in a list of the class `List` (anything
/// that inserts a `String` at its end), as a `FastWordEnumerator` finds them. Nothing for an empty or absent string.
template <class List = std::vector<String>>
std::optional<List> wordsUsingDefaultSeparation(const String& string, int64_t minLen) {
  return wordListOfEnumerator<List>(FastWordEnumerator::enumeratorWithString(string).get(), minLen, nullptr);
}
/// `wordsUsingDefaultSeparation:` is the above with a `std::vector<String>`; `wordsUsingDefaultSeparation` gives all
/// words.
template <class List = std::vector<String>>
std::optional<List> wordsUsingDefaultSeparation(const String& string) {
  return wordsUsingDefaultSeparation<List>(string, 1);
}

/// `numberOfWordsUsingDefaultSeparation`: how many words `wordsUsingDefaultSeparation` finds; 0 for an empty string.
VELAN_EXPORT int64_t numberOfWordsUsingDefaultSeparation(const String& string);
/// `numberOfWordsUsingDefaultSeparation:`: counts only those of at least `minLen` units.
VELAN_EXPORT int64_t numberOfWordsUsingDefaultSeparation(const String& string, int64_t minLen);

/// `wordsUsingWildcardSeparation:`: the words of a wildcard pattern, in which "*", "?", "[" and "]" and the sets
/// between brackets belong to words. Unless `hyphenated` is null, words divided by a hyphen at a line end are joined,
/// and the flag tells whether there were any (see `FastWordEnumerator::addWordsTo`). Nothing for an empty or absent
/// string, and the flag is false.
VELAN_EXPORT std::optional<std::vector<String>> wordsUsingWildcardSeparation(const String& string, bool* hyphenated);
/// `numberOfWordsUsingWildcardSeparation`: how many words the pattern has; 0 for an empty string.
VELAN_EXPORT int64_t numberOfWordsUsingWildcardSeparation(const String& string);

// These three agree with `wordsUsingDefaultSeparation`, also about East Asian words, but look only at what they need.

/// `firstWord`: absent when there is no word.
VELAN_EXPORT String firstWord(const String& string);
/// `lastWord`: absent when there is no word.
VELAN_EXPORT String lastWord(const String& string);
/// `getWordRangeAtIndex:`: the word that the unit at `index` belongs to; absent for a separator and outside the string.
VELAN_EXPORT Range getWordRangeAtIndex(const String& string, int64_t index);

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_WORD_SEPARATION_H
