// One spelling for texts that mean the same: the normal forms of Unicode, in place. Each returns false, and the text
// may then be unchanged or changed by its first steps only, when memory runs out or the text has more than 2^31 - 1
// units.
#ifndef VELAN_TEXT_EDITING_NORMALIZATION_H
#define VELAN_TEXT_EDITING_NORMALIZATION_H

#include "velan/base/MutableString.h"
#include "velan/platform/NormalizationForm.h"

namespace velan {

/// `normalizeString:`: brings `text` into `form`. Lone surrogates stay.
VELAN_EXPORT bool normalizeString(MutableString& text, NormalizationForm form);
/// `normalizeString`: into form C. (`normalizedString` is something else: it removes case and diacritics.)
inline bool normalizeString(MutableString& text) { return normalizeString(text, NormalizationForm::C); }

/// `fixAndNormalizeString`: for texts whose later use chokes on unusual units: replaces U+0000, every surrogate (so
/// that a character outside the Basic Multilingual Plane becomes two spaces) and U+F400 to U+F8FF by a space, then
/// brings `text` into form C.
VELAN_EXPORT bool fixAndNormalizeString(MutableString& text);

/// `normalizeLowercaseString`: into form C, then to lower case as `lowercase` does.
VELAN_EXPORT bool normalizeLowercaseString(MutableString& text);
/// `normalizeUppercaseString`: does the same as `normalizeLowercaseString`, to lower case, in spite of its name; texts
/// normalised by either go on being equal.
inline bool normalizeUppercaseString(MutableString& text) { return normalizeLowercaseString(text); }

/// `normalizedLowercaseString`: `normalizeLowercaseString` as a new string; `string` itself when nothing changes,
/// absent when memory runs out.
VELAN_EXPORT String normalizedLowercaseString(const String& string);
/// `normalizedUppercaseString`: `normalizeUppercaseString` as a new string: in lower case.
inline String normalizedUppercaseString(const String& string) { return normalizedLowercaseString(string); }

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_NORMALIZATION_H
