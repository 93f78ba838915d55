// The index of a text, as plain functions over units and type bytes.
#ifndef VELAN_QUERY_WORDS_WORD_INDEX_INTERNAL_H
#define VELAN_QUERY_WORDS_WORD_INDEX_INTERNAL_H

#include <cstddef>

#include "velan/base/CTypes.h"

namespace velan {

/// Writes the type of each of `length` units to `types` and returns the number of words.
size_t indexWords(const unichar* units, size_t length, const uint8_t* separators, uint8_t* types);

/// The same for the units `[from, end)` of the text only; words that begin before are not counted.
size_t indexWordsIn(const unichar* units, size_t from, size_t end, size_t length, const uint8_t* separators,
                    uint8_t* types);

/// The same for a wildcard pattern: from a "[" that a "]" does not follow directly to the next "]", or to the end, all
/// units belong to the word.
size_t indexWildcardWords(const unichar* units, size_t length, const uint8_t* separators, uint8_t* types);

/// The first unit in `[from, end)` that `isEastAsianUnichar` accepts, else `end`.
size_t findEastAsian(const unichar* units, size_t from, size_t end);

/// The first index in `[from, end)` whose type has a bit of `mask`, else `end`.
size_t findType(const uint8_t* types, size_t from, size_t end, uint8_t mask);

/// The last index in `[start, end)` whose type has a bit of `mask`, else `end`.
size_t findTypeBackwards(const uint8_t* types, size_t start, size_t end, uint8_t mask);

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_WORD_INDEX_INTERNAL_H
