// Runs of ASCII digits in a text; digits of other scripts do not count. Nothing allocates; any thread may call these.
#ifndef VELAN_TEXT_INSPECTION_NUMBERS_H
#define VELAN_TEXT_INSPECTION_NUMBERS_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `containsNumberWithNDigits`: whether `string[0, length)` holds at least `n` digits in a row; a longer run counts
/// too. `length` in units. False when `n` is below 1 or `string` is null.
VELAN_EXPORT bool containsNumberWithNDigits(const unichar* string, size_t length, int64_t n);

#ifdef __cplusplus
}  // extern "C"
}  // namespace velan

#include "velan/base/String.h"

namespace velan {

/// `containsNumberWithNDigits:`: the same for a string.
inline bool containsNumberWithNDigits(const String& string, int64_t n) {
  return containsNumberWithNDigits(string.characters(), static_cast<size_t>(string.length()), n);
}

/// `countNumbers`: how many runs of digits `string` has, each as long as it can be.
VELAN_EXPORT int64_t countNumbers(const String& string);

/// `containsNumber:`: whether `number` occurs exactly, with no digit directly before or after it: "12" in "x12" but not
/// in "123". Occurrences that overlap one with such a neighbour are not tried. False for an empty or absent `number`.
VELAN_EXPORT bool containsNumber(const String& string, const String& number);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_INSPECTION_NUMBERS_H
