// Tables that map each code unit to one code unit: case folding and the removal of diacritics for one memory access.
// Each table is built once, on first use, whichever thread comes first; it is complete when its pointer appears, lives
// until the process ends, and may be read from any thread. A mapping to none or several units is left out: the unit
// then stays as it is ("ß" has no upper case here). Units of a surrogate pair are mapped one by one, to themselves.
#ifndef VELAN_TEXT_CONVERSION_TABLES_H
#define VELAN_TEXT_CONVERSION_TABLES_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `_lowerCharsTable`: 65,536 entries, null until built. Only for callers who called the build function before, on this
/// thread or one they have synchronised with; all others call `initLowerCharsTable`.
VELAN_EXPORT extern const unichar* _lowerCharsTable;
/// `_upperCharsTable`: like `_lowerCharsTable`.
VELAN_EXPORT extern const unichar* _upperCharsTable;
/// `_umlautsCharsTable`: like `_lowerCharsTable`.
VELAN_EXPORT extern const unichar* _umlautsCharsTable;
/// `_lowerUmlautsCharsTable`: like `_lowerCharsTable`.
VELAN_EXPORT extern const unichar* _lowerUmlautsCharsTable;
/// `_upperUmlautsCharsTable`: like `_lowerCharsTable`.
VELAN_EXPORT extern const unichar* _upperUmlautsCharsTable;

/// `initLowerCharsTable`: upper-case and title-case letters become lower-case; builds the table if needed. The result
/// is the same on every call and never null, here as in the functions below.
VELAN_EXPORT const unichar* initLowerCharsTable(void);
/// `initUpperCharsTable`: lower-case letters become upper-case (title-case letters such as U+01C5 stay). Comparison
/// that ignores case looks both sides up here.
VELAN_EXPORT const unichar* initUpperCharsTable(void);
/// `initUmlautsCharsTable`: letters lose their diacritics and keep their case ("Ä" becomes "A", U+0439 becomes U+0438);
/// letters that are not composed ("ß", "ø", "æ") stay.
VELAN_EXPORT const unichar* initUmlautsCharsTable(void);
/// `initLowerUmlautsCharsTable`: without diacritics, then in lower case.
VELAN_EXPORT const unichar* initLowerUmlautsCharsTable(void);
/// `initUpperUmlautsCharsTable`: without diacritics, then in upper case.
VELAN_EXPORT const unichar* initUpperUmlautsCharsTable(void);

/// `toLower`: the entry of the lower table.
VELAN_EXPORT unichar toLower(unichar c);
/// `toUpper`: the entry of the upper table.
VELAN_EXPORT unichar toUpper(unichar c);
/// `umlautsToAscii`: the entry of the umlauts table; in spite of the name it may lie outside ASCII.
VELAN_EXPORT unichar umlautsToAscii(unichar c);
/// `umlautsToUpperAscii`: the entry of the table without diacritics in upper case; may lie outside ASCII.
VELAN_EXPORT unichar umlautsToUpperAscii(unichar c);
/// `umlautsToLowerAscii`: the entry of the table without diacritics in lower case; may lie outside ASCII.
VELAN_EXPORT unichar umlautsToLowerAscii(unichar c);
/// `toAscii`: `c` without diacritics if that is ASCII, else a space.
VELAN_EXPORT unichar toAscii(unichar c);
/// `toUpperAscii`: like `toAscii`, with a to z in upper case.
VELAN_EXPORT unichar toUpperAscii(unichar c);
/// `toLowerAscii`: like `toAscii`, with A to Z in lower case.
VELAN_EXPORT unichar toLowerAscii(unichar c);

/// `isUnicharTablePartOfConversionTable`: whether text that went through `conversionTable` equals text that went
/// through `table` as well, so that it needs no second conversion: both are the same table, or `table` is one of the
/// three simple tables and `conversionTable` combines it with another. False if either is null.
VELAN_EXPORT bool isUnicharTablePartOfConversionTable(const unichar* table, const unichar* conversionTable);

#ifdef __cplusplus
}  // extern "C"

/// `lowerCharsTable`: see `initLowerCharsTable`.
inline const unichar* lowerCharsTable() { return initLowerCharsTable(); }
/// `upperCharsTable`: see `initUpperCharsTable`.
inline const unichar* upperCharsTable() { return initUpperCharsTable(); }
/// `umlautsCharsTable`: see `initUmlautsCharsTable`.
inline const unichar* umlautsCharsTable() { return initUmlautsCharsTable(); }
/// `lowerUmlautsCharsTable`: see `initLowerUmlautsCharsTable`.
inline const unichar* lowerUmlautsCharsTable() { return initLowerUmlautsCharsTable(); }
/// `upperUmlautsCharsTable`: see `initUpperUmlautsCharsTable`.
inline const unichar* upperUmlautsCharsTable() { return initUpperUmlautsCharsTable(); }

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_CONVERSION_TABLES_H
