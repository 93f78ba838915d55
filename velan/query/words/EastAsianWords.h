// Words in Chinese and Japanese text, which is written without spaces.
#ifndef VELAN_QUERY_WORDS_EAST_ASIAN_WORDS_H
#define VELAN_QUERY_WORDS_EAST_ASIAN_WORDS_H

#include "velan/base/String.h"

namespace velan {

inline constexpr unichar kFirstEastAsian = 0x3000;

/// Whether `c` is a unified ideograph (U+4E00 to U+9FFF, U+3400 to U+4DBF) or lies in U+3000 to U+30FF (the
/// ideographic space and punctuation, hiragana, katakana).
constexpr bool isEastAsianUnichar(unichar c) {
  return c >= kFirstEastAsian && (c < 0x3100 || (c >= 0x3400 && c <= 0x4DBF) || (c >= 0x4E00 && c <= 0x9FFF));
}

/// `stringBySeparatingAsianWords`: a copy of `string` with a space between the words inside each run of word units
/// that holds an East Asian unit, so that splitting at the word separators finds them. All else is kept. The receiver
/// itself when nothing is to be inserted. Where the words begin is ICU's judgement and may change with its version. May
/// throw `std::bad_alloc`.
VELAN_EXPORT String stringBySeparatingAsianWords(const String& string);

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_EAST_ASIAN_WORDS_H
