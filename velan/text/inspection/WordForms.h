// What a string looks like: its script, its case, its diacritics. Code units are looked at one by one; an absent string
// counts as empty. Nothing allocates; any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_WORD_FORMS_H
#define VELAN_TEXT_INSPECTION_WORD_FORMS_H

#include "velan/base/String.h"

namespace velan {

/// `isAsciiString`: whether all units are below U+0080; true for an empty string.
VELAN_EXPORT bool isAsciiString(const String& string);

/// `isUmlautedString`: whether some unit changes in the umlauts table (`initUmlautsCharsTable`), that is, whether
/// `nonUmlautedString` differs from `string`. False for letters that are not composed, such as "ß" and "ø".
VELAN_EXPORT bool isUmlautedString(const String& string);

/// `isLowerCaseString`: whether there is at least one letter (`alphaCharacterSetRep`) and none that is a member of
/// `upperCharacterSetRep`. Scripts without case pass both this and `isUpperCaseString`.
VELAN_EXPORT bool isLowerCaseString(const String& string);
/// `isUpperCaseString`: whether there is at least one letter (`alphaCharacterSetRep`) and none that is a member of
/// `lowerCharacterSetRep`.
VELAN_EXPORT bool isUpperCaseString(const String& string);

/// `isMashedWord`: whether `string` looks like several words written as one ("iPhone", "McDonald", "B2B"): there are
/// letters of both cases after the first unit, or letters and digits anywhere, and no unit of `defaultWordSeparators`.
VELAN_EXPORT bool isMashedWord(const String& string);

/// `containsCJKCharacter`: whether some unit lies in U+3000 to U+30FF, U+3400 to U+4DBF, U+4E00 to U+9FFF or U+A700 to
/// U+EBEF. The last range is meant as a whole: besides the Hangul syllables it holds all surrogates, so that every
/// character outside the Basic Multilingual Plane counts, an emoji too. The word enumerator has narrower ranges.
VELAN_EXPORT bool containsCJKCharacter(const String& string);

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_WORD_FORMS_H
