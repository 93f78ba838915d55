// Classes of code units as bitmaps: one bit test answers whether a unit is a letter, a digit or white space.
// Each set is built once, on first use, from Unicode's general categories; it lives until the process ends, is never
// changed afterwards, and may be used from any thread. Surrogates are tested like any other unit.
#ifndef VELAN_TEXT_CHARACTER_SETS_H
#define VELAN_TEXT_CHARACTER_SETS_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// Whether `c` is a member of `rep` (8,192 bytes, not null).
static inline bool isMemberOfCharacterSetRep(const uint8_t* rep, unichar c) {
  return ((unsigned)rep[c >> 3] >> (c & 7) & 1u) != 0;
}

/// `emptyCharacterSetRep`: no unit at all.
VELAN_EXPORT const uint8_t* emptyCharacterSetRep(void);
/// `spaceCharacterSetRep`: category Zs, TAB and U+0000; no line ends.
VELAN_EXPORT const uint8_t* spaceCharacterSetRep(void);
/// `whiteCharacterSetRep`: category Z, U+0000, U+0003 (the enter key), TAB to CR, U+0085, the byte-order mark U+FEFF
/// and the object replacement character U+FFFC.
VELAN_EXPORT const uint8_t* whiteCharacterSetRep(void);
/// `alphaCharacterSetRep`: categories L and M.
VELAN_EXPORT const uint8_t* alphaCharacterSetRep(void);
/// `alphaNumCharacterSetRep`: categories L, M and N.
VELAN_EXPORT const uint8_t* alphaNumCharacterSetRep(void);
/// `digitCharacterSetRep`: category Nd, the decimal digits of all scripts.
VELAN_EXPORT const uint8_t* digitCharacterSetRep(void);
/// `lowerCharacterSetRep`: category Ll.
VELAN_EXPORT const uint8_t* lowerCharacterSetRep(void);
/// `upperCharacterSetRep`: categories Lu and Lt, so the title-case digraphs such as U+01C5 too.
VELAN_EXPORT const uint8_t* upperCharacterSetRep(void);

/// `onlyWhiteCharacters:length:`: whether all of `characters[0, length)` are in `whiteCharacterSetRep`; true for length
/// 0.
VELAN_EXPORT bool onlyWhiteCharacters(const unichar* characters, size_t length);

#ifdef __cplusplus
}  // extern "C"

/// The sets that the Unicode character database defines, by general category.
enum class CharacterSet : uint8_t {
  Whitespace,            // Zs and TAB
  WhitespaceAndNewline,  // Z, U+000A to U+000D and U+0085; TAB is not part of it
  Letter,                // L, M
  UppercaseLetter,       // Lu, Lt
  LowercaseLetter,       // Ll
  Alphanumeric,          // L, M, N
  DecimalDigit,          // Nd
  Punctuation,           // P
  Symbol,                // S
  Control,               // Cc, Cf
  Illegal,               // Cn: not assigned in the version of Unicode that ICU knows
};

/// `bitmap`: the first plane of `set` as a `CharacterSetRep`.
VELAN_EXPORT const uint8_t* bitmap(CharacterSet set);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_CHARACTER_SETS_H
