// Finding one run of code units or bytes in a run of code units. The haystack comes first; the result points at the
// first match in it and is null when there is none. An empty needle is never found, here as in all siblings, nor is
// anything found in or by means of a null pointer. Time is linear in the two lengths, whatever they hold; nothing
// allocates; any thread may call it. "Ignoring case" is the upper table on both sides (see `initUpperCharsTable`).
#ifndef VELAN_TEXT_SEARCH_CONTAINMENT_H
#define VELAN_TEXT_SEARCH_CONTAINMENT_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `fastContainsUnichars`: exactly. The last possible position is never tried: a match that ends where the haystack
/// ends is not found, so a needle as long as the haystack never is. The siblings try all positions.
VELAN_EXPORT const unichar* fastContainsUnichars(const unichar* haystack, size_t haystackLength, const unichar* needle,
                                                 size_t needleLength);

/// `fastCaseInsensitiveContainsUnichars`: ignoring case.
VELAN_EXPORT const unichar* fastCaseInsensitiveContainsUnichars(const unichar* haystack, size_t haystackLength,
                                                                const unichar* needle, size_t needleLength);

/// `fastUnicharsContainChars`: exactly. A needle with a byte of 0x80 or above is never found.
VELAN_EXPORT const unichar* fastUnicharsContainChars(const unichar* haystack, size_t haystackLength, const char* needle,
                                                     size_t needleLength);

/// `fastCaseInsensitiveUnicharsContainChars`: ignoring case; the bytes 0x80 to 0xFF count as U+FF80 to U+FFFF.
VELAN_EXPORT const unichar* fastCaseInsensitiveUnicharsContainChars(const unichar* haystack, size_t haystackLength,
                                                                    const char* needle, size_t needleLength);

#ifdef __cplusplus
}  // extern "C"

class String;

/// `positionOfCharacters:length:inCharacters:length:caseSensitive:`: `fastUnicharsContainChars` when `caseSensitive`,
/// else `fastCaseInsensitiveUnicharsContainChars`. The needle comes first here.
inline const unichar* positionOfCharacters(const char* needle, size_t needleLength, const unichar* haystack,
                                           size_t haystackLength, bool caseSensitive) {
  return caseSensitive ? fastUnicharsContainChars(haystack, haystackLength, needle, needleLength)
                       : fastCaseInsensitiveUnicharsContainChars(haystack, haystackLength, needle, needleLength);
}

/// `fastContainsSubCStrings`: whether one of `patterns`, a list of NUL-terminated byte strings that a null pointer
/// ends, occurs in the first `length` units of `string` (at most all of it; below 1: false). With `table` (65,536
/// entries, or null) the units go through it before they are compared, the patterns do not: to ignore case pass the
/// lower table and patterns in lower case. The bytes 0x80 to 0xFF count as U+FF80 to U+FFFF; an empty pattern never
/// occurs.
VELAN_EXPORT bool fastContainsSubCStrings(const String& string, int64_t length, const char* const* patterns,
                                          const unichar* table);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_SEARCH_CONTAINMENT_H
