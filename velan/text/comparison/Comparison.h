// Ordering of runs of code units and bytes. All of it walks both runs up to the first difference and returns that
// difference, so the magnitude tells more than the sign. Nothing allocates; any thread may call it. A byte counts as
// the unit that it becomes by sign extension: 0x80 to 0xFF are U+FF80 to U+FFFF. "Ignoring case" is one look-up in the
// upper table on both sides (see `initUpperCharsTable`), never a full case folding. A null run counts as empty.
#ifndef VELAN_TEXT_COMPARISON_COMPARISON_H
#define VELAN_TEXT_COMPARISON_COMPARISON_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `fastCompareUnichars`: negative when `a` orders first, 0 when equal, positive when `b` does: the difference of the
/// first differing units, else of the lengths (in units).
VELAN_EXPORT int64_t fastCompareUnichars(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB);

/// `fastCompareUnicharsUsingConversionTable`: compares `table[unit]`, 65,536 entries; exactly when `table` is null.
VELAN_EXPORT int64_t fastCompareUnicharsUsingConversionTable(const unichar* a, size_t lengthA, const unichar* b,
                                                             size_t lengthB, const unichar* table);

/// `fastCompareUnicharsWithChars`: units with bytes.
VELAN_EXPORT int64_t fastCompareUnicharsWithChars(const unichar* a, size_t lengthA, const char* bytes, size_t lengthB);

/// `fastCompareChars`: bytes with bytes, as signed 8-bit numbers: 0xE9 orders before "A".
VELAN_EXPORT int64_t fastCompareChars(const char* bytesA, size_t lengthA, const char* bytesB, size_t lengthB);

/// `fastCaseInsensitiveCompareUnichars`: like `fastCompareUnichars`, ignoring case.
VELAN_EXPORT int64_t fastCaseInsensitiveCompareUnichars(const unichar* a, size_t lengthA, const unichar* b,
                                                        size_t lengthB);

/// `fastCaseInsensitiveCompareUnicharsWithChars`: like `fastCompareUnicharsWithChars`, ignoring case.
VELAN_EXPORT int64_t fastCaseInsensitiveCompareUnicharsWithChars(const unichar* a, size_t lengthA, const char* bytes,
                                                                 size_t lengthB);

/// `fastCaseInsensitiveCompareChars`: the bytes as units, ignoring case (so 0xE9 orders after "A" here).
VELAN_EXPORT int64_t fastCaseInsensitiveCompareChars(const char* bytesA, size_t lengthA, const char* bytesB,
                                                     size_t lengthB);

#ifdef __cplusplus
}  // extern "C"

/// `compareCharacters:length:withCharacters:length:`: see `fastCompareUnichars`.
inline int64_t compareCharacters(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB) {
  return fastCompareUnichars(a, lengthA, b, lengthB);
}

/// `caseInsensitiveCompareCharacters:length:withCharacters:length:`: see `fastCaseInsensitiveCompareUnichars`.
inline int64_t caseInsensitiveCompareCharacters(const unichar* a, size_t lengthA, const unichar* b, size_t lengthB) {
  return fastCaseInsensitiveCompareUnichars(a, lengthA, b, lengthB);
}

/// `compareCharacters:length:withChars:length:`: see `fastCompareUnicharsWithChars`.
inline int64_t compareCharactersWithChars(const unichar* a, size_t lengthA, const char* bytes, size_t lengthB) {
  return fastCompareUnicharsWithChars(a, lengthA, bytes, lengthB);
}

/// `caseInsensitiveCompareCharacters:length:withChars:length:`: see `fastCaseInsensitiveCompareUnicharsWithChars`.
inline int64_t caseInsensitiveCompareCharactersWithChars(const unichar* a, size_t lengthA, const char* bytes,
                                                         size_t lengthB) {
  return fastCaseInsensitiveCompareUnicharsWithChars(a, lengthA, bytes, lengthB);
}

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_COMPARISON_COMPARISON_H
